#pragma once

#include <string>
#include <vector>

#include "core/ports/MeasurementFiles.h"

namespace sonavex {

// The files of the history: lines of text, in one file for each local day ("2026-11-23"). Other processes may
// use the same files at the same time. Any thread. All calls throw FileError.
class HistoryFiles {
public:
    virtual ~HistoryFiles() = default;

    // The days that have a file, oldest first.
    virtual std::vector<std::string> Days() const = 0;
    // The whole text; empty without a file.
    virtual std::string Read(const std::string& day) const = 0;

    // Adds a line, which has no line end yet, with one write. A failure leaves the file as it was. If the
    // file ends with an incomplete line of a killed process, that line is ended first.
    virtual void Append(const std::string& day, const std::string& line) = 0;
    // Replaces the text atomically if it is still `before`; returns whether it was. An empty `after` removes
    // the file. May wait for the disk.
    virtual bool Replace(const std::string& day, const std::string& before, const std::string& after) = 0;
    // Waits until everything appended is on the disk.
    virtual void Sync(const std::string& day) = 0;
};

}  // namespace sonavex
