#pragma once

#include <filesystem>
#include <utility>

#include "core/ports/MixerJournal.h"

namespace sonavex {

// The journal of the mixers in a file of its own, replaced as a whole and readable for the user alone.
// There is no file while nothing is kept.
class FileMixerJournal : public MixerJournal {
public:
    explicit FileMixerJournal(std::filesystem::path file) : file_(std::move(file)) {}

    std::string Read() override;
    void Write(const std::string& text) override;

private:
    std::filesystem::path file_;
};

}  // namespace sonavex
