#include "platform/chm/ChmArchive.h"

#include <chm_lib.h>

#include <cstdint>

#include "core/ports/HelpBook.h"
#include "platform/chm/ChmStructure.h"

namespace sonavex {
namespace {

// Larger than any page or picture of a help file. Keeps a damaged length from filling the memory.
constexpr std::uint64_t kMaxLength = 16U << 20U;

std::optional<chmUnitInfo> Find(chmFile* file, const std::string& path) {
    chmUnitInfo unit{};
    if (path.size() > CHM_MAX_PATHLEN) return std::nullopt;
    if (chm_resolve_object(file, path.c_str(), &unit) != CHM_RESOLVE_SUCCESS) return std::nullopt;
    return unit;
}

}  // namespace

void ChmArchive::Close::operator()(chmFile* file) const noexcept {
    chm_close(file);
}

ChmArchive::ChmArchive(const std::string& file) {
    const std::string content = ReadHelpFile(file);
    CheckSeal(content);
    CheckStructure(content);
    file_.reset(chm_open(file.c_str()));
    if (!file_) throw HelpFileError("The file is damaged or is no help file.");
}

ChmArchive::~ChmArchive() = default;

bool ChmArchive::Exists(const std::string& path) const {
    return Find(file_.get(), path).has_value();
}

std::optional<std::string> ChmArchive::Read(const std::string& path) const {
    auto unit = Find(file_.get(), path);
    if (!unit || unit->length > kMaxLength) return std::nullopt;
    std::string content(static_cast<std::size_t>(unit->length), '\0');
    const auto wanted = static_cast<LONGINT64>(unit->length);
    const LONGINT64 got =
        chm_retrieve_object(file_.get(), &*unit, reinterpret_cast<unsigned char*>(content.data()), 0, wanted);
    if (got != wanted) return std::nullopt;
    return content;
}

}  // namespace sonavex
