#include "support/PipeWireServer.h"

#include <csignal>
#include <stdexcept>
#include <utility>

#include "support/Wait.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

constexpr auto kPipeWireLimit = 10s;

template <class Condition>
void WaitFor(const char* what, Condition condition) {
    if (!WaitUntil(condition, kPipeWireLimit)) throw std::runtime_error(std::string("no ") + what);
}

}  // namespace

PipeWireServer::PipeWireServer(std::vector<NullSink> sinks, std::uint32_t leastCycleFrames,
                               std::uint32_t clockRateHz)
    : sinks_(std::move(sinks)) {
    WriteConfiguration(leastCycleFrames, clockRateHz);
    const auto busSocket = Folder() / "bus";
    const auto daemonSocket = Folder() / "pipewire-0";
    bus_ = Launch(
        {"dbus-daemon", "--session", "--nofork", "--nopidfile", "--address=unix:path=" + busSocket.string()});
    WaitFor("message bus", [&] { return std::filesystem::exists(busSocket); });
    daemon_ = LaunchFirst("pipewire");
    WaitFor("PipeWire daemon", [&] { return std::filesystem::exists(daemonSocket); });
    manager_ = Launch({"wireplumber"});
    StartProtocol();
}

PipeWireServer::~PipeWireServer() {
    // Clients first, then their servers.
    protocol_.reset();
    manager_.reset();
    daemon_.reset();
    bus_.reset();
}

void PipeWireServer::WriteConfiguration(std::uint32_t leastCycleFrames, std::uint32_t clockRateHz) const {
    std::ofstream file = Configuration("pipewire/pipewire.conf.d/10-clock.conf");
    file << "context.properties = {\n"
            "    default.clock.allowed-rates = [ 8000 16000 22050 32000 44100 48000 96000 ]\n"
            "    default.clock.rate = "
         << clockRateHz << '\n';
    if (leastCycleFrames > 0) file << "    default.clock.min-quantum = " << leastCycleFrames << '\n';
    file << "}\n";
    // The session manager leaves the machine's devices alone. Its Bluetooth monitor also loads a module that
    // ends the session manager on systems without systemd.
    Configuration("wireplumber/main.lua.d/60-no-devices.lua")
        << "for _, monitor in ipairs({ alsa_monitor, v4l2_monitor, libcamera_monitor }) do\n"
           "    monitor.enabled = false\n"
           "end\n";
    Configuration("wireplumber/bluetooth.lua.d/60-no-devices.lua") << "bluez_monitor.enabled = false\n";
}

// A new configuration file of the private programs.
std::ofstream PipeWireServer::Configuration(const std::string& path) const {
    const auto file = Folder() / "config" / path;
    std::filesystem::create_directories(file.parent_path());
    return std::ofstream(file);
}

std::unique_ptr<ChildProcess> PipeWireServer::Launch(const Arguments& command) const {
    Environment environment = FolderEnvironment();
    environment.emplace_back("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + (Folder() / "bus").string());
    return std::make_unique<ChildProcess>(command, environment, LogPath());
}

// Runs at high priority, because PipeWire drops samples silently when it is late. Without the right to raise
// the priority, nice starts it anyway.
std::unique_ptr<ChildProcess> PipeWireServer::LaunchFirst(const std::string& program) const {
    return Launch({"nice", "-n", "-11", program});
}

void PipeWireServer::StartProtocol() {
    protocol_ = LaunchFirst("pipewire-pulse");
    WaitUntilReady();
    for (const NullSink& sink : sinks_) LoadNullSink(sink);
    if (sinks_.empty()) return;
    WaitFor("default sink", [&] { return TakesDefault(sinks_.front().name); });
}

bool PipeWireServer::TakesDefault(const std::string& sink) const {
    try {
        Control({"set-default-sink", sink});
        return Control({"get-default-sink"}) == sink;
    } catch (const std::runtime_error&) {
        return false;  // waits until the session manager is ready
    }
}

void PipeWireServer::Kill() {
    protocol_->Kill();
}

void PipeWireServer::Restart() {
    protocol_->Kill();
    std::filesystem::remove(SocketPath());
    StartProtocol();
}

void PipeWireServer::Pause() {
    protocol_->Send(SIGSTOP);
}

void PipeWireServer::Continue() {
    protocol_->Send(SIGCONT);
}

void PipeWireServer::AddCard(const std::string& pcm, const std::string& sink,
                             const std::string& description) const {
    Run({"pw-cli", "create-node", "adapter",
         "{ factory.name=api.alsa.pcm.sink node.name=" + sink + " node.description=" + description +
             " media.class=Audio/Sink api.alsa.path=" + pcm + " object.linger=true }"});
    WaitUntilListed(sink);
}

void PipeWireServer::ForceRate(std::uint32_t rateHz) const {
    Run({"pw-metadata", "-n", "settings", "0", "clock.force-rate", std::to_string(rateHz)});
}

void PipeWireServer::Run(const Arguments& command) const {
    RunProgram(command, FolderEnvironment(), kPipeWireLimit);
}

void PipeWireServer::KillDaemon() {
    daemon_->Kill();
}

}  // namespace sonavex
