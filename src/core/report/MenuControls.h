#pragma once

#include "core/controls/Commands.h"

namespace sonavex {

// Entries of the main form's menus that lead out of the measuring work.
struct MenuControls {
    MenuItem mnuAbout;
    MenuItem mnuHelpContents;
    MenuItem mnuCheckVersion;
    MenuItem mnuemail;
    MenuItem mnuInputControl;
    MenuItem mnuPlayControl;
};

}  // namespace sonavex
