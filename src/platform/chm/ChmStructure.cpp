#include "platform/chm/ChmStructure.h"

#include <array>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <map>
#include <string_view>

#include "core/ports/HelpBook.h"

namespace sonavex {
namespace {

constexpr std::uint64_t kMaxFileBytes = 64U << 20U;
constexpr std::uint64_t kMaxNameBytes = 512;
constexpr int kMaxDepth = 6;
constexpr const char* kResetTable =
    "::DataSpace/Storage/MSCompressed/Transform/{7FC28940-9D31-11D0-9B27-00A0C91E9C7C}/InstanceData/"
    "ResetTable";
constexpr const char* kControlData = "::DataSpace/Storage/MSCompressed/ControlData";
const std::string kSeal = "\nSonavex help file ";
constexpr const char* kContent = "::DataSpace/Storage/MSCompressed/Content";

[[noreturn]] void Refuse() {
    throw HelpFileError("The file is damaged or is no help file.");
}

void Require(bool good) {
    if (!good) Refuse();
}

// The remainder of each byte by the checksum's polynomial.
constexpr std::array<std::uint32_t, 256> kRemainders = [] {
    std::array<std::uint32_t, 256> remainders{};
    for (std::uint32_t byte = 0; byte < 256; ++byte) {
        std::uint32_t sum = byte << 24U;
        for (int bit = 0; bit < 8; ++bit)
            sum = (sum & 0x80000000U) != 0 ? (sum << 1U) ^ 0x04C11DB7U : sum << 1U;
        remainders[byte] = sum;
    }
    return remainders;
}();

// The checksum of the POSIX program cksum.
std::uint32_t Checksum(std::string_view bytes) {
    const auto add = [](std::uint32_t sum, std::uint32_t byte) {
        return (sum << 8U) ^ kRemainders[(sum >> 24U) ^ byte];
    };
    std::uint32_t sum = 0;
    for (const char byte : bytes) sum = add(sum, static_cast<unsigned char>(byte));
    for (std::size_t length = bytes.size(); length > 0; length >>= 8U)
        sum = add(sum, static_cast<std::uint32_t>(length & 0xFFU));
    return ~sum;
}

// The bytes of a file. Reads little-endian numbers. A read outside the file throws HelpFileError.
class Bytes {
public:
    explicit Bytes(std::string_view bytes) noexcept : bytes_(bytes) {}

    std::uint64_t Size() const noexcept { return bytes_.size(); }
    Bytes Part(std::uint64_t offset, std::uint64_t length) const {
        Require(offset <= bytes_.size() && length <= bytes_.size() - offset);
        return Bytes(bytes_.substr(static_cast<std::size_t>(offset), static_cast<std::size_t>(length)));
    }
    std::uint64_t Number(std::uint64_t offset, unsigned width) const {
        const std::string_view digits = Part(offset, width).bytes_;
        std::uint64_t number = 0;
        for (unsigned i = 0; i < width; ++i)
            number |= std::uint64_t{static_cast<unsigned char>(digits[i])} << (8U * i);
        return number;
    }
    std::uint32_t Word(std::uint64_t offset) const { return static_cast<std::uint32_t>(Number(offset, 4)); }
    bool Begins(std::string_view signature) const noexcept {
        return bytes_.substr(0, signature.size()) == signature;
    }
    std::string_view Text() const noexcept { return bytes_; }

private:
    std::string_view bytes_;
};

// Reads the entries of a directory block in order. Numbers have seven bits in each byte, the highest first.
class EntryReader {
public:
    EntryReader(const Bytes& block, std::uint64_t begin, std::uint64_t end)
        : block_(block), at_(begin), end_(end) {
        Require(begin <= end && end <= block.Size());
    }

    bool More() const noexcept { return at_ < end_; }
    std::uint64_t Number() {
        std::uint64_t number = 0;
        for (int bytes = 0; bytes < 9; ++bytes) {
            Require(at_ < end_);
            const std::uint64_t digit = block_.Number(at_++, 1);
            number = (number << 7U) | (digit & 0x7FU);
            if ((digit & 0x80U) == 0) return number;
        }
        Refuse();
    }
    std::string_view Name() {
        const std::uint64_t length = Number();
        Require(length <= kMaxNameBytes && length <= end_ - at_);
        const std::string_view name = block_.Part(at_, length).Text();
        at_ += length;
        return name;
    }

private:
    const Bytes& block_;
    std::uint64_t at_;
    std::uint64_t end_;
};

struct Entry {
    std::uint64_t space = 0;
    std::uint64_t start = 0;
    std::uint64_t length = 0;
};

class Structure {
public:
    explicit Structure(std::string_view content) : file_(content) {}

    void Check() {
        Require(file_.Begins("ITSF"));
        const std::uint64_t version = file_.Word(0x04);
        Require(version == 2 || version == 3);
        const std::uint64_t directory = file_.Number(0x48, 8);
        const std::uint64_t length = file_.Number(0x50, 8);
        data_ = version == 3 ? file_.Number(0x58, 8) : directory + length;
        Require(data_ <= file_.Size());
        CheckDirectory(file_.Part(directory, length));
        CheckExtents();
        if (entries_.count(kContent) != 0) CheckCompression();
    }

private:
    void CheckDirectory(const Bytes& directory) {
        Require(directory.Begins("ITSP"));
        const std::uint64_t header = directory.Word(0x08);
        blockLength_ = directory.Word(0x10);
        blockCount_ = directory.Word(0x2C);
        Require(header == 0x54 && blockLength_ >= 0x20 && blockLength_ <= 0x100000 && blockCount_ > 0);
        Require(blockCount_ <= directory.Size() / blockLength_);
        const Bytes blocks = directory.Part(header, blockLength_ * blockCount_);
        const auto root = static_cast<std::int32_t>(directory.Word(0x1C));
        CheckBlock(blocks, root < 0 ? directory.Word(0x20) : static_cast<std::uint32_t>(root), 0);
    }

    void CheckBlock(const Bytes& blocks, std::uint64_t number, int depth) {
        Require(number < blockCount_ && depth < kMaxDepth && ++visited_ <= blockCount_);
        const Bytes block = blocks.Part(number * blockLength_, blockLength_);
        const std::uint64_t free = block.Word(0x04);
        Require(free <= blockLength_);
        if (block.Begins("PMGL")) return ReadNames(EntryReader(block, 0x14, blockLength_ - free));
        Require(block.Begins("PMGI"));
        EntryReader reader(block, 0x08, blockLength_ - free);
        while (reader.More()) {
            reader.Name();
            CheckBlock(blocks, reader.Number(), depth + 1);
        }
    }

    void ReadNames(EntryReader reader) {
        while (reader.More()) {
            const std::string name(reader.Name());
            Entry entry;
            entry.space = reader.Number();
            entry.start = reader.Number();
            entry.length = reader.Number();
            entries_.insert_or_assign(name, entry);
        }
    }

    void CheckExtents() const {
        for (const auto& [name, entry] : entries_) {
            Require(entry.space <= 1);
            if (entry.space == 0) file_.Part(data_, file_.Size() - data_).Part(entry.start, entry.length);
        }
    }

    Bytes Stored(const char* name) const {
        const auto found = entries_.find(name);
        Require(found != entries_.end() && found->second.space == 0);
        return file_.Part(data_ + found->second.start, found->second.length);
    }

    void CheckCompression() const {
        const Bytes content = Stored(kContent);
        const Bytes control = Stored(kControlData);
        Require(control.Size() >= 0x18 && control.Part(4, 4).Begins("LZXC"));
        const std::uint64_t unit = control.Word(0x08) == 2 ? 0x8000 : 1;
        const std::uint64_t interval = control.Word(0x0C) * unit;
        const std::uint64_t window = control.Word(0x10) * unit;
        Require(window >= 0x8000 && window <= 0x200000 && (window & (window - 1)) == 0);
        Require(interval > 0 && interval <= 0x1000000 && interval % (window / 2) == 0);

        const Bytes table = Stored(kResetTable);
        const std::uint64_t count = table.Word(0x04);
        const std::uint64_t first = table.Word(0x0C);
        const std::uint64_t plain = table.Number(0x10, 8);
        Require(table.Number(0x20, 8) == 0x8000 && table.Number(0x18, 8) <= content.Size());
        Require(count <= table.Size() / 8 && plain <= count * 0x8000);
        std::uint64_t before = 0;
        for (std::uint64_t i = 0; i < count; ++i) {
            const std::uint64_t start = table.Number(first + 8 * i, 8);
            Require(start >= before && start <= content.Size());
            before = start;
        }
        for (const auto& [name, entry] : entries_)
            if (entry.space == 1) Require(entry.start <= plain && entry.length <= plain - entry.start);
    }

    Bytes file_;
    std::uint64_t data_ = 0;  // where the content of the files begins
    std::uint64_t blockLength_ = 0;
    std::uint64_t blockCount_ = 0;
    std::uint64_t visited_ = 0;
    std::map<std::string, Entry> entries_;
};

}  // namespace

std::string ReadHelpFile(const std::string& file) {
    std::ifstream stream(file, std::ios::binary | std::ios::ate);
    const std::streamoff size = stream ? static_cast<std::streamoff>(stream.tellg()) : -1;
    if (size < 0) throw HelpFileError("The file cannot be read.");
    Require(static_cast<std::uint64_t>(size) <= kMaxFileBytes);
    stream.seekg(0);
    std::string content((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
    return content;
}

void CheckSeal(std::string_view content) {
    // The build starts the line with a line break, because the content need not end with one.
    const std::size_t line = content.rfind(kSeal);
    Require(line != std::string_view::npos);
    const std::string_view sealed = content.substr(0, line);
    Require(content.substr(line) ==
            kSeal + std::to_string(Checksum(sealed)) + ' ' + std::to_string(sealed.size()) + '\n');
}

void CheckStructure(std::string_view content) {
    Structure(content).Check();
}

}  // namespace sonavex
