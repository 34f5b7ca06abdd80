#include "system/safety/Session.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QTimer>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>
#include <chrono>
#include <iostream>

#include "app/sonavex/Program.h"
#include "platform/plain/UserFolders.h"
#include "platform/qt/QtLauncher.h"
#include "support/DialogUser.h"
#include "support/Files.h"
#include "support/QtWait.h"
#include "ui/HelpWindow.h"
#include "ui/ProgramStyle.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

constexpr const char* kSessionCommand = "--answer-dialogs";
constexpr std::int64_t kBlocks = 12;
constexpr auto kLimit = 60s;

void Say(const std::string& what, QString text) {
    std::cout << what << ": " << text.replace(u'\n', u' ').toStdString() << std::endl;
}

// Answers every dialog that opens.
class DialogAnswers {
public:
    // Destination for the print dialog: a printer's name or a file.
    QString Printer;
    QString File;

private:
    void Answer(QDialog& dialog) {
        if (&dialog == last_) return;
        last_ = &dialog;
        if (auto* const box = qobject_cast<QMessageBox*>(&dialog); box != nullptr) {
            Say("message", box->text());
            box->defaultButton()->click();
        } else if (dialog.objectName() == QLatin1String("frmPrint")) {
            Choose(dialog);
        } else if (dialog.objectName() == QLatin1String("frmError")) {
            Say("error", dialog.findChild<QLabel*>(QStringLiteral("lblMessage"))->text());
            Find<QPushButton>(dialog, "Command1").click();
        } else {
            Say("unexpected", dialog.windowTitle());
            dialog.reject();
        }
    }
    void Choose(QDialog& dialog) {
        auto* const printers = dialog.findChild<QComboBox*>(QStringLiteral("cmbPrinter"));
        const int index = Printer.isEmpty() ? printers->count() - 1 : printers->findText(Printer);
        if (index < 0) Say("unexpected", QStringLiteral("no such printer"));
        printers->setCurrentIndex(index);
        Q_EMIT printers->activated(index);
        QApplication::processEvents();
        auto* const file = dialog.findChild<QLineEdit*>(QStringLiteral("txtFile"));
        if (Printer.isEmpty()) {
            file->setText(File);
            Q_EMIT file->textEdited(File);
        }
        Find<QPushButton>(dialog, "cmdOk").click();
    }

    QPointer<QDialog> last_;
    DialogUser user_{[this](QDialog& dialog) { Answer(dialog); }};
};

template <class Condition>
void Await(Condition condition) {
    if (!WaitInQt(kLimit, condition)) Say("unexpected", QStringLiteral("it takes too long"));
}

void Measure(app::Program& program) {
    program.Form().GeneratorPanel.Controls.Command1.Press();
    Await([&] { return program.Form().Instrument.Meter.Blocks() >= kBlocks; });
}

void Choose(app::Program& program, const char* entry) {
    program.Window().findChild<QAction*>(QLatin1String(entry))->trigger();
}

void Help(app::Program& program) {
    program.Form().HelpFile = SONAVEX_HELP_FILE;
    Choose(program, "mnuHelpContents");
    for (QWidget* const window : QApplication::topLevelWidgets()) {
        auto* const help = qobject_cast<ui::HelpWindow*>(window);
        if (help == nullptr) continue;
        auto* const contents = help->findChild<QTreeWidget*>();
        int pages = 0;
        for (QTreeWidgetItemIterator item(contents); *item != nullptr; ++item, ++pages) {
            contents->setCurrentItem(*item);
            QApplication::processEvents();
        }
        Say("help", QString::number(pages));
    }
}

void Print(app::Program& program) {
    program.Form().mnuPrint.SetEnabled(true);
    const auto& entry = *program.Window().findChild<QAction*>("mnuPrint");
    WaitInQt(5s, [&] { return entry.isEnabled(); });
    Choose(program, "mnuPrint");
}

// Starts a program and gives it some time.
void Launch(const QString& path) {
    const std::int32_t error = QtLauncher().Run(path.toStdString());
    if (error != 0) Say("unexpected", QStringLiteral("error %1").arg(error));
    WaitInQt(500ms);
}

void Do(app::Program& program, DialogAnswers& answers, const QString& step) {
    const QString rest = step.section(u'=', 1);
    answers.File.clear();
    answers.Printer.clear();
    if (step == QLatin1String("measure")) return Measure(program);
    if (step == QLatin1String("help")) return Help(program);
    if (step == QLatin1String("settings")) return QApplication::processEvents();
    if (step.startsWith(QLatin1String("file="))) {
        answers.File = rest;
        return Print(program);
    }
    if (step.startsWith(QLatin1String("print="))) {
        answers.Printer = rest;
        return Print(program);
    }
    if (step.startsWith(QLatin1String("run="))) return Launch(rest);
    Say("unexpected", step);
}

int Run(const QStringList& steps) {
    DialogAnswers answers;
    app::Program program;
    if (const std::optional<int> ended = program.Open()) return *ended;
    QTimer::singleShot(0, [&] {
        for (const QString& step : steps) Do(program, answers, step);
        program.Window().close();
    });
    return QApplication::exec();
}

}  // namespace

Arguments Session(const Arguments& steps) {
    Arguments line{ThisProgram(), kSessionCommand};
    line.insert(line.end(), steps.begin(), steps.end());
    return line;
}

std::optional<int> RunSession(int argc, char** argv) {
    if (argc < 2 || argv[1] != std::string(kSessionCommand)) return std::nullopt;
    KeepFilesFromEverybody();
    QApplication application(argc, argv);
    QApplication::setStyle(new ui::ProgramStyle);
    QApplication::setQuitOnLastWindowClosed(false);
    const int status = Run(QApplication::arguments().mid(2));
    std::cout << "done" << std::endl;
    return status;
}

}  // namespace sonavex
