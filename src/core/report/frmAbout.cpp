#include "core/report/frmAbout.h"

#include <utility>

#include "core/report/OpenDocument.h"
#include "core/report/SystemInfo.h"
#include "core/report/WebPages.h"

namespace sonavex {

frmAbout::frmAbout(Launcher& launcher, Dialogs& dialogs, std::string title, ApplicationVersion version)
    : launcher_(launcher), dialogs_(dialogs), title_(std::move(title)), version_(std::move(version)) {
    cmdOk.Click.Handle([this] { cmdOk_Click(); });
    cmdSysInfo.Click.Handle([this] { cmdSysInfo_Click(); });
}

void frmAbout::Form_Load() {
    Frame.SetCaption("About " + title_);
    lblTitle.SetCaption(title_);
    lblVersion.SetCaption("Version " + VersionNumber(version_));
    lblBuild.SetCaption("Build " + version_.comment);
    lblWeb.SetCaption(web_page::Home());
}

void frmAbout::cmdOk_Click() {
    if (OnClosed) OnClosed();
}

void frmAbout::cmdSysInfo_Click() {
    StartSysInfo(launcher_, dialogs_);
}

void frmAbout::lblWeb_Click() {
    OpenDocument(launcher_, dialogs_, web_page::Home());
}

}  // namespace sonavex
