// Stimuli of the command line. Any text gives a stimulus that can be planned and rendered, or a sentence on
// one line.

#include <cmath>

#include "core/stimulus/ParseStimulus.h"
#include "core/stimulus/RenderStimulus.h"
#include "core/stimulus/SampleWord.h"
#include "fuzz/FuzzTarget.h"

namespace sonavex {
namespace {

using fuzz::Require;

void CheckPlan(const StimulusPlan& plan) {
    Require(plan.tones.empty() == IsNoise(plan.shape), "all but noise has tones");
    const double binHz = plan.rateHz / static_cast<double>(plan.length);
    for (const PlannedTone& tone : plan.tones) {
        Require(tone.hertz >= 7.999 * binHz && tone.hertz <= plan.rateHz / 2,
                "frequencies within the limits");
        Require(tone.amplitude > 0 && std::isfinite(tone.amplitude), "amplitudes are positive");
    }
}

void CheckSamples(const StimulusPlan& plan) {
    std::vector<double> samples(plan.length);
    RenderStimulus(plan).Fill(0, samples);
    const double peak = IsNoise(plan.shape) ? kNoiseCrest / std::sqrt(2.0) : 1.0;
    for (const double sample : samples)
        Require(std::abs(sample) <= peak * 1.000001, "the peak has the level");
}

}  // namespace
}  // namespace sonavex

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace sonavex;
    try {
        StimulusRequest request;
        request.stimulus = ParseStimulus({reinterpret_cast<const char*>(data), size});
        request.length = 4096;
        request.levelDbfs = 0;
        request.snap = size % 2 == 0;
        const StimulusPlan plan = PlanStimulus(request);
        CheckPlan(plan);
        CheckSamples(plan);
    } catch (const StimulusError& error) {
        const std::string_view sentence = error.what();
        Require(sentence.find_first_of("\r\n") == std::string_view::npos, "one line", sentence);
        Require(sentence.ends_with('.'), "a sentence", sentence);
    }
    return 0;
}
