#pragma once

#include <QPointer>
#include <functional>
#include <memory>
#include <string>

#include "core/ports/Dialogs.h"
#include "core/ports/Help.h"
#include "core/ports/HelpBook.h"

namespace sonavex::ui {

class HelpWindow;

// Shows the help file in the help window. A file that cannot be shown gives a message and is tried again the
// next time.
class HelpViewer : public Help {
public:
    // helpFile returns the path of the help file; open reads it and throws HelpFileError. The dialogs must
    // outlive the viewer.
    HelpViewer(Dialogs& dialogs, std::function<std::string()> helpFile,
               std::function<std::unique_ptr<HelpBook>(const std::string&)> open);
    ~HelpViewer() override;
    HelpViewer(const HelpViewer&) = delete;
    HelpViewer& operator=(const HelpViewer&) = delete;

    void ShowTopic(std::int32_t topic) override;
    void ShowContents() override;

    // The open window, if any.
    HelpWindow* Open() const;

private:
    HelpWindow* Window();

    Dialogs& dialogs_;
    std::function<std::string()> helpFile_;
    std::function<std::unique_ptr<HelpBook>(const std::string&)> open_;
    QPointer<HelpWindow> window_;
};

}  // namespace sonavex::ui
