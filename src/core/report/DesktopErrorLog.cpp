#include "core/report/DesktopErrorLog.h"

#include <exception>
#include <utility>

#include "core/report/ErrorNames.h"
#include "core/support/ScopedFlag.h"
#include "core/text/Numbers.h"

namespace sonavex {
namespace {

constexpr const char* kStart =
    "+++++++++++++++++++++++++++++++++ START ++++++++++++++++++++++++++++++++++++++";
constexpr const char* kEnd = "+++++++++++++++++++++++++++++++++ END ++++++++++++++++++++++++++++++++++++++";
constexpr const char* kInputs = "=================== input Devices =======================";
constexpr const char* kOutputs = "==================== Output Devices ========================";
constexpr const char* kSelected = "****** Selected *******";
constexpr const char* kFileCreated =
    "\r\rA file named 'Quenby Error.txt' has been created on your desktop\r"
    "If you are unable to resolve this problem, contact Quenby Software for instuctions to email this file";
constexpr const char* kFileFailed = "\r\rThe file 'Quenby Error.txt' cannot be written on your desktop:\r";

// The result of the action; nothing if it fails.
template <class Action>
auto Attempt(Action action) noexcept -> decltype(action()) {
    try {
        return action();
    } catch (const std::exception&) {
        return {};
    }
}

std::string Line(const std::string& text) {
    return text + '\n';
}

// Description and identifier of a device, and the mark of the selected one.
std::string Entry(const SoundDeviceInfo& device, const std::string& selected) {
    return Line(device.description) +
           Line(device.identifier + (device.identifier == selected ? kSelected : ""));
}

std::string InputEntries(const SoundDeviceList& devices, const std::string& selected) {
    std::string text;
    for (const SoundDeviceInfo& device : devices) text += Entry(device, selected);
    return text;
}

std::string OutputEntries(const SoundDeviceList& devices, const std::string& selected) {
    std::string text;
    for (const SoundDeviceInfo& device : devices)
        text += Entry(device, selected) + Line(device.module) + Line("");
    return text;
}

std::string ErrorLines(const RuntimeError& error) {
    return Line(std::string("Error Description: ") + error.what()) +
           Line("Error Number (Hex/Decimal/Description) : " + Hex(error.Number()) + '/' +
                CStr(error.Number()) + '/' + SoundErrorName(error.Number()));
}

}  // namespace

DesktopErrorLog::DesktopErrorLog(Needs needs) : needs_(std::move(needs)) {}

std::int32_t DesktopErrorLog::WriteErrorLog(std::string& tStr, const RuntimeError& error) {
    try {
        needs_.files.Append(desktop_file::kError, Record(tStr, error));
        tStr += kFileCreated;
    } catch (const std::exception& failure) {
        tStr += std::string(kFileFailed) + failure.what();
    }
    state_.Message = tStr;
    if (dialogOpen_ || !ShowDialog) return 0;
    const ScopedFlag open(dialogOpen_);
    ShowDialog();
    return 0;
}

std::string DesktopErrorLog::Record(const std::string& message, const RuntimeError& error) {
    const auto stored = [this](const SettingsKey& key) {
        return Attempt([&] { return needs_.settings.Text(key); });
    };
    std::string text = Line("") + Line(kStart) + Line(message);
    text += Line("Three Mixers = " + stored(keys::kThreeMixers));
    text += ErrorLines(error);
    text += Line("Output Guid: " + stored(keys::kOutput));
    text += Line(" Input Guid: " + stored(keys::kInput));
    text += Line("  OsVersion: " + Attempt([&] { return CStr(needs_.desktop.OsMajorVersion()); }));
    text += Devices();
    text += Line("Time: " + Attempt([&] { return DateAndTime(needs_.now()); }));
    return text + Line(kEnd);
}

std::string DesktopErrorLog::Devices() {
    const auto stored = [this](const SettingsKey& key) {
        return Attempt([&] { return needs_.settings.Text(key); });
    };
    std::string text = Line(kInputs);
    text += InputEntries(Attempt([&] { return needs_.sound.EnumerateCapture(); }), stored(keys::kInput));
    text += Line(kOutputs);
    return text +
           OutputEntries(Attempt([&] { return needs_.sound.EnumeratePlayback(); }), stored(keys::kOutput));
}

void DesktopErrorLog::WriteLine(const std::string& line) {
    if (OnLine) OnLine(line);
}

}  // namespace sonavex
