#pragma once

#include <QDialog>
#include <initializer_list>

#include "core/controls/ModelessForm.h"
#include "ui/Binder.h"
#include "ui/Placement.h"
#include "ui/widgets/Theme.h"

namespace sonavex::ui {

// Window of a modeless form: follows the form's show, close, position and activation.
class ModelessDialog : public QDialog {
    Q_OBJECT

public:
    // Form and guard must outlive the dialog. Without a parent it is a window that other windows can cover.
    ModelessDialog(ModelessForm& form, HandlerGuard& guard, QWidget* parent);

    const Binder& Bindings() const noexcept { return binder_; }

protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    // Escape acts like the close button.
    void reject() override;

    // Call at the end of the derived class's constructor, when the layout is complete.
    void Complete();
    // Runs after each flush.
    virtual void Decorate() {}
    // Runs after the theme has been applied: sets widths that depend on fonts.
    virtual void Align() {}
    // The size before the form is shown for the first time.
    virtual QSize FirstSize() const { return sizeHint().expandedTo(minimumSizeHint()); }
    // False for a form without a stored position: it opens next to its parent.
    bool KeepsPlace = true;

    Binder& Bindings() noexcept { return binder_; }

private:
    void ShowForm();
    void PlaceBesideParent();

    ModelessForm& form_;
    HandlerGuard& guard_;
    Binder binder_;
    Placement placement_;
    ThemeChanges themeChanges_;
};

// Gives all widgets the width of the widest one, to align the columns of two groups.
void AlignColumn(std::initializer_list<QWidget*> widgets);

// Shows a slider's level in percent in the label next to it; a dash if it is disabled.
void ShowPercent(QWidget& dialog, const QString& slider, int percent, bool enabled);

}  // namespace sonavex::ui
