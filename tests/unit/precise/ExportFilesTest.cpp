#include <gmock/gmock.h>

#include <array>

#include "core/precise/results/ExportFiles.h"
#include "support/MemoryFiles.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

class ExportedFiles : public testing::Test {
protected:
    ExportedFiles() {
        content_.measurement.version = "2.1.14";
        content_.measurement.time = "2026-11-22 17:05:00";
        content_.measurement.channel = "left";
        content_.measurement.reading.rateHz = 96000;
        content_.spectrum = {96000, 4, 2.5, 1, {0.0, 1.0, 0.0}};
        content_.record = record_;
        content_.residual = residual_;
        content_.draw = [](ExportKind kind, const std::vector<std::string>& conditions) {
            return std::string("picture ") + FormatOf(kind).suffix + '\n' + conditions.at(0);
        };
    }
    std::string Text(ExportKind kind) {
        WriteExport(files_, "file", kind, content_);
        return files_.texts["file"];
    }

    MemoryFiles files_;
    ExportContent content_;
    const std::array<double, 3> record_{0.1, 0.2, 0.3};
    const std::array<double, 2> residual_{1e-6, -1e-6};
};

// Each states program, version and time.
TEST_F(ExportedFiles, AreMadeForEveryKind) {
    for (const ExportFormat& format : ExportFormats()) {
        WriteExport(files_, format.name, format.kind, content_);
        const auto text = files_.texts.find(format.name);
        const std::string stated =
            text != files_.texts.end() ? text->second : files_.wavs.at(format.name).comment;
        EXPECT_THAT(stated, HasSubstr("Sonavex")) << format.name;
        EXPECT_THAT(stated, HasSubstr("2.1.14")) << format.name;
        EXPECT_EQ(&FormatOf(format.kind), &format);
    }
    EXPECT_THAT(Text(ExportKind::kReadingsCsv), HasSubstr("\nthd_db,"));
    EXPECT_THAT(Text(ExportKind::kSpectrumCsv), HasSubstr("\n24000,0.0000\n"));
    EXPECT_THAT(Text(ExportKind::kJson), StartsWith("{\"program\":"));
    EXPECT_THAT(Text(ExportKind::kPdf), StartsWith("picture .pdf"));
}

TEST_F(ExportedFiles, HoldTheSamples) {
    WriteExport(files_, "r.wav", ExportKind::kRecordWav, content_);
    EXPECT_THAT(files_.wavs["r.wav"].samples, ElementsAre(0.1, 0.2, 0.3));
    EXPECT_EQ(files_.wavs["r.wav"].rateHz, 96000);
    EXPECT_THAT(files_.wavs["r.wav"].comment, HasSubstr("\nState: VALID\n"));
    WriteExport(files_, "d.wav", ExportKind::kResidualWav, content_);
    EXPECT_THAT(files_.wavs["d.wav"].samples, ElementsAre(1e-6, -1e-6));
    content_.residual = {};
    EXPECT_THROW(WriteExport(files_, "x.wav", ExportKind::kResidualWav, content_), FileError);
}

TEST_F(ExportedFiles, ThatDoNotFitAreReported) {
    files_.full = true;
    for (const ExportFormat& format : ExportFormats())
        EXPECT_THROW(WriteExport(files_, "file", format.kind, content_), FileError) << format.name;
}

TEST_F(ExportedFiles, HaveNamesWithATime) {
    EXPECT_EQ(SuggestedName(content_.measurement, ExportKind::kJson), "Sonavex 2026-11-22 17-05-00.json");
}

}  // namespace
}  // namespace sonavex
