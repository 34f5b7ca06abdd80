#include "ui/widgets/ChevronButton.h"

#include <QPainter>
#include <QStyleOptionButton>
#include <QStylePainter>

#include "ui/widgets/Chevron.h"
#include "ui/widgets/Theme.h"

namespace sonavex::ui {
namespace {

constexpr int kChevronWidth = 12;
constexpr int kChevronGap = 6;
constexpr int kChevronMargin = 8;

}  // namespace

ChevronButton::ChevronButton(QWidget* parent) : QPushButton(parent) {}

void ChevronButton::SetFolds(bool folds) {
    folds_ = folds;
    update();
}

void ChevronButton::SetOpen(bool open) {
    open_ = open;
    update();
}

QSize ChevronButton::sizeHint() const {
    const bool flat = property("role") == "flat";
    const int margin = flat ? 0 : 2 * kChevronMargin;
    const QSize words = fontMetrics().size(Qt::TextShowMnemonic, text());
    const int textWidth = text().isEmpty() ? 0 : words.width() + kChevronGap;
    return {textWidth + kChevronWidth + margin, QPushButton::sizeHint().height()};
}

void ChevronButton::paintEvent(QPaintEvent*) {
    QStylePainter painter(this);
    QStyleOptionButton option;
    initStyleOption(&option);
    option.text.clear();
    option.features &= ~QStyleOptionButton::HasMenu;
    painter.drawControl(QStyle::CE_PushButton, option);
    painter.setRenderHint(QPainter::Antialiasing);
    const Theme& theme = Theme::Current();
    const QColor ink = !isEnabled()                             ? theme.quiet
                       : isDown() && property("role") != "flat" ? theme.onAccent
                                                                : theme.text;
    const int margin = text().isEmpty() ? (width() - kChevronWidth) / 2 : 0;
    const int textWidth = fontMetrics().size(Qt::TextShowMnemonic, text()).width();
    const int chevron = folds_ || text().isEmpty() ? margin : textWidth + kChevronGap;
    DrawChevron(painter, QRectF(chevron, 0, kChevronWidth, height()), ink, open_);
    painter.setPen(ink);
    painter.drawText(QRect(folds_ ? kChevronWidth + kChevronGap : 0, 0, textWidth, height()),
                     Qt::AlignVCenter | Qt::TextShowMnemonic, text());
}

}  // namespace sonavex::ui
