#include "ui/widgets/KeyButton.h"

#include <QPainter>
#include <QStyleOptionButton>
#include <QStylePainter>

#include "ui/widgets/Theme.h"

namespace sonavex::ui {
namespace {

constexpr int kCapGap = 8;
constexpr int kCapPadding = 5;

}  // namespace

KeyButton::KeyButton(QWidget* parent) : QPushButton(parent) {}

void KeyButton::SetKeyCap(const QString& keyCap) {
    keyCap_ = keyCap;
    updateGeometry();
    update();
}

void KeyButton::ShowKeyCap(bool shown) {
    if (shown == capShown_) return;
    capShown_ = shown;
    updateGeometry();
    update();
}

int KeyButton::CapWidth() const {
    return QFontMetrics(QuietFont(font())).horizontalAdvance(keyCap_) + 2 * kCapPadding;
}

QSize KeyButton::sizeHint() const {
    const QSize plain = QPushButton::sizeHint();
    return HasCap() ? plain + QSize(kCapGap + CapWidth(), 0) : plain;
}

// Text and cap are centred together.
void KeyButton::paintEvent(QPaintEvent* event) {
    if (!HasCap()) {
        QPushButton::paintEvent(event);
        return;
    }
    QStylePainter painter(this);
    QStyleOptionButton option;
    initStyleOption(&option);
    option.text.clear();
    painter.drawControl(QStyle::CE_PushButton, option);
    const Theme& theme = Theme::Current();
    const int textWidth = fontMetrics().size(Qt::TextShowMnemonic, text()).width();
    const int all = textWidth + kCapGap + CapWidth();
    const int left = (width() - all) / 2;
    const bool filled = isDown() || isChecked() || property("role") == "primary";
    painter.setPen(!isEnabled() ? theme.quiet : filled ? theme.onAccent : theme.text);
    painter.drawText(QRect(left, 0, textWidth, height()), Qt::AlignVCenter | Qt::TextShowMnemonic, text());
    painter.setFont(QuietFont(font()));
    painter.setRenderHint(QPainter::Antialiasing);
    const int capHeight = painter.fontMetrics().height() + 2;
    const int top = (height() - capHeight) / 2;
    const QRectF cap(left + textWidth + kCapGap + 0.5, top + 0.5, CapWidth() - 1, capHeight - 1);
    painter.setPen(theme.border);
    painter.setBrush(theme.window);
    painter.drawRoundedRect(cap, 3.0, 3.0);
    painter.setPen(theme.quiet);
    painter.drawText(cap, Qt::AlignCenter, keyCap_);
}

}  // namespace sonavex::ui
