#include "ui/ModelessDialog.h"

#include <QApplication>
#include <QCloseEvent>
#include <QLabel>
#include <QScreen>
#include <algorithm>

#include "core/mixer/LevelScale.h"

namespace sonavex::ui {
namespace {

// Width that a label needs in addition to its text.
constexpr int kLabelPadding = 4;

}  // namespace

ModelessDialog::ModelessDialog(ModelessForm& form, HandlerGuard& guard, QWidget* parent)
    : QDialog(parent, parent == nullptr ? Qt::Window : Qt::WindowFlags()),
      form_(form),
      guard_(guard),
      binder_(guard, [this] { Decorate(); }),
      placement_(*this, form.Frame) {
    setModal(false);
    form_.OnShow = [this] { ShowForm(); };
    form_.OnClosed = [this] {
        placement_.Leave();
        hide();
    };
}

void ModelessDialog::Complete() {
    ApplyTheme(*this);
    Align();
    setWindowTitle(QString::fromStdString(form_.Frame.Caption()));
    ensurePolished();
    for (QWidget* widget : findChildren<QWidget*>()) widget->ensurePolished();
    Decorate();
    resize(FirstSize());
    placement_.ReportSize();
}

void ModelessDialog::ShowForm() {
    if (!isVisible()) {
        if (KeepsPlace)
            placement_.Place();
        else
            PlaceBesideParent();
    }
    binder_.Flush();
    show();
    raise();
    activateWindow();
}

void ModelessDialog::PlaceBesideParent() {
    const QRect free = parentWidget()->screen()->availableGeometry();
    const QRect frame({}, frameGeometry().size());
    const QPoint middle = parentWidget()->frameGeometry().center() - frame.center();
    move(qBound(free.left(), middle.x(), qMax(free.left(), free.right() - frame.width())),
         qBound(free.top(), middle.y(), qMax(free.top(), free.bottom() - frame.height())));
}

void ModelessDialog::closeEvent(QCloseEvent* event) {
    event->ignore();
    guard_.Run([this] { form_.Unload(); });
}

void ModelessDialog::reject() {
    guard_.Run([this] { form_.Unload(); });
}

void ModelessDialog::changeEvent(QEvent* event) {
    QDialog::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow())
        guard_.Run([this] { form_.Activate(); });
    themeChanges_.Handle(*event, [this] {
        ApplyTheme(*this);
        Align();
    });
}

void AlignColumn(std::initializer_list<QWidget*> widgets) {
    int width = 0;
    for (const QWidget* widget : widgets) width = std::max(width, widget->sizeHint().width());
    for (QWidget* widget : widgets) widget->setMinimumWidth(width);
}

void ShowPercent(QWidget& dialog, const QString& slider, int percent, bool enabled) {
    auto* const label = dialog.findChild<QLabel*>("percent_" + slider);
    label->setMinimumWidth(
        label->fontMetrics().horizontalAdvance(QString::fromStdString(PercentCaption(100, true))) +
        kLabelPadding);
    label->setText(QString::fromStdString(PercentCaption(percent, enabled)));
    label->setEnabled(enabled);
}

}  // namespace sonavex::ui
