#include "fuzz/HelpFileMaker.h"

#include <array>
#include <cstdint>

namespace sonavex::fuzz {
namespace {

constexpr std::size_t kHeaderBytes = 0x60;
constexpr std::size_t kDirectoryHeaderBytes = 0x54;
constexpr std::size_t kBlockBytes = 0x1000;
constexpr std::uint32_t kNone = 0xFFFFFFFF;

std::string Number(std::uint64_t value, unsigned width) {
    std::string bytes;
    for (unsigned i = 0; i < width; ++i) bytes += static_cast<char>((value >> (8U * i)) & 0xFFU);
    return bytes;
}

// Seven bits per byte, highest first.
std::string Packed(std::uint64_t value) {
    std::string bytes(1, static_cast<char>(value & 0x7FU));
    for (value >>= 7U; value > 0; value >>= 7U)
        bytes.insert(bytes.begin(), static_cast<char>(0x80U | (value & 0x7FU)));
    return bytes;
}

std::string Header() {
    const std::size_t directoryBytes = kDirectoryHeaderBytes + kBlockBytes;
    std::string header = "ITSF" + Number(3, 4) + Number(kHeaderBytes, 4) + Number(1, 4);
    header.resize(0x48);
    return header + Number(kHeaderBytes, 8) + Number(directoryBytes, 8) +
           Number(kHeaderBytes + directoryBytes, 8);
}

std::string DirectoryHeader() {
    std::string header = "ITSP" + Number(1, 4) + Number(kDirectoryHeaderBytes, 4) + Number(10, 4) +
                         Number(kBlockBytes, 4) + Number(2, 4) + Number(1, 4) + Number(kNone, 4) +
                         Number(0, 4) + Number(0, 4) + Number(kNone, 4) + Number(1, 4);
    header.resize(kDirectoryHeaderBytes);
    return header;
}

std::string DirectoryBlock(const std::vector<HelpPart>& parts) {
    std::string entries;
    std::size_t start = 0;
    for (const HelpPart& part : parts) {
        entries += Packed(part.name.size()) + part.name;
        entries += Packed(0) + Packed(start) + Packed(part.content.size());
        start += part.content.size();
    }
    std::string block = "PMGL" + Number(kBlockBytes - 0x14 - entries.size(), 4) + Number(0, 4) +
                        Number(kNone, 4) + Number(kNone, 4) + entries;
    block.resize(kBlockBytes);
    return block;
}

// Table of the POSIX checksum.
std::array<std::uint32_t, 256> ChecksumTable() {
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t byte = 0; byte < 256; ++byte) {
        std::uint32_t sum = byte << 24U;
        for (int bit = 0; bit < 8; ++bit)
            sum = (sum & 0x80000000U) != 0 ? (sum << 1U) ^ 0x04C11DB7U : sum << 1U;
        table.at(byte) = sum;
    }
    return table;
}

std::uint32_t Checksum(const std::string& content) {
    static const std::array<std::uint32_t, 256> kTable = ChecksumTable();
    std::uint32_t sum = 0;
    const auto add = [&sum](std::uint32_t byte) { sum = (sum << 8U) ^ kTable.at((sum >> 24U) ^ byte); };
    for (const char byte : content) add(static_cast<unsigned char>(byte));
    for (std::size_t length = content.size(); length > 0; length >>= 8U)
        add(static_cast<std::uint32_t>(length & 0xFFU));
    return ~sum;
}

}  // namespace

std::string Sealed(const std::string& content) {
    return content + "\nSonavex help file " + std::to_string(Checksum(content)) + ' ' +
           std::to_string(content.size()) + '\n';
}

std::string MakeHelpFile(const std::vector<HelpPart>& parts) {
    std::string content = Header() + DirectoryHeader() + DirectoryBlock(parts);
    for (const HelpPart& part : parts) content += part.content;
    return Sealed(content);
}

}  // namespace sonavex::fuzz
