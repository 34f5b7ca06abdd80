#include "ui/HelpViewer.h"

#include <QApplication>
#include <utility>

#include "ui/HelpWindow.h"

namespace sonavex::ui {
namespace {

// Whether the widget, if any, is the window or inside what the window owns.
bool BelongsTo(const QWidget* widget, const QWidget& window) {
    while (widget != nullptr && widget != &window) widget = widget->parentWidget();
    return widget != nullptr;
}

}  // namespace

HelpViewer::HelpViewer(Dialogs& dialogs, std::function<std::string()> helpFile,
                       std::function<std::unique_ptr<HelpBook>(const std::string&)> open)
    : dialogs_(dialogs), helpFile_(std::move(helpFile)), open_(std::move(open)) {}

HelpViewer::~HelpViewer() {
    delete window_.data();
}

HelpWindow* HelpViewer::Open() const {
    return window_.data();
}

// A modal dialog blocks every window that does not belong to it, so the help moves to the dialog that asks
// for it, and goes with it. It is moved, not made anew: what belongs to the help has to stay.
HelpWindow* HelpViewer::Window() {
    QWidget* const owner = QApplication::activeModalWidget();
    if (window_ != nullptr) {
        if (window_->parentWidget() != owner && !BelongsTo(owner, *window_))
            window_->setParent(owner, window_->windowFlags());
        return window_;
    }
    try {
        window_ = new HelpWindow(open_(helpFile_()), owner);
    } catch (const HelpFileError& error) {
        dialogs_.Message("The help file '" + helpFile_() + "' cannot be shown.\r\r" + error.what(),
                         MessageIcon::kInformation);
        return nullptr;
    }
    return window_;
}

void HelpViewer::ShowTopic(std::int32_t topic) {
    if (HelpWindow* const window = Window(); window != nullptr) {
        window->ShowTopic(topic);
        window->BringForward();
    }
}

void HelpViewer::ShowContents() {
    if (HelpWindow* const window = Window(); window != nullptr) {
        window->ShowContents();
        window->BringForward();
    }
}

}  // namespace sonavex::ui
