#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "core/precise/results/ExportedMeasurement.h"

namespace sonavex {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

// 1 kHz at -1 dBFS, H2 hidden by noise, live.
ExportedMeasurement AnyMeasurement() {
    ExportedMeasurement measurement;
    measurement.version = "2.1.14";
    measurement.time = "2026-11-22 17:05:00";
    measurement.channel = "left";
    AnalyzedReading& analyzed = measurement.reading;
    analyzed.rateHz = 48000;
    analyzed.stream = StreamDetails();
    analyzed.stream->input = "Card\nA";
    analyzed.stream->output = "Card B";
    analyzed.stream->inputBits = 24;
    analyzed.stream->outputBits = 16;
    analyzed.stream->notes = {"Clocks: one"};
    analyzed.stimulus = "sine:1k -1 dBFS";
    analyzed.playedHz = {999.755859375};
    analyzed.rules = {{"source", false, "The source is too bad."}};
    Reading& reading = analyzed.values.reading;
    reading.frequencyHz.value = 999.755859375;
    reading.levelDbfs = {-1.0, 1e-6, false};
    reading.thdDb = {-141.25, 0.07, false};
    reading.thdnDb = {-120.5, 0.02, false};
    reading.noiseDbfs.value = -121.5;
    reading.harmonics = {{2, {-150.04, std::nullopt, true}, {}},
                         {3, {-145.5, 0.2, false}, {12.5, 1.0, false}}};
    reading.highestOrder = 9;
    reading.length = 65536;
    reading.blocks = 8;
    reading.bits = 24;
    reading.band = {20, 20000};
    return measurement;
}

ExportedSpectrum AnySpectrum() {
    return {48000, 4, 2.5, 8, {0.0, 1.0, 1e-12}};
}

TEST(ExportedConditions, AreComplete) {
    EXPECT_THAT(ConditionsOf(AnyMeasurement()),
                ElementsAre("Program: Sonavex 2.1.14", "Time: 2026-11-22 17:05:00", "Input: Card A",
                            "Output: Card B", "Rate: 48000 Hz", "Bits: in 24, out 16",
                            "Stimulus: sine:1k -1 dBFS, played 999.755859 Hz", "Channel: left",
                            "Analysis: 8 records of 65536 samples overlapping by 75 %, window 7-term minimum "
                            "side lobe, band 20 to 20000 Hz, THD to order 9",
                            "State: VALID", "Note: Clocks: one", "NOT MET: The source is too bad."));
}

TEST(ExportedConditions, NameTheRecordingOrTheSimulation) {
    ExportedMeasurement measurement = AnyMeasurement();
    measurement.reading.stream->simulated = true;
    EXPECT_THAT(ConditionsOf(measurement), Contains(StartsWith("SIMULATED")));
    measurement.reading.stream.reset();
    measurement.recording = "/tmp/a.wav";
    measurement.reading.values.reading.floatingPoint = true;
    const std::vector<std::string> lines = ConditionsOf(measurement);
    EXPECT_THAT(lines, Contains("Recording: /tmp/a.wav"));
    EXPECT_THAT(lines, Contains("Bits: 24 (float)"));
    EXPECT_THAT(lines, Not(Contains(StartsWith("Stimulus"))));
}

TEST(ExportedConditions, NameTheStateOfAReadingThatIsNotComplete) {
    ExportedMeasurement measurement = AnyMeasurement();
    measurement.state = "SETTLING 3 of 8";
    EXPECT_THAT(ConditionsOf(measurement), Contains("State: SETTLING 3 of 8"));
    EXPECT_THAT(CopiedText(measurement), HasSubstr("State: SETTLING 3 of 8\n"));
    const auto object = nlohmann::ordered_json::parse(ExportedJson(measurement, AnySpectrum()));
    EXPECT_EQ(object.at("state"), "SETTLING 3 of 8");
}

TEST(ExportedConditions, NameTheCauseOfAVoidReading) {
    ExportedMeasurement measurement = AnyMeasurement();
    measurement.reading.values = {};
    measurement.reading.values.reading.voids = {{VoidCode::kDisturbed, "512 frames lost"}};
    measurement.reading.values.reading.warnings = {{WarningCode::kClipped, "3 samples"}};
    const std::vector<std::string> lines = ConditionsOf(measurement);
    EXPECT_THAT(lines, Contains("State: VOID, disturbed: 512 frames lost"));
    EXPECT_THAT(lines, Contains("Warning: clipped: 3 samples"));
    EXPECT_THAT(ReportLines(measurement), testing::IsEmpty());
    EXPECT_THAT(ReadingsCsv(measurement), HasSubstr("\nthd_db,,dB,,0\n"));
    EXPECT_THAT(CopiedText(measurement), Not(HasSubstr("thd_db")));
}

TEST(ExportedJson, HasTheNamesOfTheCommandLineAndTheSpectrum) {
    const ExportedMeasurement measurement = AnyMeasurement();
    const auto object = nlohmann::ordered_json::parse(ExportedJson(measurement, AnySpectrum()));
    EXPECT_EQ(object.at("program"), "Sonavex");
    EXPECT_EQ(object.at("version"), "2.1.14");
    EXPECT_EQ(object.at("state"), "VALID");
    EXPECT_EQ(object.at("time"), "2026-11-22 17:05:00");
    EXPECT_TRUE(object.at("recording").is_null());
    const auto reading = nlohmann::ordered_json::parse(AnalyzedJson(measurement.reading));
    for (const auto& [name, value] : reading.items()) EXPECT_EQ(object.at(name), value) << name;
    EXPECT_THAT(object.at("at_most"), ElementsAre("harmonic.2"));
    EXPECT_EQ(object.at("spectrum").at("bin_hz"), 12000.0);
    EXPECT_EQ(object.at("spectrum").at("records"), 8);
    EXPECT_THAT(object.at("spectrum").at("level_dbfs"), ElementsAre(-400.0, 0.0, -120.0));
}

TEST(ExportedCsv, OfReadingsStatesUnitsAndBounds) {
    const std::string csv = ReadingsCsv(AnyMeasurement());
    EXPECT_THAT(csv, StartsWith("# Program: Sonavex 2.1.14\n# Time: "));
    EXPECT_THAT(csv, HasSubstr("\nname,value,unit,uncertainty,bound\nfrequency_hz,999.755859375,Hz,,0\n"));
    EXPECT_THAT(csv, HasSubstr("\nlevel_dbfs,-1,dBFS,1e-06,0\n"));
    EXPECT_THAT(csv, HasSubstr("\nharmonic.2,-150.04,dBc,,1\nharmonic.2.phase_deg,,degrees,,0\n"));
    EXPECT_THAT(csv, HasSubstr("\nharmonic.3,-145.5,dBc,0.2,0\nharmonic.3.phase_deg,12.5,degrees,1,0\n"));
}

TEST(ExportedCsv, OfTheSpectrumHasALineForEachBin) {
    const std::string csv = SpectrumCsv({"State: VALID"}, AnySpectrum());
    EXPECT_THAT(csv, StartsWith("# State: VALID\n# Mean power spectrum"));
    EXPECT_THAT(csv, HasSubstr("\n# ENBW: 2.500000 bins = 30000.000000 Hz\n"
                               "# Rate: 48000 Hz; record: 4 samples; records: 8, overlapping by 75 %\n"
                               "frequency_hz,level_dbfs\n0,-400.0000\n12000,0.0000\n24000,-120.0000\n"));
}

TEST(CopiedReading, HasNumbersThatCanBePasted) {
    const std::string text = CopiedText(AnyMeasurement());
    EXPECT_THAT(text, HasSubstr("thd_db\t-141.250\tdB\n"));
    EXPECT_THAT(text, HasSubstr("harmonic.2\tat most -150.040\tdBc\n"));
    ExportedMeasurement measurement = AnyMeasurement();
    measurement.reading.values.reading.harmonics.front().levelDbc.value = -150.0406;
    EXPECT_THAT(CopiedText(measurement), HasSubstr("harmonic.2\tat most -150.040\tdBc\n"));
    EXPECT_THAT(text, HasSubstr("State: VALID\n"));
}

TEST(ReportOfTheAnalyzer, FitsThePage) {
    ExportedMeasurement measurement = AnyMeasurement();
    for (int order = 4; order <= 20; ++order)
        measurement.reading.values.reading.harmonics.push_back({order, {-150.0, 1.0, false}, {}});
    measurement.reading.stream->input = std::string(100, 'x');
    const std::vector<std::string> lines = ReportLines(measurement);
    EXPECT_THAT(lines, Contains("THD                 -141.25 dB ± 0.07 re fundamental"));
    measurement.reading.values.reading.harmonics.front().levelDbc.value = -149.96;
    EXPECT_THAT(ReportLines(measurement), Contains(StartsWith("H2 at most -149.9 dBc ")));
    EXPECT_THAT(lines, Contains("H2 at most -150.0 dBc    H3 -145.5 dBc            H4 -150.0 dBc"));
    EXPECT_THAT(lines, Not(Contains(HasSubstr("H10"))));
    EXPECT_THAT(lines, Contains("Time: 2026-11-22 17:05:00"));
    EXPECT_LE(lines.size(), 27U);
    for (const std::string& line : lines) EXPECT_LE(line.size(), 71U) << line;
}

TEST(ReportOfTheAnalyzer, NamesTheTonesOfAPair) {
    ExportedMeasurement measurement = AnyMeasurement();
    measurement.reading.mode = PreciseMode::kPair;
    LinesReading& values = measurement.reading.values;
    values.tones = {{{60.0, 1e-5, false}, {-3.0, 1e-5, false}},
                    {{7000.0, 1e-5, false}, {-15.0, 1e-5, false}}};
    values.intermodulation.modDb = {-80.0, 0.5, false};
    const std::vector<std::string> lines = ReportLines(measurement);
    EXPECT_THAT(lines, Contains(StartsWith("Tone                7000.000 Hz")));
    EXPECT_THAT(lines, Contains("SMPTE / DIN         -80.00 dB ± 0.5"));
}

}  // namespace
}  // namespace sonavex
