#pragma once

#include <QDialog>
#include <initializer_list>
#include <optional>

#include "core/controls/ModelessForm.h"
#include "ui/Binder.h"

namespace sonavex::ui {

// The window of a form beside the main form: shown, closed, placed and activated with it.
class ModelessDialog : public QDialog {
    Q_OBJECT

public:
    // Both must outlive the dialog.
    ModelessDialog(ModelessForm& form, HandlerGuard& guard, QWidget& parent);

    const Binder& Bindings() const noexcept { return binder_; }

protected:
    void closeEvent(QCloseEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void changeEvent(QEvent* event) override;
    // Escape closes as the button does.
    void reject() override;

    // To be called at the end of the derived class's constructor: the layout is complete.
    void Complete();
    // After each flush.
    virtual void Decorate() {}
    // After the theme has been applied: widths that depend on the fonts.
    virtual void Align() {}
    // A form that keeps no place opens beside its parent.
    bool KeepsPlace = true;

    Binder& Bindings() noexcept { return binder_; }

private:
    void ShowForm();
    void PlaceBesideParent();

    ModelessForm& form_;
    HandlerGuard& guard_;
    Binder binder_;
    std::optional<QPoint> placedAt_;
    bool applyingTheme_ = false;
};

// Gives the widgets the width of the widest, so that the columns of two groups stand in line.
void AlignColumn(std::initializer_list<QWidget*> widgets);

// Shows a slider's level beside it, in percent; a dash where there is none.
void ShowPercent(QWidget& dialog, const QString& slider, int percent, bool enabled);

}  // namespace sonavex::ui
