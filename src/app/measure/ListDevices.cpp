#include <nlohmann/json.hpp>
#include <sstream>

#include "app/common/Sound.h"
#include "app/measure/Commands.h"
#include "app/measure/Readings.h"
#include "platform/plain/PlainEventLoop.h"

namespace sonavex::measure {
namespace {

nlohmann::ordered_json AsJson(const SoundDeviceList& devices) {
    auto list = nlohmann::ordered_json::array();
    for (const SoundDeviceInfo& device : devices)
        list.push_back({{"id", device.identifier}, {"name", device.description}, {"module", device.module}});
    return list;
}

void AsText(std::ostream& out, const char* title, const SoundDeviceList& devices) {
    out << title << '\n';
    for (const SoundDeviceInfo& device : devices)
        out << "  " << (device.identifier.empty() ? "(no identifier needed)" : device.identifier)
            << "\n      " << device.description << '\n';
}

}  // namespace

int ListDevices(bool json) {
    PlainEventLoop loop;
    const app::Sound wanted = app::SoundFromEnvironment();
    const auto sound = app::CreateSound(wanted, loop);
    const SoundDeviceList outputs = sound->EnumeratePlayback();
    const SoundDeviceList inputs = sound->EnumerateCapture();
    std::ostringstream out;
    if (json) {
        nlohmann::ordered_json all;
        all["sound"] = app::NameOf(wanted);
        all["outputs"] = AsJson(outputs);
        all["inputs"] = AsJson(inputs);
        out << all.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace) << '\n';
    } else {
        AsText(out, "Outputs (--output):", outputs);
        AsText(out, "Inputs (--input):", inputs);
    }
    Print(out.str());
    return 0;
}

}  // namespace sonavex::measure
