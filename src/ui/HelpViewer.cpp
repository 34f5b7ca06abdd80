#include "ui/HelpViewer.h"

#include <QApplication>
#include <utility>

#include "ui/HelpWindow.h"

namespace sonavex::ui {
namespace {

// Whether the widget is the window or one of its descendants.
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

// A modal dialog blocks all windows that are not its children, so the help window becomes a child of the
// dialog that requests it. It is reparented rather than created again, to keep its pages and history.
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
