#include "core/settings/Windows.h"

#include <string>

#include "core/text/Numbers.h"

namespace sonavex::Windows {
namespace {

constexpr std::int32_t kNeverPlaced = -1;
constexpr std::int32_t kBottomMargin = 50;

std::int32_t StoredEdge(const Settings& settings, const std::string& key) {
    return settings.Long({keys::kWindows, key, keys::kNeverPlaced});
}

std::int32_t Middle(std::int32_t screen, std::int32_t form) {
    return CLng(screen / 2.0 - form / 2.0);
}

}  // namespace

Place Restore(const Settings& settings, Window& form, const ScreenArea& screens) {
    form.SetLimits(screens.right, screens.bottom);
    Place place;
    place.left = StoredEdge(settings, form.Name() + " Left");
    place.top = StoredEdge(settings, form.Name() + " Top");
    if (place.left == kNeverPlaced || place.top == kNeverPlaced) {
        place.top = screens.top + Middle(screens.height, form.Height());
        place.left = screens.left + Middle(screens.width, form.Width());
    }
    return KeptOnScreens(place, form);
}

Place KeptOnScreens(Place place, const Window& form) {
    if (place.top > form.BottomLimit() - (form.Height() + kBottomMargin))
        place.top = form.BottomLimit() - form.Height();
    if (place.left > form.RightLimit() - form.Width()) place.left = form.RightLimit() - form.Width();
    return place;
}

void Store(Settings& settings, const Window& form) {
    settings.Store().Save(keys::kWindows, form.Name() + " Left", CStr(form.Left()));
    settings.Store().Save(keys::kWindows, form.Name() + " Top", CStr(form.Top()));
}

}  // namespace sonavex::Windows
