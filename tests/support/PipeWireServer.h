#pragma once

#include <cstdint>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "support/SoundServer.h"

namespace sonavex {

// A private PipeWire with these sinks: message bus, daemon, session manager and PulseAudio protocol server.
// The first sink is the default. An idle graph adopts the rate of a stream.
class PipeWireServer : public SoundServer {
public:
    // The instrument requests cycles of 512 frames. On a machine that stops threads for 10 ms, as virtual
    // machines do, PipeWire then drops samples silently. Tests that compare samples use cycles of this
    // length.
    static constexpr std::uint32_t kPatientCycle = 2048;

    // leastCycleFrames: minimum cycle length; 0 for what the streams request. clockRateHz: the server's rate.
    explicit PipeWireServer(std::vector<NullSink> sinks, std::uint32_t leastCycleFrames = 0,
                            std::uint32_t clockRateHz = 48000);
    ~PipeWireServer() override;

    // These act on the protocol server; the daemon continues.
    void Kill() override;
    void Restart() override;
    void Pause() override;
    void Continue() override;

    void KillDaemon();

    // Adds a sink that plays to a PCM of the ALSA configuration at the server's start.
    void AddCard(const std::string& pcm, const std::string& sink, const std::string& description) const;
    // Runs the graph at this rate, whatever the streams request.
    void ForceRate(std::uint32_t rateHz) const;

protected:
    std::filesystem::path SocketPath() const override { return Folder() / "pulse" / "native"; }

private:
    std::unique_ptr<ChildProcess> Launch(const Arguments& command) const;
    std::unique_ptr<ChildProcess> LaunchFirst(const std::string& program) const;
    void WriteConfiguration(std::uint32_t leastCycleFrames, std::uint32_t clockRateHz) const;
    std::ofstream Configuration(const std::string& path) const;
    void Run(const Arguments& command) const;
    void StartProtocol();
    bool TakesDefault(const std::string& sink) const;

    std::vector<NullSink> sinks_;
    std::unique_ptr<ChildProcess> bus_;
    std::unique_ptr<ChildProcess> daemon_;
    std::unique_ptr<ChildProcess> manager_;
    std::unique_ptr<ChildProcess> protocol_;
};

}  // namespace sonavex
