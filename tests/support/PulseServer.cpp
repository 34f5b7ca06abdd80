#include "support/PulseServer.h"

#include <csignal>
#include <utility>

namespace sonavex {

PulseServer::PulseServer(std::vector<NullSink> sinks) : sinks_(std::move(sinks)) {
    Start();
}

void PulseServer::Start() {
    Arguments command{"pulseaudio",
                      "--daemonize=no",
                      "--exit-idle-time=-1",
                      "--use-pid-file=no",
                      "--realtime=no",
                      "--high-priority=no",
                      "-n"};
    for (const NullSink& sink : sinks_) {
        std::string module;
        for (const std::string& argument : NullSinkArguments(sink)) module += argument + " ";
        command.insert(command.end(), {"-L", module + "norewinds=1"});
    }
    command.insert(command.end(),
                   {"-L", "module-native-protocol-unix auth-anonymous=1 socket=" + SocketPath().string()});
    process_ = std::make_unique<ChildProcess>(command, FolderEnvironment(), LogPath());
    WaitUntilReady();
    if (!sinks_.empty()) Control({"set-default-sink", sinks_.front().name});
}

void PulseServer::Kill() {
    process_->Kill();
}

void PulseServer::Restart() {
    process_->Kill();
    std::filesystem::remove(SocketPath());
    Start();
}

void PulseServer::Pause() {
    process_->Send(SIGSTOP);
}

void PulseServer::Continue() {
    process_->Send(SIGCONT);
}

}  // namespace sonavex
