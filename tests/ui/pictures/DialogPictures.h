#pragma once

#include <QString>

namespace sonavex {

// Pictures of the dialogs about sound devices in the palette that is set. False when one cannot be saved.
bool DialogPictures(bool dark, const QString& folder);

}  // namespace sonavex
