#include "platform/qt/QtDiagnostics.h"

#include <QDateTime>
#include <QFile>
#include <QProcessEnvironment>
#include <QSysInfo>
#include <utility>

namespace sonavex {
namespace {

constexpr int kKilledWithinMs = 1000;

// Programs with arguments, separated by blanks.
constexpr const char* kCommandLines[] = {
    "pactl --version",
    "pactl info",
    "pactl list cards",
    "pactl list sinks",
    "pactl list sources",
    "pactl list clients",
    "pactl list sink-inputs",
    "pactl list source-outputs",
    "pactl list modules",
    "wpctl status",
    "pipewire --version",
    "pulseaudio --version",
    "aplay --version",
    "aplay -l",
    "aplay -L",
    "arecord -l",
    "arecord -L",
};

QByteArray Heading(const QString& title) {
    return "\n=== " + title.toUtf8() + " ===\n";
}

QByteArray SystemFile(const char* path) {
    QFile file(QString::fromLatin1(path));
    if (!file.open(QIODevice::ReadOnly)) return {};
    return Heading(file.fileName()) + file.read(QtDiagnostics::kMostBytes);
}

// The part of the report that needs no program.
QByteArray Beginning() {
    QByteArray text = "Sound devices of this computer, " +
                      QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd hh:mm:ss")).toUtf8() +
                      '\n';
    text += "System: " + QSysInfo::prettyProductName().toUtf8() + ", kernel " +
            QSysInfo::kernelVersion().toUtf8() + ", " + QSysInfo::currentCpuArchitecture().toUtf8() + '\n';
    for (const char* path : {"/proc/asound/version", "/proc/asound/cards", "/proc/asound/pcm"})
        text += SystemFile(path);
    return text;
}

QProcessEnvironment PlainEnvironment() {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    return environment;
}

}  // namespace

std::vector<QtDiagnostics::Command> QtDiagnostics::DefaultCommands() {
    std::vector<Command> commands;
    for (const char* line : kCommandLines) {
        QStringList words = QString::fromLatin1(line).split(u' ');
        const QString program = words.takeFirst();
        commands.push_back({program, words});
    }
    return commands;
}

QtDiagnostics::QtDiagnostics(std::vector<Command> commands, std::chrono::milliseconds limit)
    : commands_(std::move(commands)), limit_(limit) {
    timer_.setSingleShot(true);
    connect(&timer_, &QTimer::timeout, this, [this] {
        unusable_.insert(process_->program());
        EndOf(
            QStringLiteral("(gave no answer within %1 s)").arg(static_cast<double>(limit_.count()) / 1000.0));
    });
}

QtDiagnostics::~QtDiagnostics() {
    Cancel();
    for (QProcess* process : findChildren<QProcess*>()) process->waitForFinished(kKilledWithinMs);
}

void QtDiagnostics::Start(Done done) {
    Cancel();
    done_ = std::move(done);
    next_ = 0;
    unusable_.clear();
    anyStarted_ = false;
    report_ = Beginning();
    QMetaObject::invokeMethod(
        this, [this] { Next(); }, Qt::QueuedConnection);
}

void QtDiagnostics::Cancel() {
    done_ = {};
    Stop();
}

void QtDiagnostics::Next() {
    if (!done_ || process_) return;
    while (next_ < commands_.size() && unusable_.contains(commands_[next_].program)) ++next_;
    if (next_ >= commands_.size()) return Finish();
    Begin(commands_[next_++]);
}

void QtDiagnostics::Begin(const Command& command) {
    output_.clear();
    process_ = std::make_unique<QProcess>();
    process_->setProcessChannelMode(QProcess::MergedChannels);
    process_->setProcessEnvironment(PlainEnvironment());
    process_->setStandardInputFile(QProcess::nullDevice());
    connect(process_.get(), &QProcess::started, this, [this] { anyStarted_ = true; });
    connect(process_.get(), &QProcess::readyRead, this, [this] { TakeOutput(); });
    connect(process_.get(), &QProcess::finished, this, [this](int status, QProcess::ExitStatus how) {
        const bool good = how == QProcess::NormalExit && status == 0;
        EndOf(good ? QString() : QStringLiteral("(ended with status %1)").arg(status));
    });
    connect(process_.get(), &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error != QProcess::FailedToStart) return;
        unusable_.insert(process_->program());
        EndOf(QStringLiteral("(cannot be started: %1)").arg(process_->errorString()));
    });
    timer_.start(limit_);
    process_->start(command.program, command.arguments);
}

void QtDiagnostics::TakeOutput() {
    output_ += process_->readAll();
    if (output_.size() <= kMostBytes) return;
    output_.truncate(kMostBytes);
    EndOf(QStringLiteral("\n(printed more than is kept)"));
}

// Ends the command, if it still runs, and adds its output and a remark to the report.
void QtDiagnostics::EndOf(const QString& remark) {
    QStringList words = process_->arguments();
    words.prepend(process_->program());
    if (output_.size() <= kMostBytes) output_ += process_->readAll().left(kMostBytes - output_.size());
    report_ += Heading(words.join(u' ')) + output_;
    if (!output_.isEmpty() && !output_.endsWith('\n')) report_ += '\n';
    if (!remark.isEmpty()) report_ += remark.toUtf8() + '\n';
    Stop();
    QMetaObject::invokeMethod(
        this, [this] { Next(); }, Qt::QueuedConnection);
}

// The process object may be the caller, so it is deleted later, and the program with it.
void QtDiagnostics::Stop() {
    timer_.stop();
    if (!process_) return;
    process_->disconnect(this);
    QProcess* const process = process_.release();
    if (process->state() == QProcess::NotRunning) {
        process->deleteLater();
        return;
    }
    process->setParent(this);
    connect(process, &QProcess::finished, process, &QObject::deleteLater);
    process->kill();
}

void QtDiagnostics::Finish() {
    const Done done = std::exchange(done_, {});
    const QByteArray report = std::exchange(report_, {});
    if (anyStarted_)
        done(report.toStdString());
    else
        done(std::nullopt);
}

}  // namespace sonavex
