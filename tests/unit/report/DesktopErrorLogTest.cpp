#include <gmock/gmock.h>

#include <algorithm>
#include <sstream>

#include "core/ports/SoundErrors.h"
#include "core/report/DesktopErrorLog.h"
#include "core/support/EndProgram.h"
#include "support/FakeSoundSystem.h"
#include "support/World.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* kNote =
    "\r\rA file named 'Quenby Error.txt' has been created on your desktop\rIf you are unable to resolve this "
    "problem, contact Quenby Software for instuctions to email this file";
const std::string kFile = "Quenby Error.txt";

struct LogRig : World {
    LogRig() {
        report.ShowDialog = [this] { shown.push_back(report.State().Message); };
    }
    std::string Write(std::string message, const RuntimeError& error) {
        EXPECT_EQ(report.WriteErrorLog(message, error), 0);
        return message;
    }
    // The lines of the file without their ends.
    std::vector<std::string> Lines() {
        std::vector<std::string> lines;
        std::istringstream text(files.files[kFile]);
        for (std::string line; std::getline(text, line);) lines.push_back(line);
        return lines;
    }
    // The line with this beginning; "(none)" if there is none.
    std::string LineOf(const std::string& beginning) {
        for (const std::string& line : Lines())
            if (line.rfind(beginning, 0) == 0) return line;
        return "(none)";
    }

    Settings settings{store};
    FakeSoundSystem sound{log};
    DesktopErrorLog report{{settings, sound, desktop, files, FixedTime}};
    std::vector<std::string> shown;
};

TEST(ErrorLogRecord, HasEveryLineInOrder) {
    LogRig rig;
    rig.store.Save("SoundCard", "ThreeMixers", "1");
    rig.store.Save("SoundCard", "Output", "out-b");
    rig.store.Save("SoundCard", "Input", "in-a");
    rig.sound.playbackDevices = {
        {"", "Primary Output", "any"}, {"out-a", "Card A", "module-a"}, {"out-b", "Card B", "module-b"}};
    rig.sound.captureDevices = {{"", "Primary Input", "any"}, {"in-a", "Line A", "module-a"}};
    rig.Write("It failed", RuntimeError(sound_error::kBufferLost, "The card has gone."));
    EXPECT_EQ(rig.files.files[kFile],
              "\n"
              "+++++++++++++++++++++++++++++++++ START ++++++++++++++++++++++++++++++++++++++\n"
              "It failed\n"
              "Three Mixers = 1\n"
              "Error Description: The card has gone.\n"
              "Error Number (Hex/Decimal/Description) : 88780096/-2005401450/DSERR_BUFFERLOST\n"
              "Output Guid: out-b\n"
              " Input Guid: in-a\n"
              "  OsVersion: 10\n"
              "=================== input Devices =======================\n"
              "Primary Input\n"
              "\n"
              "Line A\n"
              "in-a****** Selected *******\n"
              "==================== Output Devices ========================\n"
              "Primary Output\n"
              "\n"
              "any\n"
              "\n"
              "Card A\n"
              "out-a\n"
              "module-a\n"
              "\n"
              "Card B\n"
              "out-b****** Selected *******\n"
              "module-b\n"
              "\n"
              "Time: 2024-03-09 07:05:00\n"
              "+++++++++++++++++++++++++++++++++ END ++++++++++++++++++++++++++++++++++++++\n");
}

TEST(ErrorLogRecord, MarksThePrimaryDevicesOnTheirEmptyLines) {
    LogRig rig;
    rig.Write("It failed", RuntimeError(0, ""));
    const std::vector<std::string> lines = rig.Lines();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "****** Selected *******"), 2);
    EXPECT_EQ(rig.LineOf("Three Mixers"), "Three Mixers = ");
    EXPECT_EQ(rig.LineOf("Output Guid"), "Output Guid: ");
    EXPECT_EQ(rig.LineOf(" Input Guid"), " Input Guid: ");
}

TEST(ErrorLogRecord, OfNoErrorHasNumberZero) {
    LogRig rig;
    rig.Write("It failed", RuntimeError(0, ""));
    EXPECT_EQ(rig.LineOf("Error Description"), "Error Description: ");
    EXPECT_EQ(rig.LineOf("Error Number"), "Error Number (Hex/Decimal/Description) : 0/0/DSERR_UNKNOWN");
}

TEST(ErrorLogRecord, NamesTheErrorByItsNumber) {
    const std::pair<std::int32_t, const char*> rows[] = {
        {sound_error::Code(0x88780096U), "88780096/-2005401450/DSERR_BUFFERLOST"},
        {sound_error::Code(0x88780097U), "88780097/-2005401449/DSERR_UNKNOWN"},
        {7, "7/7/DSERR_OUTOFMEMORY"},
        {430, "1AE/430/DSERR_NOINTERFACE"}};
    for (const auto& [number, text] : rows) {
        LogRig rig;
        rig.Write("It failed", RuntimeError(number, "text"));
        EXPECT_THAT(rig.LineOf("Error Number"), EndsWith(std::string(" : ") + text));
    }
}

TEST(ErrorLogRecord, KeepsTheMessagesOwnCarriageReturn) {
    LogRig rig;
    rig.Write("Error Creating Input Capture Device\ror sound card is in use.", RuntimeError(0, ""));
    EXPECT_EQ(rig.Lines()[2], "Error Creating Input Capture Device\ror sound card is in use.");
}

TEST(ErrorLogRecord, FollowsTheOneBefore) {
    LogRig rig;
    rig.Write("First", RuntimeError(0, ""));
    const std::string first = rig.files.files[kFile];
    rig.Write("Second", RuntimeError(0, ""));
    const std::string both = rig.files.files[kFile];
    ASSERT_EQ(both.substr(0, first.size()), first);
    const std::string second = both.substr(first.size());
    EXPECT_THAT(second, StartsWith("\n+++++++++++++++++++++++++++++++++ START "));
    EXPECT_THAT(second, HasSubstr("\nSecond\n"));
    EXPECT_THAT(second, EndsWith("+ END ++++++++++++++++++++++++++++++++++++++\n"));
}

TEST(ErrorLogMessage, GetsTheNoteAndIsShown) {
    LogRig rig;
    const std::string message = rig.Write("It failed", RuntimeError(5));
    EXPECT_EQ(message, std::string("It failed") + kNote);
    EXPECT_THAT(rig.shown, ElementsAre(message));
    EXPECT_FALSE(rig.report.State().FatalError);
    rig.report.SetFatalError(true);
    EXPECT_TRUE(rig.report.State().FatalError);
}

TEST(ErrorLogMessage, IsShownAfterTheRecordWasWritten) {
    LogRig rig;
    std::size_t written = 0;
    rig.report.ShowDialog = [&] { written = rig.files.files[kFile].size(); };
    rig.Write("It failed", RuntimeError(5));
    EXPECT_EQ(written, rig.files.files[kFile].size());
    EXPECT_GT(written, 0U);
}

TEST(ErrorLogFailure, OfTheDeviceListsLeavesTheirHeadingsAndTheRest) {
    LogRig rig;
    rig.log.Fail("EnumerateCapture", RuntimeError(sound_error::kGeneric, "no"));
    rig.log.Fail("EnumeratePlayback", RuntimeError(sound_error::kGeneric, "no"));
    rig.Write("It failed", RuntimeError(5));
    const std::vector<std::string> lines = rig.Lines();
    ASSERT_EQ(lines.size(), 13U);
    EXPECT_EQ(lines[9], "=================== input Devices =======================");
    EXPECT_EQ(lines[10], "==================== Output Devices ========================");
    EXPECT_EQ(lines[11], "Time: 2024-03-09 07:05:00");
    EXPECT_EQ(rig.log.Count("EnumerateCapture"), 1U);
    EXPECT_EQ(rig.log.Count("EnumeratePlayback"), 1U);
}

TEST(ErrorLogFailure, OfOneDeviceListKeepsTheOther) {
    LogRig rig;
    rig.log.Fail("EnumerateCapture", RuntimeError(sound_error::kGeneric, "no"));
    rig.Write("It failed", RuntimeError(5));
    EXPECT_THAT(rig.files.files[kFile], HasSubstr("Card A\nout-a\n"));
}

TEST(ErrorLogFailure, OfSystemAndClockLeavesTheirLinesEmpty) {
    LogRig rig;
    rig.log.Fail("OsMajorVersion", RuntimeError(5));
    DesktopErrorLog broken(
        {rig.settings, rig.sound, rig.desktop, rig.files, []() -> DateTime { throw RuntimeError(5); }});
    std::string message = "It failed";
    broken.WriteErrorLog(message, RuntimeError(5));
    EXPECT_EQ(rig.LineOf("  OsVersion"), "  OsVersion: ");
    EXPECT_EQ(rig.LineOf("Time"), "Time: ");
    EXPECT_THAT(rig.files.files[kFile], EndsWith("+ END ++++++++++++++++++++++++++++++++++++++\n"));
}

TEST(ErrorLogFailure, OfTheFileIsTheMessage) {
    LogRig rig;
    rig.log.Fail("Append", RuntimeError(61, "Disk full"));
    const std::string message = rig.Write("It failed", RuntimeError(5));
    EXPECT_EQ(message,
              "It failed\r\rThe file 'Quenby Error.txt' cannot be written on your desktop:\rDisk full");
    EXPECT_THAT(rig.shown, ElementsAre(message));
    rig.log.Heal("Append");
    EXPECT_THAT(rig.Write("Again", RuntimeError(5)), EndsWith(kNote));
}

TEST(ErrorLogDialog, IsNotOpenedTwice) {
    LogRig rig;
    int opened = 0;
    rig.report.ShowDialog = [&] {
        if (++opened == 1) rig.Write("Second", RuntimeError(5));
    };
    rig.Write("First", RuntimeError(5));
    EXPECT_EQ(opened, 1);
    EXPECT_THAT(rig.files.files[kFile], HasSubstr("\nFirst\n"));
    EXPECT_THAT(rig.files.files[kFile], HasSubstr("\nSecond\n"));
    rig.Write("Third", RuntimeError(5));
    EXPECT_EQ(opened, 2);
}

TEST(ErrorLogDialog, MayEndTheProgram) {
    LogRig rig;
    rig.report.ShowDialog = [] { throw EndProgram{1, true}; };
    std::string message = "It failed";
    EXPECT_THROW(rig.report.WriteErrorLog(message, RuntimeError(5)), EndProgram);
    EXPECT_THAT(message, EndsWith(kNote));
    int opened = 0;
    rig.report.ShowDialog = [&] { ++opened; };
    rig.Write("Again", RuntimeError(5));
    EXPECT_EQ(opened, 1);
}

TEST(ErrorLogLine, IsNoPartOfTheFile) {
    LogRig rig;
    std::vector<std::string> lines;
    rig.report.WriteLine("lost");
    rig.report.OnLine = [&](const std::string& line) { lines.push_back(line); };
    rig.report.WriteLine("kept");
    EXPECT_THAT(lines, ElementsAre("kept"));
    EXPECT_TRUE(rig.files.files.empty());
}

}  // namespace
}  // namespace sonavex
