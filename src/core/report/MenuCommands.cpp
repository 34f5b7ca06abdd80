#include "core/report/MenuCommands.h"

#include <string>
#include <utility>

#include "core/report/OpenDocument.h"
#include "core/report/WebPages.h"
#include "core/text/Numbers.h"

namespace sonavex {
namespace {

constexpr const char* kConnected = "You must be connected to the Internet to continue.\r\r";
constexpr const char* kCheckQuestion = "Proceed with update check ?";
constexpr const char* kContactQuestion = "Continue ?";

// Command lines of the system's level panels: recording and playback, newer and older generation.
constexpr const char* kInputPanel = "control.exe mmsys.cpl,,1";
constexpr const char* kPlayPanel = "control.exe mmsys.cpl,,0";
constexpr const char* kOlderInputPanel = "sndvol32 -R -D";
constexpr const char* kOlderPlayPanel = "sndvol32 -P -D";

}  // namespace

MenuCommands::MenuCommands(Needs needs, MenuControls& menus) : needs_(std::move(needs)), menus_(menus) {
    menus_.mnuAbout.Click.Handle([this] { mnuAbout_Click(); });
    menus_.mnuHelpContents.Click.Handle([this] { mnuHelpContents_Click(); });
    menus_.mnuCheckVersion.Click.Handle([this] { mnuCheckVersion_Click(); });
    menus_.mnuemail.Click.Handle([this] { mnuemail_Click(); });
    menus_.mnuInputControl.Click.Handle([this] { mnuInputControl_Click(); });
    menus_.mnuPlayControl.Click.Handle([this] { mnuPlayControl_Click(); });
}

MenuCommands::~MenuCommands() {
    for (MenuItem* item : {&menus_.mnuAbout, &menus_.mnuHelpContents, &menus_.mnuCheckVersion,
                           &menus_.mnuemail, &menus_.mnuInputControl, &menus_.mnuPlayControl})
        item->Click.Handle({});
}

void MenuCommands::mnuAbout_Click() {
    if (ShowAbout) ShowAbout();
}

void MenuCommands::mnuHelpContents_Click() {
    needs_.help.ShowContents();
}

bool MenuCommands::Connected(const char* question) {
    return needs_.dialogs.AskYesNo(std::string(kConnected) + question);
}

void MenuCommands::mnuCheckVersion_Click() {
    if (!Connected(kCheckQuestion)) return;
    OpenDocument(needs_.launcher, needs_.dialogs, web_page::UpdateCheck(needs_.version));
}

void MenuCommands::mnuemail_Click() {
    if (!Connected(kContactQuestion)) return;
    OpenDocument(needs_.launcher, needs_.dialogs, web_page::Contact());
}

void MenuCommands::mnuInputControl_Click() {
    RunCommand(needs_.launcher, needs_.dialogs,
               needs_.shared.NewerGeneration()
                   ? kInputPanel
                   : kOlderInputPanel + CStr(needs_.mixers.DeviceNumbers().MixerDeviceNumber));
}

void MenuCommands::mnuPlayControl_Click() {
    RunCommand(needs_.launcher, needs_.dialogs,
               needs_.shared.NewerGeneration()
                   ? kPlayPanel
                   : kOlderPlayPanel + CStr(needs_.mixers.DeviceNumbers().PlayMixerDeviceNumber));
}

}  // namespace sonavex
