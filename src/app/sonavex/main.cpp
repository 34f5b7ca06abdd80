// sonavex: the instrument with its window. With --probe-display it opens nothing and ends with status 0 if
// there is a display; otherwise Qt ends it with an abort.

#include <QApplication>
#include <QIcon>
#include <cstring>
#include <exception>

#include "app/sonavex/Program.h"
#include "platform/plain/LargeBlocks.h"
#include "platform/plain/UserFolders.h"
#include "ui/ProgramStyle.h"

int main(int argc, char** argv) {
    sonavex::KeepFilesFromEverybody();
    sonavex::ReturnLargeBlocks();
    QApplication application(argc, argv);
    if (argc == 2 && std::strcmp(argv[1], "--probe-display") == 0) return 0;
    QApplication::setStyle(new sonavex::ui::ProgramStyle);
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/sonavex.png")));
    QGuiApplication::setDesktopFileName(QStringLiteral("sonavex"));
    QApplication::setApplicationName(sonavex::frmMain::kApplicationTitle);
    // The main form ends the program. Dialogs may close before the main window opens.
    QApplication::setQuitOnLastWindowClosed(false);
    try {
        sonavex::app::Program program;
        return program.Run();
    } catch (...) {
        sonavex::app::ReportLastError(std::current_exception());
        return 1;
    }
}
