// The Analyzer's form and the command line measure the same recordings.

#include <gmock/gmock.h>

#include <cmath>
#include <numbers>
#include <sstream>

#include "core/precise/display/frmAnalyzer.h"
#include "platform/sndfile/SndfileFiles.h"
#include "support/AnalyzerNeeds.h"
#include "support/FormRig.h"
#include "support/InlineBackground.h"
#include "support/Recordings.h"
#include "system/cli/MeasureProgram.h"

namespace sonavex {
namespace {

using nlohmann::ordered_json;

constexpr std::int64_t kWindowRecord = 16384;
constexpr std::int32_t kWindowRateHz = 8000;

double TwoHarmonics(std::int64_t frame) {
    const double t =
        2.0 * std::numbers::pi * std::fmod(440.3 * static_cast<double>(frame) / kWindowRateHz, 1.0);
    return 0.5 * (std::sin(t) + 0.01 * std::sin(2.0 * t + 0.5) + 0.001 * std::sin(3.0 * t - 1.0));
}

struct SameRecording {
    const char* name;
    int format;
    std::int64_t frames;
    RecordedSignal signal;
};

class AnalyzeInWindow : public testing::TestWithParam<SameRecording> {
protected:
    // What the window copies, by name; empty without a reading.
    std::string Copied(const RecordingFile& file) {
        frmAnalyzer::Needs needs =
            AnalyzerNeeds(rig.form, rig.loop, background, rig.dialogs, files, stored.history);
        needs.simulated = false;
        needs.version = SONAVEX_VERSION;
        frmAnalyzer form(needs);
        std::string copied;
        form.OnCopy = [&copied](const std::string& text) { copied = text; };
        form.OpenRecording(file.Path());
        rig.loop.Advance(std::chrono::seconds(1));
        chip = form.Chip.State();
        mainFigure = form.Readings.lblThd.Caption();
        form.cmdCopy.Press();
        form.Unload();
        return copied;
    }

    FormRig rig;
    InlineBackground background{rig.loop};
    SndfileFiles files;
    HistoryInMemory stored{background};
    StateChip::Kind chip = StateChip::Kind::kOff;
    std::string mainFigure;
};

// The number of decimals of a figure.
int DecimalsOf(const std::string& figure) {
    const std::size_t point = figure.find('.');
    return point == std::string::npos ? 0 : static_cast<int>(figure.size() - point - 1);
}

TEST_P(AnalyzeInWindow, ShowsWhatTheCommandLinePrints) {
    const RecordingFile file({kWindowRateHz, 1, GetParam().format, GetParam().frames}, GetParam().signal);
    const Outcome printed = Measure({"analyze", file.Path(), "--json"});
    ASSERT_EQ(printed.Json().size(), 1U) << printed.errors;
    const ordered_json reading = printed.Json().front();
    const std::string copied = Copied(file);
    if (!reading["valid"].get<bool>()) {
        EXPECT_TRUE(chip == StateChip::Kind::kVoid || chip == StateChip::Kind::kOverload);
        EXPECT_EQ(mainFigure, "none");
        EXPECT_THAT(copied, testing::HasSubstr("State: VOID"));
        return;
    }
    EXPECT_EQ(chip, StateChip::Kind::kValid);
    std::istringstream lines(copied);
    int compared = 0;
    for (std::string line; std::getline(lines, line) && line.find('\t') != std::string::npos;) {
        const std::string name = line.substr(0, line.find('\t'));
        std::string figure = line.substr(name.size() + 1);
        figure.resize(figure.find('\t'));
        if (figure.starts_with("at most ")) figure.erase(0, 8);
        if (!reading.contains(name) || !reading[name].is_number()) continue;
        EXPECT_NEAR(std::stod(figure), reading[name].get<double>(),
                    0.51 * std::pow(10.0, -DecimalsOf(figure)))
            << name;
        ++compared;
    }
    EXPECT_GE(compared, 15) << copied;
}

std::vector<SameRecording> SameRecordings() {
    const auto tone = [](std::int64_t frame, int) { return TwoHarmonics(frame); };
    const auto clipped = [](std::int64_t frame, int) {
        return std::clamp(2.4 * TwoHarmonics(frame), -1.0, 1.0);
    };
    const auto lost = [](std::int64_t frame, int) {
        return TwoHarmonics(frame < kWindowRecord / 2 ? frame : frame + 3);
    };
    const int doubles = SF_FORMAT_WAV | SF_FORMAT_DOUBLE;
    const int words24 = SF_FORMAT_WAV | SF_FORMAT_PCM_24;
    const int words16 = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    return {{"Doubles", doubles, 4 * kWindowRecord, tone},
            {"Words24", words24, 3 * kWindowRecord, tone},
            {"Words16", words16, 3 * kWindowRecord + 1234, tone},
            {"Clipped", words16, 2 * kWindowRecord, clipped},
            {"SamplesLost", words24, kWindowRecord, lost},
            {"Silent", words24, kWindowRecord, Silence()},
            {"TooShort", words24, 1000, tone}};
}

INSTANTIATE_TEST_SUITE_P(Recordings, AnalyzeInWindow, testing::ValuesIn(SameRecordings()),
                         [](const auto& test) { return std::string(test.param.name); });

}  // namespace
}  // namespace sonavex
