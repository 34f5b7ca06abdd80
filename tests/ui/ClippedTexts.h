#pragma once

#include <QWidget>
#include <string>
#include <vector>

namespace sonavex {

// The names of the visible widgets in the window whose text does not fit, or that another widget cuts off.
// What a scroll area can show is not cut off. A label that elides its text needs only the height.
std::vector<std::string> ClippedTexts(const QWidget& window);

}  // namespace sonavex
