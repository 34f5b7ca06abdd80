// The report on a real sound server.

#include <gmock/gmock.h>

#include <chrono>
#include <cstdlib>
#include <optional>
#include <string>

#include "platform/qt/QtDiagnostics.h"
#include "support/PulseServer.h"
#include "support/QtWait.h"

namespace sonavex {
namespace {

using testing::HasSubstr;

std::optional<std::string> ReportOn(const SoundServer& server, QtDiagnostics& diagnostics) {
    setenv("PULSE_SERVER", server.Address().c_str(), 1);
    std::optional<std::string> report;
    bool done = false;
    diagnostics.Start([&](const std::optional<std::string>& text) {
        done = true;
        report = text;
    });
    EXPECT_TRUE(WaitInQt(std::chrono::seconds(60), [&] { return done; }));
    unsetenv("PULSE_SERVER");
    return report;
}

TEST(DiagnosticsOnAServer, NameItsDevicesFormatsAndVersion) {
    const PulseServer server({{"card", 44100, "TestCard"}});
    QtDiagnostics diagnostics;
    const std::optional<std::string> report = ReportOn(server, diagnostics);
    ASSERT_TRUE(report.has_value());
    EXPECT_THAT(*report, HasSubstr("=== pactl info ==="));
    EXPECT_THAT(*report, HasSubstr("Server Version: "));
    EXPECT_THAT(*report, HasSubstr("Description: TestCard"));
    EXPECT_THAT(*report, HasSubstr("s16le 2ch 44100Hz"));
    EXPECT_THAT(*report, HasSubstr("=== pulseaudio --version ==="));
}

TEST(DiagnosticsOnAServer, DoNotWaitLongForAStoppedOne) {
    PulseServer server({{"card", 48000, "TestCard"}});
    server.Pause();
    QtDiagnostics diagnostics({{"pactl", {"info"}}, {"pactl", {"list", "sinks"}}, {"pactl", {"--version"}}});
    const std::optional<std::string> report = ReportOn(server, diagnostics);
    server.Continue();
    ASSERT_TRUE(report.has_value());
    EXPECT_THAT(*report, HasSubstr("(gave no answer within 3 s)"));
    EXPECT_EQ(report->find("list sinks"), std::string::npos);
}

}  // namespace
}  // namespace sonavex
