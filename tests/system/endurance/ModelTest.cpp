// Random users. After every action the forms are compared with the model.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <deque>

#include "core/settings/SampleRates.h"
#include "support/AnalyzerUser.h"
#include "support/PanelModel.h"
#include "system/endurance/BenchTop.h"

namespace sonavex {
namespace {

std::uint64_t FromEnvironment(const char* name, std::uint64_t fallback) {
    const char* text = std::getenv(name);
    return text == nullptr ? fallback : std::strtoull(text, nullptr, 10);
}

// A second implementation of the order of blocks in the stream.
struct StreamModel {
    void Starts() {
        playBlock = primed = cursor = 0;
        priming = true;
        audible = false;
    }
    // The card has moved one block.
    void CardMoves() {
        if (audible) cursor = (cursor + 1) % 8;
    }
    // A block was captured and measured, and the next one written. Blocks that cannot be measured are not
    // written, so the card catches up with the next block to write.
    void WritesBlock() {
        if (cursor == playBlock) {
            if (!priming) ++overruns;
            cursor = 0;
        }
        playBlock = (playBlock + 1) % 8;
        if (!priming || ++primed < 7) return;
        priming = false;
        audible = true;
        cursor = primed = 0;
        ++playbackStarts;
    }

    std::int32_t playBlock = 0, primed = 0;
    std::int32_t cursor = 0;  // block that the card plays next; 0 before it plays
    bool priming = true, audible = false;
    std::uint64_t playbackStarts = 0, overruns = 0;
};

class ModelRun {
public:
    enum class Analyzer { kNone, kUsed };

    ModelRun(std::uint64_t seed, Analyzer analyzer) : random_(seed) {
        if (analyzer == Analyzer::kNone) return;
        Settings(bench_.Store()).Save(keys::kAnalyzerLength, "0");
        bench_.UseFinePath(false);
        bench_.UseAnalyzer();
        bench_.Recordings.sounds["take.wav"] = {
            .rateHz = 8000, .channels = 2, .frames = 60000, .sample = [](std::int64_t frame) {
                return 0.5 * std::sin(0.785 * static_cast<double>(frame));
            }};
        bench_.Recordings.sounds["empty.wav"] = {};
    }

    void Run(int actions) {
        ASSERT_TRUE(bench_.Start());
        model_ = std::make_unique<PanelModel>(Form().Instrument.Shared.SampleRate);
        for (int i = 0; i < actions && !testing::Test::HasFailure(); ++i) {
            Something();
            if (!testing::Test::HasFailure()) Compare();
            if (testing::Test::HasFailure()) ReportHistory();
        }
    }

    int Readings() const noexcept { return readings_; }

private:
    frmMain& Form() { return bench_.Form(); }

    void Note(const std::string& what) {
        history_.push_back(what);
        if (history_.size() > 25) history_.pop_front();
    }

    void Something() {
        const double kind = random_.Between(0.0, 1.0);
        if (kind < 0.02)
            SelectRate();
        else if (kind < 0.03)
            RestartTheProgram();
        else if (kind < 0.04)
            LoseTheCard();
        else if (bench_.Analyzer() != nullptr && random_.Chance(0.5))
            UseTheAnalyzer();
        else
            UseTheWindow();
        const int blocks = random_.Pick(4);
        for (int i = 0; i < blocks; ++i) Block();
    }

    void UseTheWindow() {
        const UserAction action = NextAction(random_, Form().Instrument.Shared.SampleRate);
        model_->stimulusPlays = Form().GeneratorPanel.StimulusPlaying();
        Note(Describe(action));
        Perform(action, Form(), [this](const auto& event) { bench_.Act(event); });
        model_->Apply(action);
    }

    void UseTheAnalyzer() {
        static const std::vector<std::string> names{"take.wav", "empty.wav", "missing.wav"};
        Note(sonavex::UseAnalyzer(random_, *bench_.Analyzer(), names,
                                  [this](const auto& event) { bench_.Act(event); }));
    }

    void SelectRate() {
        const std::int32_t index = random_.Pick(static_cast<std::int32_t>(SampleRateTable.size()));
        const std::int32_t rateHz = SampleRateTable[static_cast<std::size_t>(index)];
        Note("rate " + std::to_string(rateHz));
        bench_.SelectRate(index);
        model_->StopPlaying();
        model_->FollowRate(rateHz);
        stream_.Starts();
    }

    void RestartTheProgram() {
        Note("program restarted");
        bench_.End();
        ASSERT_TRUE(bench_.Start());
        model_->ProgramRestarts(Form().Instrument.Shared.SampleRate);
        stream_ = {};
    }

    // The generator continues. The stream returns a few seconds after the card.
    void LoseTheCard() {
        Note("card lost");
        // With an invalid typed frequency no block could be measured.
        bench_.Act([this] { Form().Instrument.Meter.Controls.chkAuto.UserSets(true); });
        bench_.Card().Unplug();
        const int blocks = 20 + random_.Pick(20);
        for (int i = 0; i < blocks; ++i) Block();
        EXPECT_FALSE(Form().Instrument.Shared.EventsReady);
        EXPECT_TRUE(Form().Instrument.Watch.Stopped());
        bench_.Card().Plug();
        for (int i = 0; i < 100 && Form().Instrument.Watch.Stopped(); ++i) Block();
        EXPECT_TRUE(Form().Instrument.Shared.EventsReady);
        EXPECT_FALSE(Form().Instrument.Watch.Stopped());
    }

    void Block() {
        const auto time = bench_.BlockTime();
        const std::uint64_t blocks = Form().Instrument.Engine.Blocks;
        const std::uint64_t starts = Form().Instrument.Engine.CaptureStarts;
        bench_.Block();
        stream_.CardMoves();
        if (Form().Instrument.Engine.Blocks != blocks) {
            model_->FillBlock();
            stream_.WritesBlock();
        }
        model_->Pass(time);
        if (Form().Instrument.Engine.CaptureStarts == starts) return;
        model_->FollowRate(Form().Instrument.Shared.SampleRate);
        stream_.Starts();
        AdoptSweeps();
    }

    // Sweeps pause while the stream is restarted.
    void AdoptSweeps() {
        const ToneTable& tones = Form().Instrument.Meter.Generator.Tones;
        for (std::size_t i = 0; i < tones.size(); ++i) {
            ToneRecord& modelled = model_->generator.tones[i];
            if (!modelled.Sweep) continue;
            modelled.Frequency = tones[i].Frequency;
            modelled.SweepFrequency = tones[i].SweepFrequency;
        }
    }

    void Compare() {
        Instrument& instrument = Form().Instrument;
        model_->stimulusPlays = Form().GeneratorPanel.StimulusPlaying();
        if (bench_.Analyzer() != nullptr) CheckAnalyzer(*bench_.Analyzer());
        ExpectAsModelled(Form().GeneratorPanel, instrument.Meter.Generator, instrument.HiTimer1.Enabled(),
                         *model_);
        EXPECT_EQ(instrument.Engine.PlayBlockIndex, stream_.playBlock);
        EXPECT_EQ(instrument.Engine.RestartPending, stream_.priming);
        EXPECT_EQ(instrument.Engine.RestartCount, stream_.primed);
        EXPECT_EQ(instrument.Engine.PlaybackStarts, stream_.playbackStarts);
        EXPECT_EQ(instrument.Engine.Overruns, stream_.overruns);
        EXPECT_EQ(instrument.Shared.SampleRate, model_->Rate());
    }

    // Stimulus and generator never play together. Without a true reading there is no figure.
    void CheckAnalyzer(frmAnalyzer& analyzer) {
        const bool stimulus = Form().GeneratorPanel.StimulusPlaying();
        EXPECT_FALSE(stimulus && Form().Instrument.Meter.Generator.GeneratorRunning);
        const StateChip::Kind state = analyzer.Chip.State();
        const std::string& figure = analyzer.Readings.lblThd.Caption();
        if (state == StateChip::Kind::kVoid || state == StateChip::Kind::kOverload) {
            EXPECT_EQ(figure, "none") << analyzer.Chip.Text();
            for (const ReadingRow& row : analyzer.Readings.Rows) EXPECT_EQ(row.value.Caption(), "");
            EXPECT_TRUE(analyzer.ReportBlock().empty());
        }
        readings_ += figure != "none" ? 1 : 0;
        EXPECT_TRUE(analyzer.Loaded() || figure == "none");
        EXPECT_TRUE(stimulus || analyzer.Stimulus.cmdStart.Caption() == "Start");
    }

    void ReportHistory() {
        std::string lines;
        for (const std::string& line : history_) lines += "  " + line + '\n';
        ADD_FAILURE() << "after\n" << lines;
    }

    SeededRandomness random_;
    BenchTop bench_;
    std::unique_ptr<PanelModel> model_;
    int readings_ = 0;  // actions after which the Analyzer showed a figure
    StreamModel stream_;
    std::deque<std::string> history_;
};

// SONAVEX_MODEL_SEQUENCES and SONAVEX_MODEL_SEED select the number of sequences and the first seed.
TEST(Model, AgreesWithTheFormsWhateverTheUserDoes) {
    const std::uint64_t sequences = FromEnvironment("SONAVEX_MODEL_SEQUENCES", 40);
    const std::uint64_t seed = FromEnvironment("SONAVEX_MODEL_SEED", 1);
    for (std::uint64_t i = 0; i < sequences && !HasFailure(); ++i) {
        SCOPED_TRACE("seed " + std::to_string(seed + i));
        ModelRun(seed + i, ModelRun::Analyzer::kNone).Run(400);
    }
}

TEST(Model, AgreesWithTheFormsNextToAnAnalyzer) {
    const std::uint64_t sequences = FromEnvironment("SONAVEX_MODEL_SEQUENCES", 10);
    const std::uint64_t seed = FromEnvironment("SONAVEX_MODEL_SEED", 1);
    int readings = 0;
    for (std::uint64_t i = 0; i < sequences && !HasFailure(); ++i) {
        SCOPED_TRACE("seed " + std::to_string(seed + i));
        ModelRun run(seed + i, ModelRun::Analyzer::kUsed);
        run.Run(400);
        readings += run.Readings();
    }
    EXPECT_GT(readings, 0);
}

}  // namespace
}  // namespace sonavex
