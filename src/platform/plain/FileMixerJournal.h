#pragma once

#include <filesystem>
#include <utility>

#include "core/ports/MixerJournal.h"

namespace sonavex {

// The mixer journal as a private file that only the user can read, replaced atomically. An empty journal
// has no file.
class FileMixerJournal : public MixerJournal {
public:
    explicit FileMixerJournal(std::filesystem::path file) : file_(std::move(file)) {}

    std::string Read() override;
    void Write(const std::string& text) override;

private:
    std::filesystem::path file_;
};

}  // namespace sonavex
