#include "core/precise/results/StreamDetails.h"

#include "core/audio/StreamEngine.h"

namespace sonavex {

StreamDetails DetailsOf(const StreamEngine& engine, std::int32_t rateHz, bool simulated) {
    const CaptureStatistics counts = engine.CaptureCounts();
    return {.input = engine.InputDeviceName,
            .output = engine.OutputDeviceName,
            .rateHz = rateHz,
            .inputBits = engine.InputBits(),
            .outputBits = engine.OutputBits(),
            .simulated = simulated,
            .notes = engine.PathNotes(),
            .blocksLost = counts.segmentsLost,
            .framesMissing = counts.framesMissing,
            .overruns = engine.Overruns,
            .underruns = engine.Underruns(),
            .fineFramesLost = counts.fineFramesLost,
            .fineFramesMissing = engine.FineFramesMissing()};
}

}  // namespace sonavex
