#include "core/shell/frmSplash.h"

namespace sonavex {

frmSplash::frmSplash(Dialogs& dialogs, EventLoop& loop) : dialogs_(dialogs), loop_(loop) {}

void frmSplash::Form_Load(const ApplicationVersion& version) {
    dialogs_.SetBusyPointer(true);
    lblVersion.SetCaption("Version " + VersionNumber(version) + "  " + version.comment);
    visible_ = true;
    if (OnShow) OnShow();
    loop_.Yield();
    dialogs_.SetBusyPointer(false);
}

void frmSplash::Frame_Click() {
    Unload();
}

void frmSplash::Unload() {
    visible_ = false;
}

}  // namespace sonavex
