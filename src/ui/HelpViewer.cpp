#include "ui/HelpViewer.h"

#include <QApplication>
#include <utility>

#include "ui/HelpWindow.h"

namespace sonavex::ui {

HelpViewer::HelpViewer(Dialogs& dialogs, std::function<std::string()> helpFile,
                       std::function<std::unique_ptr<HelpBook>(const std::string&)> open)
    : dialogs_(dialogs), helpFile_(std::move(helpFile)), open_(std::move(open)) {}

HelpViewer::~HelpViewer() {
    delete window_.data();
}

HelpWindow* HelpViewer::Open() const {
    return window_.data();
}

// A modal dialog blocks every window that does not belong to it, so the help belongs to the dialog that
// asks for it, and goes with it.
HelpWindow* HelpViewer::Window() {
    QWidget* const owner = QApplication::activeModalWidget();
    if (window_ != nullptr && window_->parentWidget() == owner) return window_;
    try {
        auto book = open_(helpFile_());
        delete window_.data();
        window_ = new HelpWindow(std::move(book), owner);
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
