#include "ui/ClippedTexts.h"

#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <algorithm>

#include "ui/widgets/ChevronButton.h"
#include "ui/widgets/ChipView.h"
#include "ui/widgets/ElidedLabel.h"
#include "ui/widgets/FittedLabel.h"
#include "ui/widgets/HarmonicsView.h"
#include "ui/widgets/KeyButton.h"

namespace sonavex {
namespace {

constexpr int kButtonFrame = 4;
constexpr int kListArrow = 24;
constexpr int kEntryFrame = 16;

template <class Widget>
const Widget* As(const QWidget& widget) {
    return qobject_cast<const Widget*>(&widget);
}

int TextWidth(const QWidget& widget, const QString& text) {
    return widget.fontMetrics().size(Qt::TextShowMnemonic, text).width();
}

bool LabelFits(const QLabel& label) {
    if (As<ui::FittedLabel>(label) != nullptr) return true;  // shrinks its text
    const QSize needed = label.minimumSizeHint();
    if (As<ui::ElidedLabel>(label) != nullptr) return label.height() >= needed.height();
    if (label.wordWrap()) return label.height() >= label.heightForWidth(label.width());
    return label.width() >= needed.width() && label.height() >= needed.height();
}

bool ButtonFits(const QAbstractButton& button) {
    const bool ownHint = As<ui::KeyButton>(button) != nullptr || As<ui::ChevronButton>(button) != nullptr;
    const int text = TextWidth(button, button.text()) + kButtonFrame;
    const int needed = ownHint ? button.sizeHint().width() : std::min(text, button.sizeHint().width());
    return button.width() >= needed && button.height() >= button.fontMetrics().height();
}

bool EntryFits(const QLineEdit& entry) {
    const QMargins margins = entry.textMargins();
    return entry.width() - margins.left() - margins.right() - kEntryFrame >= TextWidth(entry, entry.text()) &&
           entry.height() >= entry.fontMetrics().height();
}

bool Fits(const QWidget& widget) {
    if (const auto* label = As<QLabel>(widget)) return LabelFits(*label);
    if (const auto* button = As<QAbstractButton>(widget)) return ButtonFits(*button);
    if (const auto* entry = As<QLineEdit>(widget)) return EntryFits(*entry);
    if (const auto* list = As<QComboBox>(widget))
        return list->width() >= TextWidth(*list, list->currentText()) + (list->count() > 1 ? kListArrow : 0);
    if (As<ui::ChipView>(widget) != nullptr || As<ui::HarmonicsView>(widget) != nullptr)
        return widget.width() >= widget.sizeHint().width() && widget.height() >= widget.sizeHint().height();
    return true;
}

bool CutOff(const QWidget& widget) {
    const QWidget* const parent = widget.parentWidget();
    if (widget.isWindow() || parent == nullptr ||
        qobject_cast<const QAbstractScrollArea*>(parent->parentWidget()))
        return false;
    return !parent->rect().contains(widget.geometry());
}

std::string NameOf(const QWidget& widget) {
    const QString text = widget.property("text").toString();
    return (widget.objectName().isEmpty() ? QString(widget.metaObject()->className()) : widget.objectName())
               .toStdString() +
           (text.isEmpty() ? "" : ": " + text.toStdString());
}

}  // namespace

std::vector<std::string> ClippedTexts(const QWidget& window) {
    std::vector<std::string> clipped;
    for (const QWidget* widget : window.findChildren<QWidget*>())
        if (widget->isVisible() && widget->window() == &window && (!Fits(*widget) || CutOff(*widget)))
            clipped.push_back(NameOf(*widget));
    return clipped;
}

}  // namespace sonavex
