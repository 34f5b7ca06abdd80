#include "app/measure/SoundChoice.h"

#include <cstdlib>

#include "app/common/SystemSound.h"
#include "app/common/WantedSound.h"
#include "app/measure/MeasureError.h"
#include "core/text/Numbers.h"
#include "platform/simulated/SimulatedSoundSystem.h"

namespace sonavex::measure {
namespace {

constexpr std::int32_t kThisPlatform = 10;
constexpr double kHighestMajorVersion = 1000.0;

std::string Environment(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? std::string() : std::string(value);
}

}  // namespace

std::string SoundName() {
    return app::WantedSoundFromEnvironment() == app::WantedSound::kSimulated ? "simulated" : "system";
}

std::unique_ptr<SoundSystem> ChooseSound(EventLoop& loop) {
    if (app::WantedSoundFromEnvironment() == app::WantedSound::kSimulated)
        return std::make_unique<SimulatedSoundSystem>(loop, SimulatedSoundSystem::Pace::kRealTime);
    return app::CreateSystemSound(loop);
}

std::int32_t OsMajorVersion() {
    const std::string text = Environment("SONAVEX_OS_MAJOR");
    if (text.empty()) return kThisPlatform;
    const double value = IsNumeric(text) ? CDbl(text) : 0.0;
    if (value < 1.0 || value > kHighestMajorVersion || value != RoundHalfEven(value))
        throw MeasureError("SONAVEX_OS_MAJOR is '" + text + "'; it takes a whole number of 1 to 1000.");
    return CLng(value);
}

}  // namespace sonavex::measure
