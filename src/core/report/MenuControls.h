#pragma once

#include "core/controls/Commands.h"

namespace sonavex {

// Menu entries that open other windows, programs or web pages.
struct MenuControls {
    MenuItem mnuAbout;
    MenuItem mnuHelpContents;
    MenuItem mnuCheckVersion;
    MenuItem mnuemail;
    MenuItem mnuInputControl;
    MenuItem mnuPlayControl;
    MenuItem mnuAnalyzer;
    MenuItem mnuOpenRecording;
};

}  // namespace sonavex
