#include <gmock/gmock.h>

#include <QApplication>

#include "ui/ProgramStyle.h"

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" SONAVEX_SCREENS);
    testing::InitGoogleMock(&argc, argv);
    const QApplication application(argc, argv);
    QApplication::setStyle(new sonavex::ui::ProgramStyle);
    QApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
