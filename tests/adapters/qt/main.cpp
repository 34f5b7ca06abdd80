#include <gmock/gmock.h>

#include <QApplication>
#include <cstdio>

#include "adapters/qt/HelperPrograms.h"

namespace {

// The offscreen platform warns about missing size hints.
void WriteMessage(QtMsgType, const QMessageLogContext&, const QString& text) {
    if (!text.contains(QLatin1String("propagateSizeHints"))) std::fprintf(stderr, "%s\n", qPrintable(text));
}

}  // namespace

int main(int argc, char** argv) {
    if (const auto status = sonavex::RunHelperProgram(argc, argv)) return *status;
    const sonavex::PrivateFolder runtimeFolder;
    qputenv("XDG_RUNTIME_DIR", runtimeFolder.Path().c_str());
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler(WriteMessage);
    testing::InitGoogleMock(&argc, argv);
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
