#include "ui/widgets/UnitEdit.h"

#include <QApplication>
#include <QEvent>
#include <QPainter>

#include "ui/widgets/Theme.h"

namespace sonavex::ui {
namespace {

constexpr int kUnitMargin = 9;
constexpr int kUnitGap = 6;

}  // namespace

UnitEdit::UnitEdit(QWidget* parent) : QLineEdit(parent) {}

void UnitEdit::SetUnit(const QString& unit) {
    if (unit == unit_) return;
    unit_ = unit;
    MakeRoom();
    update();
}

QFont UnitEdit::UnitFont() const {
    QFont font = QuietFont(QApplication::font());
    // A painter takes what is not set from the field's font.
    font.setFamilies(font.families());
    font.setBold(false);
    return font;
}

// The style sheet's padding is already next to the text.
void UnitEdit::MakeRoom() {
    const int width = unit_.isEmpty() ? 0 : QFontMetrics(UnitFont()).horizontalAdvance(unit_) + kUnitGap;
    setTextMargins(0, 0, width, 0);
}

void UnitEdit::changeEvent(QEvent* event) {
    QLineEdit::changeEvent(event);
    if (event->type() == QEvent::FontChange) MakeRoom();
}

void UnitEdit::paintEvent(QPaintEvent* event) {
    QLineEdit::paintEvent(event);
    QPainter painter(this);
    painter.setFont(UnitFont());
    painter.setPen(Theme::Current().quiet);
    painter.drawText(rect().adjusted(0, 0, -kUnitMargin, 0), Qt::AlignRight | Qt::AlignVCenter, unit_);
}

}  // namespace sonavex::ui
