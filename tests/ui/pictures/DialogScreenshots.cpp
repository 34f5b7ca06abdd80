// Saves pictures of the dialogs and the help window: sonavex-dialog-screenshots FOLDER. One scale per run,
// set by QT_SCALE_FACTOR.

#include <QApplication>
#include <QLineEdit>
#include <QPalette>
#include <cstdio>
#include <functional>
#include <memory>

#include "platform/chm/ChmHelpBook.h"
#include "support/FormRig.h"
#include "support/QtWait.h"
#include "support/RecordingLauncher.h"
#include "support/RecordingPrinter.h"
#include "ui/AboutDialog.h"
#include "ui/HelpWindow.h"
#include "ui/PrintDialog.h"
#include "ui/ProgramStyle.h"
#include "ui/widgets/Theme.h"

namespace {

using namespace sonavex;

using Save = std::function<bool(QWidget& window, const char* name)>;

QPalette PaletteOf(bool dark) {
    const ui::Theme theme = dark ? ui::Theme::Dark() : ui::Theme::Light();
    QPalette palette(theme.field, theme.window);
    palette.setColor(QPalette::WindowText, theme.text);
    palette.setColor(QPalette::Text, theme.text);
    palette.setColor(QPalette::ButtonText, theme.text);
    palette.setColor(QPalette::Base, theme.card);
    palette.setColor(QPalette::Highlight, theme.accent);
    return palette;
}

bool PictureHelp(const Save& save) {
    ui::HelpWindow window(std::make_unique<ChmHelpBook>(SONAVEX_HELP_FILE));
    window.resize(1000, 640);
    window.ShowContents();
    if (!save(window, "help-contents")) return false;
    window.ShowPage("limits.html");
    if (!save(window, "help-page")) return false;
    window.findChild<QLineEdit*>()->setText("level");
    return save(window, "help-search");
}

bool PicturePrint(const Save& save) {
    FormRig rig;
    RecordingPrinter printer(rig.log);
    printer.printers = {"Office_LaserJet_Second_Floor", "Workshop"};
    for (const char* name : {"print", "print-no-printer"}) {
        frmPrint form(printer, rig.dialogs);
        form.Form_Load(printer.Printers());
        ui::PrintDialog dialog(form, rig.form.Guard);
        if (!save(dialog, name)) return false;
        printer.printers.clear();
    }
    return true;
}

bool PictureAbout(const Save& save) {
    FormRig rig;
    RecordingLauncher launcher(rig.log);
    frmAbout form(launcher, rig.dialogs, "Sonavex", {2, 1, 14, "Distortion meter and function generator"});
    ui::AboutDialog dialog(form, rig.form.Guard);
    return save(dialog, "about");
}

bool PictureAll(const QString& folder, bool dark) {
    const Save save = [&](QWidget& window, const char* name) {
        window.show();
        Settle();
        return window.grab().save(QStringLiteral("%1/%2-%3-%4.png")
                                      .arg(folder, QString::fromLatin1(name), dark ? "dark" : "light")
                                      .arg(qRound(window.devicePixelRatio() * 100)));
    };
    return PictureHelp(save) && PicturePrint(save) && PictureAbout(save);
}

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    QApplication::setStyle(new ui::ProgramStyle);
    if (argc != 2) {
        std::fprintf(stderr, "usage: sonavex-dialog-screenshots FOLDER\n");
        return 2;
    }
    for (const bool dark : {false, true}) {
        QApplication::setPalette(PaletteOf(dark));
        if (!PictureAll(QString::fromLocal8Bit(argv[1]), dark)) return 1;
    }
    return 0;
}
