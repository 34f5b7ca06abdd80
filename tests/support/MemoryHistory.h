#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "core/ports/HistoryFiles.h"

namespace sonavex {

// The files of the history in memory.
class MemoryHistory : public HistoryFiles {
public:
    std::vector<std::string> Days() const override {
        std::vector<std::string> days;
        for (const auto& [day, text] : texts) days.push_back(day);
        return days;
    }
    std::string Read(const std::string& day) const override {
        if (day == unreadable) throw FileError("The day " + day + " cannot be read.");
        const auto found = texts.find(day);
        std::string text = found == texts.end() ? std::string() : found->second;
        if (afterRead) afterRead();
        return text;
    }
    void Append(const std::string& day, const std::string& line) override {
        RequireRoom();
        std::string& text = texts[day];
        if (!text.empty() && text.back() != '\n') text += '\n';
        text += line + '\n';
    }
    bool Replace(const std::string& day, const std::string& before, const std::string& after) override {
        RequireRoom();
        if (texts[day] != before) return false;
        if (after.empty())
            texts.erase(day);
        else
            texts[day] = after;
        return true;
    }
    void Sync(const std::string& day) override {
        if (syncFails) throw FileError("The day " + day + " cannot be stored.");
        synced.push_back(day);
    }

    std::map<std::string, std::string> texts;
    std::vector<std::string> synced;
    bool full = false;  // every change fails
    bool syncFails = false;
    std::string unreadable;           // this day cannot be read
    std::function<void()> afterRead;  // what other processes do after a file was read

private:
    void RequireRoom() const {
        if (full) throw FileError("The disk is full.");
    }
};

}  // namespace sonavex
