#include <gtest/gtest.h>

#include "platform/pulse/FormatWatch.h"

namespace sonavex {
namespace {

FormatWatch AfterAnswers(const pa_sample_spec& format, int answers) {
    FormatWatch watch;
    for (int i = 0; i < answers; ++i) watch.Take(format);
    return watch;
}

constexpr pa_sample_spec kFormat{PA_SAMPLE_S24LE, 48000, 2};

TEST(FormatWatch, DetectsAnotherFormatAndAnotherRate) {
    for (const pa_sample_spec& other :
         {pa_sample_spec{PA_SAMPLE_S16LE, 48000, 2}, pa_sample_spec{PA_SAMPLE_S24LE, 44100, 2}}) {
        FormatWatch watch = AfterAnswers(kFormat, 10);
        EXPECT_FALSE(watch.Changed());
        watch.Take(other);
        EXPECT_TRUE(watch.Changed());
        watch.Take(kFormat);
        EXPECT_TRUE(watch.Changed()) << "it is lost for good";
    }
}

TEST(FormatWatch, TheFirstAnswersAreProvisional) {
    FormatWatch watch = AfterAnswers({PA_SAMPLE_S32LE, 44100, 2}, 3);
    watch.Take(kFormat);
    watch.Take(kFormat);
    EXPECT_FALSE(watch.Changed());
    watch.Take({PA_SAMPLE_S32LE, 44100, 2});
    EXPECT_TRUE(watch.Changed());
}

TEST(FormatWatch, AnotherNumberOfChannelsChangesNothing) {
    FormatWatch watch = AfterAnswers(kFormat, 10);
    watch.Take({PA_SAMPLE_S24LE, 48000, 8});
    EXPECT_FALSE(watch.Changed());
}

}  // namespace
}  // namespace sonavex
