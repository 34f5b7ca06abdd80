#include "core/mixer/LegacyMixerState.h"

#include <algorithm>
#include <cstdint>

#include "core/mixer/ControlNames.h"
#include "core/mixer/StateFields.h"
#include "core/text/Numbers.h"

namespace sonavex {
namespace {

std::string WithoutCommas(std::string name) {
    std::replace(name.begin(), name.end(), ',', ' ');
    return name;
}

// Selects the control of that name in the selected destination; false when there is none.
bool SelectByName(MixerControl& mixer, std::string_view name) {
    const std::int16_t count = mixer.ControlCount();
    for (std::int16_t control = 0; control < count; ++control) {
        mixer.SetControl(control);
        if (WithoutCommas(mixer.ControlName()) == name) return true;
    }
    return false;
}

}  // namespace

std::string GetLegacyMixerState(MixerControl& mixer) {
    std::string line;
    ForEachControl(mixer, [&](const std::string& name) {
        line += CStr(std::int32_t{mixer.Destination()}) + ',' + WithoutCommas(name) + ',' +
                CStr(mixer.Value(0)) + ',' + CStr(mixer.Value(1)) + ',';
    });
    return line;
}

void SetLegacyMixerState(MixerControl& mixer, std::string_view line) {
    StateFields fields(line);
    while (!fields.AtEnd()) {
        const std::int16_t destination = CInt(fields.Next());
        const std::string_view name = fields.Next();
        const std::int32_t left = CLng(fields.Next());
        const std::int32_t right = CLng(fields.Next());
        mixer.SetDestination(destination);
        // A negative value was saved for a control that did not answer.
        if (left < 0 || right < 0 || !SelectByName(mixer, name)) continue;
        mixer.SetValue(0, left);
        mixer.SetValue(1, right);
        mixer.Commit();
    }
}

}  // namespace sonavex
