#pragma once

#include <QFont>

namespace sonavex::ui {

// The fonts of a plot's texts, relative to that of its widget.
struct PlotFonts {
    explicit PlotFonts(const QFont& base);

    QFont quiet;   // labels of the axes, captions
    QFont strong;  // numbers of marks, the flag
    QFont figure;  // values of the cursor, fixed-width
    QFont plain;
};

}  // namespace sonavex::ui
