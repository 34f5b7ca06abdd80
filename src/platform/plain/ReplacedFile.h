#pragma once

#include <filesystem>
#include <string_view>
#include <system_error>

namespace sonavex {

// A file that gets its name when it is complete: until then, and when that never comes, what has the name
// stays as it was, even when the process is killed: at the worst moment that leaves a complete file, named
// after it with a dot and ".new", to the next writing. A link leads to the file that is replaced. What is no
// file of a disk, such as a pipe, is written as it is.
class ReplacedFile {
public:
    explicit ReplacedFile(const std::filesystem::path& file);
    ~ReplacedFile();
    ReplacedFile(const ReplacedFile&) = delete;
    ReplacedFile& operator=(const ReplacedFile&) = delete;

    // Why it cannot be written, none when it can.
    std::error_code Error() const noexcept { return error_; }
    // To write to; -1 after an error. Stays open as long as this object.
    int Descriptor() const noexcept { return descriptor_; }
    // All of the text at the end of what is written already.
    std::error_code Write(std::string_view text);
    // All is written: from here on the name means this file.
    std::error_code Commit();

private:
    void Open();
    bool OpenUnnamed(const std::filesystem::path& folder);
    bool OpenNamed();
    bool GiveName();

    std::filesystem::path file_;  // without links
    std::filesystem::path next_;  // beside it
    int descriptor_ = -1;
    bool replaces_ = true;
    bool named_ = false;  // next_ is there
    std::error_code error_;
};

}  // namespace sonavex
