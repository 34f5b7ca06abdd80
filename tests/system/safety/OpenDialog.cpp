#include "system/safety/OpenDialog.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QListView>
#include <QProcess>
#include <QStandardPaths>
#include <QTimer>
#include <chrono>
#include <iostream>

#include "app/sonavex/Program.h"
#include "platform/plain/UserFolders.h"
#include "support/DialogUser.h"
#include "support/Files.h"
#include "support/QtWait.h"
#include "ui/ProgramStyle.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

constexpr const char* kOpenDialogCommand = "--open-dialog";
constexpr auto kSomeBlocks = 300ms;

// Opens the dialog of this name and leaves it open.
class Opener {
public:
    explicit Opener(const QString& request)
        : name_(request.section(u'=', 0, 0)), rest_(request.section(u'=', 1)) {}

    int Run() {
        if (const std::optional<int> ended = program_.Open()) return *ended;
        program_.Form().HelpFile = SONAVEX_HELP_FILE;
        QTimer::singleShot(kSomeBlocks, [this] { Begin(); });
        return QApplication::exec();
    }

private:
    void Begin() {
        if (name_ == QLatin1String("sweep")) StartSweep();
        if (name_ == QLatin1String("entry")) return TypeBehindAnError();
        const bool opensNoModalDialog = name_ == QLatin1String("help") || name_ == QLatin1String("mixers") ||
                                        name_ == QLatin1String("printers");
        if (opensNoModalDialog) QTimer::singleShot(kSomeBlocks, [this] { Announce(); });
        program_.Form().mnuPrint.SetEnabled(true);
        const auto& print = *program_.Window().findChild<QAction*>("mnuPrint");
        WaitInQt(std::chrono::seconds(5), [&] { return print.isEnabled(); });
        program_.Window().findChild<QAction*>(MenuEntry())->trigger();
    }
    QString MenuEntry() const {
        if (name_ == QLatin1String("help")) return QStringLiteral("mnuHelpContents");
        if (name_ == QLatin1String("mixers")) return QStringLiteral("mnuSoundCard");
        if (name_ == QLatin1String("question")) return QStringLiteral("mnuCheckVersion");
        if (name_ == QLatin1String("about") || name_ == QLatin1String("sweep"))
            return QStringLiteral("mnuAbout");
        const bool devices = name_ == QLatin1String("devices") || !rest_.isEmpty();
        return devices ? QStringLiteral("mnuSelectCard") : QStringLiteral("mnuPrint");
    }
    void TypeBehindAnError() {
        auto& box = Find<QLineEdit>(program_.Window(), "txtGenFreq");
        box.selectAll();
        QTest::keyClicks(&box, QStringLiteral("440"));
        program_.Form().Guard.Run([] { throw RuntimeError(error_number::kOverflow); });
    }
    void StartSweep() {
        SignalControls& signal = program_.Form().GeneratorPanel.Controls;
        signal.sldSweepTime.UserMoves(5000);
        signal.sldSweepTime.UserReleases();
        signal.chkLoop.UserSets(true);
        signal.Command1.Press();
    }

    // Passes the dialogs that lead to the one that stays open.
    void Answer(QDialog& dialog) {
        const QString form = dialog.objectName();
        if (form == QLatin1String("frmPrint") && name_ == QLatin1String("message"))
            return PrintNoCopies(dialog);
        if (form == QLatin1String("frmPrint") && BrowsesFiles()) return Browse(dialog);
        if (auto* const files = qobject_cast<QFileDialog*>(&dialog)) return UseFiles(*files);
        if (form == QLatin1String("frmDevices") && !rest_.isEmpty()) return SelectTheMissing(dialog);
        if (form == QLatin1String("frmError") && name_ == QLatin1String("diagnostics"))
            Click(dialog, "cmdDirectX");
        Announce();
    }
    static void PrintNoCopies(QDialog& dialog) {
        QTest::keyClicks(&Find<QLineEdit>(dialog, "txtCopies"), QStringLiteral("0"));
        Click(dialog, "cmdOk");
    }
    static void Browse(QDialog& dialog) {
        auto& printers = Find<QComboBox>(dialog, "cmbPrinter");
        printers.setCurrentIndex(printers.count() - 1);
        Q_EMIT printers.activated(printers.currentIndex());
        QApplication::processEvents();
        Click(dialog, "cmdBrowse");
    }
    bool BrowsesFiles() const {
        return name_ == QLatin1String("files") || name_ == QLatin1String("menu") ||
               name_ == QLatin1String("delete");
    }
    void UseFiles(QFileDialog& files) {
        auto& list = Find<QListView>(files, "listView");
        if (name_ == QLatin1String("files")) return Announce();
        if (announced_ || list.model()->rowCount(list.rootIndex()) == 0) return;
        if (name_ == QLatin1String("menu")) {
            QTimer::singleShot(kSomeBlocks, [this] {
                if (QApplication::activePopupWidget() != nullptr) Announce();
            });
            Q_EMIT list.customContextMenuRequested({});
        } else {
            list.setCurrentIndex(list.model()->index(0, 0, list.rootIndex()));
            auto* const action = files.findChild<QAction*>(QStringLiteral("qt_delete_action"));
            action->setEnabled(true);
            action->trigger();
        }
    }
    void SelectTheMissing(QDialog& dialog) {
        const QString control = QStandardPaths::findExecutable(
            QStringLiteral("pactl"), {QStringLiteral("/usr/local/bin"), QStringLiteral("/usr/bin")});
        if (QProcess::execute(control, {QStringLiteral("unload-module"), rest_}) != 0)
            std::cout << "the module stays" << std::endl;
        auto& outputs = Find<QComboBox>(dialog, "cmbOutputMixer");
        outputs.setCurrentIndex(outputs.findText(QStringLiteral("Other-Card")));
        Q_EMIT outputs.activated(outputs.currentIndex());
        Click(dialog, "cmdOkay");
    }
    void Announce() {
        if (announced_) return;
        announced_ = true;
        std::cout << "open " << QCoreApplication::applicationPid() << ' ' << program_.Window().internalWinId()
                  << std::endl;
    }

    QString name_;
    QString rest_;
    bool announced_ = false;
    DialogUser user_{[this](QDialog& dialog) { Answer(dialog); }};
    app::Program program_;
};

}  // namespace

Arguments OpenDialog(const std::string& name) {
    return {ThisProgram(), kOpenDialogCommand, name};
}

std::optional<int> RunOpenDialog(int argc, char** argv) {
    if (argc != 3 || argv[1] != std::string(kOpenDialogCommand)) return std::nullopt;
    KeepFilesFromEverybody();
    QApplication application(argc, argv);
    QApplication::setStyle(new ui::ProgramStyle);
    QApplication::setQuitOnLastWindowClosed(false);
    return Opener(QApplication::arguments().at(2)).Run();
}

}  // namespace sonavex
