#pragma once

#include <functional>
#include <span>
#include <string>

#include "core/audio/BlockProcessor.h"
#include "core/ports/Dialogs.h"
#include "core/ports/ErrorLog.h"
#include "support/CallLog.h"

namespace sonavex {

// "Message critical|information TEXT", "SetBusyPointer on|off".
class RecordingDialogs : public Dialogs {
public:
    explicit RecordingDialogs(CallLog& log) noexcept : log_(log) {}
    void Message(const std::string& text, MessageIcon icon) override {
        const char* kinds[] = {"plain ", "information ", "critical "};
        log_.Call("Message", kinds[static_cast<std::size_t>(icon)] + text);
        if (WhileMessage) WhileMessage();
    }
    bool AskOkCancel(const std::string& text) override {
        log_.Call("AskOkCancel", text);
        return Answer;
    }
    bool AskYesNo(const std::string& text) override {
        log_.Call("AskYesNo", text);
        return Answer;
    }
    void SetBusyPointer(bool busy) override { log_.Note(busy ? "SetBusyPointer on" : "SetBusyPointer off"); }
    // Answer to all questions.
    bool Answer = true;
    // Called while a message is open.
    std::function<void()> WhileMessage;

private:
    CallLog& log_;
};

// "WriteErrorLog NUMBER TEXT", "SetFatalError true|false".
class RecordingErrorLog : public ErrorLog {
public:
    explicit RecordingErrorLog(CallLog& log) noexcept : log_(log) {}
    std::int32_t WriteErrorLog(std::string& tStr, const RuntimeError& error) override {
        log_.Call("WriteErrorLog", std::to_string(error.Number()) + ' ' + tStr);
        tStr += "\r\rA record was written.";
        if (onWrite) onWrite();
        return 0;
    }
    // Called while the message is open.
    std::function<void()> onWrite;
    void WriteLine(const std::string& line) override { log_.Call("WriteLine", line); }
    void SetFatalError(bool fatal) override {
        log_.Note(fatal ? "SetFatalError true" : "SetFatalError false");
    }

private:
    CallLog& log_;
};

// "SetUpAnalysis LOW HIGH", "ProcessCapturedBlock", "StreamDisturbed".
class RecordingProcessor : public BlockProcessor {
public:
    explicit RecordingProcessor(CallLog& log) noexcept : log_(log) {}
    void SetUpAnalysis(std::int32_t lowHz, std::int32_t highHz) override {
        log_.Call("SetUpAnalysis", std::to_string(lowHz) + ' ' + std::to_string(highHz));
    }
    void ProcessCapturedBlock(std::span<const std::int16_t> captured,
                              std::span<std::int16_t> playback) override {
        log_.Call("ProcessCapturedBlock");
        if (onBlock) onBlock(captured, playback);
    }
    void StreamDisturbed() override { log_.Note("StreamDisturbed"); }

    std::function<void(std::span<const std::int16_t>, std::span<std::int16_t>)> onBlock;

private:
    CallLog& log_;
};

}  // namespace sonavex
