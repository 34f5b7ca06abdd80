#pragma once

#include "core/ports/Desktop.h"
#include "core/ports/Dialogs.h"
#include "core/ports/Help.h"

namespace sonavex::app {

// Help where no help file is installed: says so, and where it was looked for.
class MissingHelp : public Help {
public:
    MissingHelp(Dialogs& dialogs, Desktop& desktop) noexcept : dialogs_(dialogs), desktop_(desktop) {}

    void ShowTopic(std::int32_t topic) override;

private:
    Dialogs& dialogs_;
    Desktop& desktop_;
};

}  // namespace sonavex::app
