#include "platform/qt/PrintSystem.h"

#include <QCoreApplication>
#include <QEvent>
#include <QEventLoop>
#include <QProcess>
#include <QProcessEnvironment>
#include <QThread>
#include <QTimer>

#include "core/support/RuntimeError.h"

namespace sonavex {
namespace {

constexpr int kAnswerLimitMs = 3000;
constexpr int kSendLimitMs = 15000;
constexpr int kKillLimitMs = 1000;
// Lines of lpstat's output. Other lines without a blank are names of printers.
constexpr auto kNotRunning = "scheduler is not running";
constexpr auto kDefaultPrefix = "system default destination: ";

// The message of "/usr/bin/lp: The printer or class does not exist." without the name of the program.
QString Complaint(const QString& program, const QByteArray& errors) {
    QString text = QString::fromUtf8(errors).trimmed();
    const QString before = program + QStringLiteral(": ");
    const qsizetype blank = text.indexOf(u' ');
    if (text.first(blank + 1).endsWith(before)) text.remove(0, blank + 1);
    return text.isEmpty() ? QStringLiteral("The print system reports an error.") : text;
}

bool IsInput(const QEvent& event) {
    switch (event.type()) {
        case QEvent::Shortcut:
        case QEvent::InputMethod:
            return true;
        case QEvent::Enter:
        case QEvent::HoverEnter:
        case QEvent::HoverMove:
        case QEvent::HoverLeave:
            return false;
        default:
            return event.isInputEvent();
    }
}

// Discards user input while the next event loop runs, but not input for a dialog that opens meanwhile: the
// dialog runs a deeper loop and blocks the other windows. An event loop that excludes user input would also
// hold back the window manager's request to close a window.
class DiscardedInput : public QObject {
public:
    DiscardedInput() { QCoreApplication::instance()->installEventFilter(this); }

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        return IsInput(*event) && QThread::currentThread()->loopLevel() <= level_;
    }

private:
    const int level_ = QThread::currentThread()->loopLevel() + 1;
};

// Waits until the process has ended or the limit has passed. A dialog that opens meanwhile extends the wait,
// but the process is killed at the limit. False when the limit ended the process.
bool Wait(QProcess& process, const QString& program, const QStringList& arguments, int limitMs,
          const QByteArray& input, Ending& ending) {
    QEventLoop loop;
    bool inTime = true;
    QObject::connect(&process, &QProcess::started, &loop, [&] {
        process.write(input);
        process.closeWriteChannel();
    });
    QObject::connect(&process, &QProcess::stateChanged, &loop, [&](QProcess::ProcessState state) {
        if (state == QProcess::NotRunning) loop.quit();
    });
    QTimer::singleShot(limitMs, &loop, [&] {
        if (process.state() == QProcess::NotRunning) return;
        inTime = false;
        process.kill();
        loop.quit();
    });
    process.start(program, arguments);
    if (process.state() == QProcess::NotRunning) return true;
    const DiscardedInput discarded;
    ending.Wait([&] { loop.exec(); }, [&] { loop.quit(); });
    return inTime;
}

void Kill(QProcess& process) {
    process.kill();
    process.waitForFinished(kKillLimitMs);
}

void RaiseTrouble(const QString& trouble) {
    if (!trouble.isEmpty()) throw RuntimeError(kPrinterError, trouble.toStdString());
}

}  // namespace

struct PrintSystem::Answer {
    QString output;
    QString trouble;  // empty for success
};

PrintSystem::Answer PrintSystem::Run(const QString& program, const QStringList& arguments, int limitMs,
                                     const QByteArray& input) {
    ending_.ThrowIfRequested();
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    process.setProcessEnvironment(environment);
    bool inTime = false;
    try {
        inTime = Wait(process, program, arguments, limitMs, input, ending_);
    } catch (const EndProgram&) {
        Kill(process);
        throw;
    }
    if (!inTime) {
        Kill(process);
        return {{}, QStringLiteral("The print system does not answer.")};
    }
    if (process.error() == QProcess::FailedToStart)
        return {{}, QStringLiteral("The print system is not installed.")};
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        return {{}, Complaint(program, process.readAllStandardError())};
    return {QString::fromUtf8(process.readAllStandardOutput()), {}};
}

InstalledPrinters PrintSystem::Printers() {
    const Answer answer =
        Run(QStringLiteral("lpstat"), {QStringLiteral("-r"), QStringLiteral("-e"), QStringLiteral("-d")},
            kAnswerLimitMs);
    InstalledPrinters printers;
    printers.trouble = answer.trouble.toStdString();
    const QLatin1String preferred(kDefaultPrefix);
    for (const QString& line : answer.output.split(u'\n', Qt::SkipEmptyParts)) {
        if (line == QLatin1String(kNotRunning))
            printers.trouble = "The print system is not running.";
        else if (line.startsWith(preferred))
            printers.preferred = line.mid(preferred.size()).toStdString();
        else if (!line.contains(u' '))
            printers.names.push_back(line.toStdString());
    }
    return printers;
}

void PrintSystem::SetDefaultPrinter(const QString& name) {
    RaiseTrouble(Run(QStringLiteral("lpoptions"), {QStringLiteral("-d"), name}, kAnswerLimitMs).trouble);
}

void PrintSystem::Send(const QString& printer, const QString& title, const QByteArray& document) {
    RaiseTrouble(Run(QStringLiteral("lp"),
                     {QStringLiteral("-d"), printer, QStringLiteral("-n"), QStringLiteral("1"),
                      QStringLiteral("-t"), title},
                     kSendLimitMs, document)
                     .trouble);
}

}  // namespace sonavex
