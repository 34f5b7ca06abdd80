#pragma once

#include <QProcess>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

#include "core/ports/Diagnostics.h"

namespace sonavex {

// A report of the output of the sound system's installed programs. They run one after the other, each with a
// time limit. They are started directly, without a shell, in the "C" locale and without input.
class QtDiagnostics : public QObject, public Diagnostics {
public:
    struct Command {
        QString program;
        QStringList arguments;
    };
    // Commands that print servers, cards, devices, formats and versions.
    static std::vector<Command> DefaultCommands();
    static constexpr std::chrono::milliseconds kDefaultLimit{3000};  // for each command
    static constexpr qint64 kMostBytes = 1 << 20;                    // of the output of each command

    explicit QtDiagnostics(std::vector<Command> commands = DefaultCommands(),
                           std::chrono::milliseconds limit = kDefaultLimit);
    ~QtDiagnostics() override;
    QtDiagnostics(const QtDiagnostics&) = delete;
    QtDiagnostics& operator=(const QtDiagnostics&) = delete;

    // Skips a program that is not installed, and a program that has exceeded its limit before.
    void Start(Done done) override;
    void Cancel() override;

private:
    void Begin(const Command& command);
    void Next();
    void TakeOutput();
    void EndOf(const QString& remark);
    void Stop();
    void Finish();

    std::vector<Command> commands_;
    std::chrono::milliseconds limit_;
    QTimer timer_;
    std::unique_ptr<QProcess> process_;
    Done done_;
    std::size_t next_ = 0;
    QSet<QString> unusable_;  // programs that are missing or have exceeded their limit
    bool anyStarted_ = false;
    QByteArray output_;  // of the running command
    QByteArray report_;
};

}  // namespace sonavex
