#pragma once

#include <memory>
#include <optional>
#include <string>

struct chmFile;

namespace sonavex {

// The files inside a compiled help file. Paths begin with a slash and ignore letter case. Truncated and
// foreign files are refused. One thread at a time.
class ChmArchive {
public:
    // Throws HelpFileError when the file cannot be read or differs from the one that the build compiled.
    explicit ChmArchive(const std::string& file);
    ~ChmArchive();
    ChmArchive(const ChmArchive&) = delete;
    ChmArchive& operator=(const ChmArchive&) = delete;

    bool Exists(const std::string& path) const;
    // Null when there is no such file, or when it cannot be read completely.
    std::optional<std::string> Read(const std::string& path) const;

private:
    struct Close {
        void operator()(chmFile* file) const noexcept;
    };
    std::unique_ptr<chmFile, Close> file_;
};

}  // namespace sonavex
