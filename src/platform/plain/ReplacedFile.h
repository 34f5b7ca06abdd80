#pragma once

#include <filesystem>
#include <string_view>
#include <system_error>

namespace sonavex {

// Replaces a file atomically. Data goes into an unnamed temporary file; Commit renames it over the target. A
// process that dies earlier leaves the target untouched. A process that dies inside Commit may leave a
// complete ".NAME.new", which the next write removes. Symbolic links are followed. A target that is not a
// regular file, such as a pipe, is written directly.
class ReplacedFile {
public:
    explicit ReplacedFile(const std::filesystem::path& file);
    ~ReplacedFile();
    ReplacedFile(const ReplacedFile&) = delete;
    ReplacedFile& operator=(const ReplacedFile&) = delete;

    // The first error of this object; none while all went well.
    std::error_code Error() const noexcept { return error_; }
    // The descriptor to write to; -1 when the file cannot be opened. Open until the object is destroyed.
    int Descriptor() const noexcept { return descriptor_; }
    // Appends the whole text.
    std::error_code Write(std::string_view text);
    // Call after the last Write: replaces the target.
    std::error_code Commit();

private:
    void Open();
    bool OpenUnnamed(const std::filesystem::path& folder);
    bool OpenNamed();
    bool GiveName();

    std::filesystem::path file_;  // without links
    std::filesystem::path next_;  // name of the new file before it replaces file_
    int descriptor_ = -1;
    bool replaces_ = true;
    bool named_ = false;  // next_ exists
    std::error_code error_;
};

}  // namespace sonavex
