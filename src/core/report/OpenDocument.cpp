#include "core/report/OpenDocument.h"

#include "core/text/Numbers.h"

namespace sonavex {
namespace {

void ReportFailure(Dialogs& dialogs, std::int32_t error) {
    if (error == 0) return;
    dialogs.Message("Unable to execute command Error: " + CStr(error), MessageIcon::kNone);
}

}  // namespace

void OpenDocument(Launcher& launcher, Dialogs& dialogs, const std::string& target) {
    ReportFailure(dialogs, launcher.Open(target));
}

void RunCommand(Launcher& launcher, Dialogs& dialogs, const std::string& commandLine) {
    ReportFailure(dialogs, launcher.Run(commandLine));
}

}  // namespace sonavex
