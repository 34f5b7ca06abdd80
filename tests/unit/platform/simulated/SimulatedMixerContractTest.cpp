#include "contract/MixerHardwareContract.h"
#include "platform/simulated/SimulatedMixer.h"

namespace sonavex {
namespace {

// The stepped card without the controls in Missing.
template <MixerFunction... Missing>
class SimulatedMixerPlatform {
public:
    std::unique_ptr<MixerHardware> Create(EventLoop& loop) {
        system_ = std::make_unique<SimulatedSoundSystem>(loop, SimulatedSoundSystem::Pace::kStepped);
        auto mixer = std::make_unique<SimulatedMixer>(*system_, loop);
        (mixer->Remove(Missing), ...);
        mixer_ = mixer.get();
        return mixer;
    }
    static std::string PlaybackName() { return SimulatedSoundSystem::kDescription; }
    static std::string CaptureName() { return SimulatedSoundSystem::kDescription; }
    static std::set<MixerFunction> Functions() {
        std::set<MixerFunction> functions;
        for (int i = 0; i <= static_cast<int>(MixerFunction::kLineSource); ++i)
            functions.insert(static_cast<MixerFunction>(i));
        (functions.erase(Missing), ...);
        return functions;
    }
    static std::vector<std::int32_t> OddValues() { return {20123, 40111}; }
    void ChangeOutside(MixerFunction function, const std::vector<std::int32_t>& values) {
        mixer_->SetValues(function, values);
    }
    void TakeAway() { system_->Unplug(); }

private:
    std::unique_ptr<SimulatedSoundSystem> system_;
    SimulatedMixer* mixer_ = nullptr;
};

using Complete = SimulatedMixerPlatform<>;
using Sparse =
    SimulatedMixerPlatform<MixerFunction::kLineVolume, MixerFunction::kMicMute, MixerFunction::kBass,
                           MixerFunction::kMidRange, MixerFunction::kTreble, MixerFunction::kMicRecord,
                           MixerFunction::kMicBoost, MixerFunction::kMicSource, MixerFunction::kLineSource>;

INSTANTIATE_TYPED_TEST_SUITE_P(Simulated, MixerHardwareContract, Complete);
INSTANTIATE_TYPED_TEST_SUITE_P(SimulatedSparse, MixerHardwareContract, Sparse);

}  // namespace
}  // namespace sonavex
