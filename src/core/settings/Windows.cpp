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

Place Restore(const Settings& settings, const Window& form, const ScreenArea& screens) {
    Place place;
    place.left = StoredEdge(settings, form.Name() + " Left");
    place.top = StoredEdge(settings, form.Name() + " Top");
    if (place.left == kNeverPlaced || place.top == kNeverPlaced) {
        place.top = Middle(screens.height, form.Height());
        place.left = Middle(screens.width, form.Width());
    }
    if (place.top > screens.bottom - (form.Height() + kBottomMargin))
        place.top = screens.bottom - form.Height();
    if (place.left > screens.right - form.Width()) place.left = screens.right - form.Width();
    return place;
}

void Store(Settings& settings, const Window& form) {
    settings.Store().Save(keys::kWindows, form.Name() + " Left", CStr(form.Left()));
    settings.Store().Save(keys::kWindows, form.Name() + " Top", CStr(form.Top()));
}

}  // namespace sonavex::Windows
