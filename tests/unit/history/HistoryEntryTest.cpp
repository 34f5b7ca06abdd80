#include <gmock/gmock.h>

#include <cmath>
#include <nlohmann/json.hpp>

#include "core/history/HistoryEntry.h"
#include "core/history/HistoryLine.h"
#include "core/plot/TraceColumns.h"
#include "unit/history/StoredEntries.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const NamedValue* ValueNamed(const std::vector<NamedValue>& values, const std::string& name) {
    for (const NamedValue& value : values)
        if (value.name == name) return &value;
    return nullptr;
}

TEST(HistoryLine, EndsWithTheChecksumOfEverythingBefore) {
    EXPECT_EQ(Fnv1a(""), 0xCBF29CE484222325U);
    EXPECT_EQ(Fnv1a("foobar"), 0x85944171F73967E8U);  // published test vectors of FNV-1a
    const std::string line = SealedLine(R"({"a":1})");
    EXPECT_EQ(nlohmann::json::parse(line)["a"], 1);
    EXPECT_EQ(UnsealedLine(line), R"({"a":1)");
}

TEST(HistoryLine, WithAnyChangedByteIsDamaged) {
    const std::string line = AnyLine();
    ASSERT_TRUE(ReadLine(line));
    for (std::size_t i = 0; i < line.size(); ++i) {
        std::string damaged = line;
        damaged[i] = static_cast<char>(damaged[i] ^ 1);
        EXPECT_FALSE(ReadLine(damaged)) << i;
        EXPECT_FALSE(ReadLine(line.substr(0, i))) << i;
    }
}

TEST(HistoryEntryLine, ReturnsEveryMember) {
    HistoryEntry entry = AnyEntry("2026-11-23-9f");
    entry.note = "new \"caps\",\"details\":{, warm\n µ";
    entry.simulated = true;
    const std::string line = EntryLine(entry, "{}", {});
    EXPECT_EQ(line.find('\n'), std::string::npos);
    const std::optional<HistoryRecord> read = ReadLine(line);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->kind, HistoryRecord::Kind::kEntry);
    EXPECT_EQ(read->entry.id, "2026-11-23-9f");
    EXPECT_EQ(read->entry.time, "2026-11-23 10:58:21");
    EXPECT_EQ(read->entry.note, entry.note);
    EXPECT_EQ(read->entry.input, "Line In");
    EXPECT_EQ(read->entry.output, "Line Out");
    EXPECT_EQ(read->entry.channel, "left");
    EXPECT_EQ(read->entry.rateHz, 48000);
    EXPECT_EQ(read->entry.inputBits, 24);
    EXPECT_EQ(read->entry.outputBits, 16);
    EXPECT_TRUE(read->entry.simulated);
    EXPECT_EQ(read->entry.mode, "thd");
    EXPECT_EQ(read->entry.stimulus, "sine:1000");
    EXPECT_THAT(read->entry.playedHz, ElementsAre(999.755859375));
    EXPECT_EQ(EntryLine(read->entry, "{}", {}), line);
}

TEST(HistoryEntryLine, KeepsStateReasonAndRecordingOfARun) {
    for (const HistoryState state : {HistoryState::kDone, HistoryState::kPass, HistoryState::kFail,
                                     HistoryState::kNotComplete, HistoryState::kOverload}) {
        HistoryEntry entry;
        entry.id = "a";
        entry.time = "2026-11-23 10:00:00";
        entry.kind = HistoryKind::kRun;
        entry.state = state;
        entry.reason = "1 kHz: 2.5 dB over";
        entry.recording = "/tmp/a.wav";
        const std::optional<HistoryRecord> read = ReadLine(EntryLine(entry, "{}", {}));
        ASSERT_TRUE(read);
        EXPECT_EQ(read->entry.kind, HistoryKind::kRun);
        EXPECT_EQ(read->entry.state, state);
        EXPECT_EQ(read->entry.reason, entry.reason);
        EXPECT_EQ(read->entry.recording, "/tmp/a.wav");
    }
}

TEST(HistoryEntryLine, ReturnsTheValuesOfTheReading) {
    const HistoryDetails details = ReadDetails(AnyLine()).value();
    const std::vector<NamedValue> expected = NamedValuesOf(LiveReading().reading);
    ASSERT_EQ(details.values.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(details.values[i].name, expected[i].name);
        EXPECT_EQ(details.values[i].unit, expected[i].unit);
        EXPECT_EQ(details.values[i].decimals, expected[i].decimals);
        EXPECT_EQ(details.values[i].value.value, expected[i].value.value) << expected[i].name;
        EXPECT_EQ(details.values[i].value.uncertainty, expected[i].value.uncertainty) << expected[i].name;
        EXPECT_EQ(details.values[i].value.atMost, expected[i].value.atMost) << expected[i].name;
    }
    EXPECT_EQ(details.json, AnalyzedJson(LiveReading().reading));
    EXPECT_THAT(details.curve.levelsDbfs, IsEmpty());
}

TEST(HistoryEntryLine, NumbersTheTonesOfAPair) {
    AnalyzedReading pair;
    pair.mode = PreciseMode::kPair;
    pair.values.tones = {{{60.0, 1e-6, false}, {-2.5, {}, false}},
                         {{7000.0, {}, false}, {-14.5, 0.01, false}}};
    pair.values.intermodulation.modDb = {-80.5, 0.1, false};
    const std::string line = EntryLine(AnyEntry(), DetailsOf(pair), {});
    const std::vector<NamedValue> values = ReadDetails(line)->values;
    ASSERT_NE(ValueNamed(values, "frequency_hz.2"), nullptr);
    EXPECT_EQ(ValueNamed(values, "frequency_hz.1")->value.uncertainty, 1e-6);
    EXPECT_EQ(ValueNamed(values, "frequency_hz.2")->value.value, 7000.0);
    EXPECT_EQ(ValueNamed(values, "level_dbfs.2")->value.uncertainty, 0.01);
    EXPECT_EQ(ValueNamed(values, "mod_db")->value.value, -80.5);
}

TEST(HistoryEntryLine, OfARunKeepsItsFiguresAndItsDetails) {
    HistoryEntry run = AnyEntry();
    run.kind = HistoryKind::kRun;
    run.figures = {{"points", "", 0, {61.0, {}, false}}, {"worst_db", "dB", 2, {-1.5, {}, true}}};
    const HistoryDetails details = ReadDetails(EntryLine(run, R"({"curve":[1,2],"points":[]})", {})).value();
    EXPECT_EQ(details.json, R"({"curve":[1,2],"points":[]})");
    ASSERT_EQ(details.values.size(), 2U);
    EXPECT_EQ(details.values[1].name, "worst_db");
    EXPECT_EQ(details.values[1].unit, "dB");
    EXPECT_EQ(details.values[1].decimals, 2);
    EXPECT_TRUE(details.values[1].value.atMost);
}

TEST(HistoryEntryLine, RefusesWhatIsNoEntry) {
    for (const char* const object :
         {R"({"id":"a"})", R"({"id":"a","time":"2026-11-23 10:00:00","kind":"future","state":"VALID"})",
          R"({"id":"a","time":"2026-11-23 10:00:00","kind":"run","state":"LATER"})",
          R"({"id":1,"time":"2026-11-23 10:00:00","kind":"run","state":"PASS"})",
          R"({"of":"a","kind":"move"})", R"({"of":"","kind":"delete"})", R"([1])"})
        EXPECT_FALSE(ReadLine(SealedLine(object))) << object;
}

// Hostile text: a checksum does not prove the origin.
TEST(HistoryEntryLine, SurvivesDeepNesting) {
    std::string object = AnyLine();
    object = object.substr(0, object.find(",\"details\":")) + ",\"details\":{\"a\":";
    object += std::string(100000, '[') + std::string(100000, ']') + "}}";
    EXPECT_TRUE(ReadLine(SealedLine(object)));
    EXPECT_TRUE(ReadDetails(SealedLine(object)));
}

TEST(HistoryChangeLine, RefersToItsEntry) {
    const std::optional<HistoryRecord> note = ReadLine(NoteLine("a", "warm"));
    ASSERT_TRUE(note);
    EXPECT_EQ(note->kind, HistoryRecord::Kind::kNote);
    EXPECT_EQ(note->entry.id, "a");
    EXPECT_EQ(note->entry.note, "warm");
    const std::optional<HistoryRecord> deletion = ReadLine(DeletionLine("a"));
    ASSERT_TRUE(deletion);
    EXPECT_EQ(deletion->kind, HistoryRecord::Kind::kDeletion);
    EXPECT_EQ(deletion->entry.id, "a");
}

TEST(ReadingEntry, HasTheFiguresOfTheList) {
    const HistoryEntry entry = EntryOf(LiveReading());
    EXPECT_EQ(entry.state, HistoryState::kValid);
    EXPECT_EQ(entry.reason, "");
    std::vector<std::string> names;
    for (const NamedValue& figure : entry.figures) names.push_back(figure.name);
    EXPECT_THAT(names, ElementsAre("level_dbfs", "thd_db", "thdn_db", "noise_dbfs"));
}

TEST(ReadingEntry, OfARecordingHasItsBits) {
    ExportedMeasurement measurement = LiveReading();
    measurement.reading.stream.reset();
    measurement.recording = "/tmp/a.wav";
    const HistoryEntry entry = EntryOf(measurement);
    EXPECT_EQ(entry.recording, "/tmp/a.wav");
    EXPECT_EQ(entry.inputBits, 24);
    EXPECT_EQ(entry.outputBits, 0);
    EXPECT_EQ(entry.stimulus, "");
}

// A void reading that still contains figures is stored without them.
TEST(ReadingEntry, ThatIsVoidHasNoFigures) {
    struct Case {
        VoidCode code;
        HistoryState state;
    };
    for (const Case& test : {Case{VoidCode::kDisturbed, HistoryState::kVoid},
                             Case{VoidCode::kOverload, HistoryState::kOverload}}) {
        ExportedMeasurement measurement = LiveReading();
        measurement.reading.values.reading.voids = {{test.code, "512 frames were lost."}};
        const HistoryEntry entry = EntryOf(measurement);
        EXPECT_EQ(entry.state, test.state);
        EXPECT_EQ(entry.reason, "512 frames were lost.");
        EXPECT_THAT(entry.figures, IsEmpty());
        const auto json = nlohmann::json::parse(DetailsOf(measurement.reading));
        EXPECT_EQ(json["thd_db"], nullptr);
        EXPECT_EQ(json["level_dbfs"], nullptr);
        EXPECT_THAT(json["harmonic"], IsEmpty());
        EXPECT_EQ(json["length"], 65536);
        EXPECT_EQ(json["sentences"][0], "512 frames were lost.");
    }
}

TEST(ReadingEntry, NamesWhatLimitsIt) {
    ExportedMeasurement measurement = LiveReading();
    measurement.reading.rules = {{"idle", true, "Met."}, {"source", false, "The source is too bad."}};
    EXPECT_EQ(EntryOf(measurement).state, HistoryState::kValid);
    EXPECT_EQ(EntryOf(measurement).reason, "The source is too bad.");
    Reading& reading = measurement.reading.values.reading;
    reading.warnings = {{WarningCode::kClipped, "It clips."}};
    EXPECT_EQ(EntryOf(measurement).state, HistoryState::kValid);
    EXPECT_EQ(EntryOf(measurement).reason, "It clips.");
    reading.warnings.push_back({WarningCode::kUnsteadyTone, "It moves."});
    EXPECT_EQ(EntryOf(measurement).state, HistoryState::kUnsteady);
    EXPECT_EQ(EntryOf(measurement).reason, "It moves.");
    EXPECT_FALSE(EntryOf(measurement).figures.empty());
}

TEST(HistoryStates, ThatShowFiguresToTrust) {
    using enum HistoryState;
    for (const HistoryState state : {kValid, kDone, kPass, kFail})
        EXPECT_TRUE(IsValid(state)) << NameOf(state);
    for (const HistoryState state : {kUnsteady, kVoid, kOverload, kNotComplete})
        EXPECT_FALSE(IsValid(state)) << NameOf(state);
}

TEST(HistoryCurve, KeepsLevelsToAHundredth) {
    const std::vector<double> levels{-140.563, 0.0, -0.005, 320.0, -320.0, -1000.0, std::nan("")};
    const std::vector<double> read = DecodedLevels(EncodedLevels(levels));
    ASSERT_EQ(read.size(), levels.size());
    for (std::size_t i = 0; i + 2 < levels.size(); ++i) EXPECT_NEAR(read[i], levels[i], 0.00501) << i;
    EXPECT_EQ(read[5], -320.0);
    EXPECT_TRUE(std::isnan(read[6]));
}

TEST(HistoryCurve, RefusesOtherText) {
    EXPECT_THAT(DecodedLevels("AA"), IsEmpty());
    EXPECT_THAT(DecodedLevels("AA*"), IsEmpty());
    EXPECT_THAT(DecodedLevels("///"), IsEmpty());
    EXPECT_EQ(DecodedLevels(std::string(3600, 'A')).size(), 1200U);
    EXPECT_THAT(DecodedLevels(std::string(3603, 'A')), IsEmpty());
}

TEST(HistoryCurve, IsTheLineOfThePlot) {
    ExportedSpectrum spectrum{48000, 65536, 2.6, 8, std::vector<double>(32769, 1e-14)};
    spectrum.power[1365] = 0.5;
    const HistoryCurve curve = HistoryCurve::Of(spectrum, 8);
    EXPECT_EQ(curve.lowHz, 10);
    EXPECT_EQ(curve.highHz, 24000);
    ASSERT_EQ(curve.levelsDbfs.size(), HistoryCurve::kMostColumns);
    const auto peak = std::max_element(curve.levelsDbfs.begin(), curve.levelsDbfs.end());
    EXPECT_NEAR(*peak, -3.01, 0.01);
    EXPECT_NEAR(static_cast<double>(peak - curve.levelsDbfs.begin()),
                1200 * std::log10(99.98) / std::log10(2400), 1);
    EXPECT_NEAR(curve.levelsDbfs[1190], -140, 0.01);
    const HistoryDetails stored = ReadDetails(EntryLine(AnyEntry(), "{}", curve)).value();
    EXPECT_EQ(stored.curve.highHz, 24000);
    ASSERT_EQ(stored.curve.levelsDbfs.size(), HistoryCurve::kMostColumns);
    EXPECT_NEAR(stored.curve.levelsDbfs[1190], -140, 0.01);
    EXPECT_THAT(HistoryCurve::Of({48000, 65536, 2.6, 0, {}}, 1).levelsDbfs, IsEmpty());
}

TEST(HistoryCurve, LooksTheSameAsATrace) {
    ExportedSpectrum spectrum{48000, 65536, 2.6, 8, std::vector<double>(32769, 1e-14)};
    for (const std::size_t bin : {1365, 2730, 4095, 20000}) spectrum.power[bin] = 1e-3;
    const HistoryCurve curve = HistoryCurve::Of(spectrum, 8);
    const SpectrumTrace trace = TraceOf(curve, "10:51:17");
    EXPECT_EQ(trace.name, "10:51:17");
    EXPECT_DOUBLE_EQ(trace.LastHz(), 24000);
    const PlotRange decades{std::log10(curve.lowHz), std::log10(curve.highHz)};
    const std::vector<TraceColumn> columns = TraceColumns(trace, decades, HistoryCurve::kMostColumns);
    for (const double hertz : {999.8, 1999.5, 2999.3, 14648.4, 12000.0}) {
        const auto column = static_cast<std::size_t>(1200 * decades.FractionOf(std::log10(hertz)));
        EXPECT_NEAR(columns[column].Line(), curve.levelsDbfs[column], 0.5) << hertz;
    }
    EXPECT_TRUE(TraceOf(HistoryCurve(), "").power.empty());
}

}  // namespace
}  // namespace sonavex
