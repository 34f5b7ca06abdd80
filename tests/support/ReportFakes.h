#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>

#include "core/ports/DesktopFiles.h"
#include "core/ports/Diagnostics.h"
#include "core/ports/Help.h"
#include "core/text/Dates.h"
#include "support/CallLog.h"

namespace sonavex {

// A desktop in memory. "Append NAME", "Replace NAME", "Delete NAME".
class MemoryDesktopFiles : public DesktopFiles {
public:
    explicit MemoryDesktopFiles(CallLog& log) noexcept : log_(log) {}
    void Append(const std::string& name, const std::string& text) override {
        log_.Call("Append", name);
        files[name] += text;
    }
    void Replace(const std::string& name, const std::string& text) override {
        log_.Call("Replace", name);
        files[name] = text;
    }
    void Delete(const std::string& name) override {
        log_.Call("Delete", name);
        files.erase(name);
    }

    std::map<std::string, std::string> files;

private:
    CallLog& log_;
};

// A report that is delivered when the test requests it. Records "Diagnostics.Start", "Diagnostics.Cancel".
class ScriptedDiagnostics : public Diagnostics {
public:
    explicit ScriptedDiagnostics(CallLog& log) noexcept : log_(log) {}
    void Start(Done done) override {
        log_.Call("Diagnostics.Start");
        done_ = std::move(done);
    }
    void Cancel() override {
        log_.Note("Diagnostics.Cancel");
        done_ = {};
    }
    bool Running() const noexcept { return static_cast<bool>(done_); }
    void Finish(const std::optional<std::string>& report) {
        if (const Done done = std::exchange(done_, {})) done(report);
    }

private:
    CallLog& log_;
    Done done_;
};

// "ShowTopic NUMBER", "ShowContents".
class RecordingHelp : public Help {
public:
    explicit RecordingHelp(CallLog& log) noexcept : log_(log) {}
    void ShowTopic(std::int32_t topic) override { log_.Call("ShowTopic", std::to_string(topic)); }
    void ShowContents() override { log_.Call("ShowContents"); }

private:
    CallLog& log_;
};

inline DateTime FixedTime() {
    return {2024, 3, 9, 7, 5, 0};
}

}  // namespace sonavex
