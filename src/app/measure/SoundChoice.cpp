#include "app/measure/SoundChoice.h"

#include <cstdlib>

#include "app/measure/MeasureError.h"
#include "core/text/Numbers.h"
#include "platform/pulse/PulseSoundSystem.h"
#include "platform/simulated/SimulatedSoundSystem.h"

namespace sonavex::measure {
namespace {

constexpr std::int32_t kThisPlatform = 10;

std::string Environment(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? std::string() : std::string(value);
}

}  // namespace

std::string SoundName() {
    const std::string name = Environment("SONAVEX_SOUND");
    if (name.empty() || name == "system") return "system";
    if (name == "simulated") return name;
    throw MeasureError("SONAVEX_SOUND is '" + name + "'; it takes 'system' or 'simulated'.");
}

std::unique_ptr<SoundSystem> ChooseSound(EventLoop& loop) {
    if (SoundName() == "simulated")
        return std::make_unique<SimulatedSoundSystem>(loop, SimulatedSoundSystem::Pace::kRealTime);
    return std::make_unique<PulseSoundSystem>(loop);
}

std::int32_t OsMajorVersion() {
    const std::string text = Environment("SONAVEX_OS_MAJOR");
    if (text.empty()) return kThisPlatform;
    if (!IsNumeric(text)) throw MeasureError("SONAVEX_OS_MAJOR is '" + text + "'; it takes a whole number.");
    return CLng(text);
}

}  // namespace sonavex::measure
