#pragma once

#include <memory>
#include <optional>
#include <string>

struct chmFile;

namespace sonavex {

// The files inside a compiled help file. Paths begin with a slash; letter case does not matter. Made for
// files that may be cut short or be something else altogether. One thread at a time.
class ChmArchive {
public:
    // Throws HelpFileError when the file cannot be read or is not as the instrument's was compiled.
    explicit ChmArchive(const std::string& file);
    ~ChmArchive();
    ChmArchive(const ChmArchive&) = delete;
    ChmArchive& operator=(const ChmArchive&) = delete;

    bool Exists(const std::string& path) const;
    // Nothing when there is no such file, or not all of it can be read.
    std::optional<std::string> Read(const std::string& path) const;

private:
    struct Close {
        void operator()(chmFile* file) const noexcept;
    };
    std::unique_ptr<chmFile, Close> file_;
};

}  // namespace sonavex
