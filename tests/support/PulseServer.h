#pragma once

#include <memory>
#include <vector>

#include "support/SoundServer.h"

namespace sonavex {

// A private PulseAudio server with these sinks; the first is the default. Volumes are 100 percent, and an
// idle sink starts at once.
class PulseServer : public SoundServer {
public:
    explicit PulseServer(std::vector<NullSink> sinks);
    ~PulseServer() override = default;

    void Kill() override;
    void Restart() override;
    void Pause() override;
    void Continue() override;

protected:
    std::filesystem::path SocketPath() const override { return Folder() / "native"; }

private:
    void Start();

    std::vector<NullSink> sinks_;
    std::unique_ptr<ChildProcess> process_;
};

}  // namespace sonavex
