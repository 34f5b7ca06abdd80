#include "platform/qt/PrintSystem.h"

#include <QProcess>
#include <QProcessEnvironment>

#include "core/ports/Printer.h"
#include "core/text/RuntimeError.h"

namespace sonavex {
namespace {

constexpr int kAnswerLimitMs = 5000;
constexpr int kSendLimitMs = 15000;
constexpr auto kDefaultPrefix = "system default destination: ";

struct Answer {
    QString output;
    QString trouble;  // empty when all went well
};

// "lp: The printer or class does not exist." without the name of the program.
QString Complaint(const QString& program, const QByteArray& errors) {
    QString text = QString::fromUtf8(errors).trimmed();
    if (text.startsWith(program + QStringLiteral(": "))) text.remove(0, program.size() + 2);
    return text.isEmpty() ? QStringLiteral("The print system reports an error.") : text;
}

Answer Run(const QString& program, const QStringList& arguments, int limitMs, const QByteArray& input = {}) {
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    process.setProcessEnvironment(environment);
    process.start(program, arguments);
    if (!process.waitForStarted(limitMs)) return {{}, QStringLiteral("The print system is not installed.")};
    process.write(input);
    process.closeWriteChannel();
    if (!process.waitForFinished(limitMs)) {
        process.kill();
        process.waitForFinished(kAnswerLimitMs);
        return {{}, QStringLiteral("The print system does not answer.")};
    }
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        return {{}, Complaint(program, process.readAllStandardError())};
    return {QString::fromUtf8(process.readAllStandardOutput()), {}};
}

void RaiseTrouble(const Answer& answer) {
    if (!answer.trouble.isEmpty()) throw RuntimeError(kPrinterError, answer.trouble.toStdString());
}

}  // namespace

QStringList PrintSystem::Printers() {
    const Answer answer = Run(QStringLiteral("lpstat"), {QStringLiteral("-e")}, kAnswerLimitMs);
    return answer.output.split(u'\n', Qt::SkipEmptyParts);
}

QString PrintSystem::DefaultPrinter() {
    const Answer answer = Run(QStringLiteral("lpstat"), {QStringLiteral("-d")}, kAnswerLimitMs);
    const QString line = answer.output.trimmed();
    const QLatin1String prefix(kDefaultPrefix);
    return line.startsWith(prefix) ? line.mid(prefix.size()) : QString();
}

void PrintSystem::SetDefaultPrinter(const QString& name) {
    RaiseTrouble(Run(QStringLiteral("lpoptions"), {QStringLiteral("-d"), name}, kAnswerLimitMs));
}

void PrintSystem::Send(const QString& printer, const QString& title, const QByteArray& document) {
    RaiseTrouble(Run(QStringLiteral("lp"),
                     {QStringLiteral("-d"), printer, QStringLiteral("-n"), QStringLiteral("1"),
                      QStringLiteral("-t"), title},
                     kSendLimitMs, document));
}

}  // namespace sonavex
