#pragma once

#include <QString>

namespace sonavex {

// Saves pictures of the dialogs about sound devices with the present palette. False if one cannot be saved.
bool DialogPictures(bool dark, const QString& folder);

}  // namespace sonavex
