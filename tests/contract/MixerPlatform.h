#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <string>

#include "platform/mixer/HardwareLevels.h"
#include "platform/mixer/HardwareMixerControl.h"
#include "platform/mixer/HardwareMixerLibrary.h"
#include "platform/plain/PlainEventLoop.h"

namespace sonavex {

// The ports of the mixers on one hardware. A Platform is default constructible, lives as long as a
// test and offers
//   std::unique_ptr<MixerHardware> Create(EventLoop&)
//   std::string PlaybackName(), CaptureName()       names of one device as the sound system has them
//   std::set<MixerFunction> Functions()             the controls that its card has
//   void ChangeOutside(MixerFunction, values)       another program writes these raw values
//   std::vector<std::int32_t> OddValues()           two raw master levels between percents, not alike
//   void TakeAway()                                 the card is pulled out
template <class Platform>
class MixerContract : public testing::Test {
protected:
    MixerContract() : hardware_(platform_.Create(loop_)) {
        output_.DeviceCount();
        input_.DeviceCount();
    }

    void SetUp() override { Bind(); }

    void Bind() {
        ASSERT_TRUE(Select(output_, platform_.PlaybackName()));
        ASSERT_TRUE(Select(input_, platform_.CaptureName()));
        std::int32_t status = -1;
        library_.OpenSoundCard(platform_.PlaybackName(), platform_.CaptureName(), "", status);
        ASSERT_EQ(status, 0);
    }

    static bool Select(MixerControl& mixer, const std::string& name) {
        for (std::int32_t number = 0; number < mixer.DeviceCount(); ++number) {
            if (mixer.DeviceName(number) != name) continue;
            mixer.SelectDevice(number);
            return true;
        }
        return false;
    }

    bool Has(MixerFunction function) { return platform_.Functions().count(function) != 0; }

    // Everything of the card, raw.
    std::string Raw() {
        const auto playback = levels_.Read({MixerSide::kPlayback, platform_.PlaybackName()});
        const auto capture = levels_.Read({MixerSide::kCapture, platform_.CaptureName()});
        return playback.value_or("gone") + capture.value_or("gone");
    }

    // Steps that one percent of the control's range is rounded to, in percent.
    double StepPercent(MixerFunction function, MixerSide side) {
        const std::string& name =
            side == MixerSide::kPlayback ? platform_.PlaybackName() : platform_.CaptureName();
        const auto device = hardware_->Open({side, name});
        MixerElement* const element = device ? device->Find(function) : nullptr;
        EXPECT_NE(element, nullptr);
        if (element == nullptr) return 0.0;
        return 100.0 / (element->Range().maximum - element->Range().minimum);
    }

    Platform platform_;
    PlainEventLoop loop_;
    std::unique_ptr<MixerHardware> hardware_;
    HardwareMixerControl output_{*hardware_, MixerSide::kPlayback};
    HardwareMixerControl input_{*hardware_, MixerSide::kCapture};
    HardwareMixerLibrary library_{*hardware_};
    HardwareLevels levels_{*hardware_};
};

}  // namespace sonavex
