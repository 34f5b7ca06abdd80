#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "support/SoundServer.h"

namespace sonavex {

// A PipeWire of the test's own: message bus, daemon, session manager and the PulseAudio protocol,
// with these sinks; the first is the default one. An idle graph takes over the rate of a stream.
class PipeWireServer : public SoundServer {
public:
    // In cycles of 512 frames, which the instrument's streams ask for, the graph is torn without a word
    // wherever the machine stops a thread for 10 ms, as virtual machines do. Where samples are compared, this
    // many frames make it patient.
    static constexpr std::uint32_t kPatientCycle = 2048;

    // leastCycleFrames: 0 for what the streams ask for.
    explicit PipeWireServer(std::vector<NullSink> sinks, std::uint32_t leastCycleFrames = 0);
    ~PipeWireServer() override;

    // These act on the protocol server; the daemon goes on.
    void Kill() override;
    void Restart() override;
    void Pause() override;
    void Continue() override;

    void KillDaemon();

protected:
    std::filesystem::path SocketPath() const override { return Folder() / "pulse" / "native"; }

private:
    std::unique_ptr<ChildProcess> Launch(const Arguments& command) const;
    std::unique_ptr<ChildProcess> LaunchFirst(const std::string& program) const;
    void WriteConfiguration(std::uint32_t leastCycleFrames) const;
    void StartProtocol();
    bool TakesDefault(const std::string& sink) const;

    std::vector<NullSink> sinks_;
    std::unique_ptr<ChildProcess> bus_;
    std::unique_ptr<ChildProcess> daemon_;
    std::unique_ptr<ChildProcess> manager_;
    std::unique_ptr<ChildProcess> protocol_;
};

}  // namespace sonavex
