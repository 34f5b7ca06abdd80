#include "ui/widgets/PlotFonts.h"

#include <QFontDatabase>

namespace sonavex::ui {
namespace {

constexpr double kQuietScale = 0.92;

QFont Scaled(QFont font, double points) {
    font.setPointSizeF(points);
    return font;
}

}  // namespace

PlotFonts::PlotFonts(const QFont& base)
    : quiet(Scaled(base, kQuietScale * base.pointSizeF())),
      strong(quiet),
      figure(Scaled(QFontDatabase::systemFont(QFontDatabase::FixedFont), base.pointSizeF())),
      plain(base) {
    strong.setBold(true);
}

}  // namespace sonavex::ui
