// Stored runs. Any text gives a run that is written and read alike, or a sentence on one line.

#include "core/run/StoredRun.h"
#include "fuzz/FuzzTarget.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace sonavex;
    using fuzz::Require;
    try {
        const MeasuredRun run = ParseStoredRun({reinterpret_cast<const char*>(data), size});
        Require(run.results.size() <= run.points.size(), "no more results than points");
        const std::string text = StoredRunText(run);
        Require(StoredRunText(ParseStoredRun(text)) == text, "the written run is the same", text);
        JudgeRun(run.file.limits, run.results, run.points.size());
    } catch (const RunError& error) {
        const std::string_view sentence = error.what();
        Require(!sentence.empty() && sentence.find('\n') == std::string_view::npos, "a sentence on one line",
                sentence);
    }
    return 0;
}
