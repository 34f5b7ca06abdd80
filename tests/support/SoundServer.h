#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "support/ChildProcess.h"

namespace sonavex {

// A sink without hardware; its monitor returns what is played.
struct NullSink {
    std::string name;
    std::uint32_t rateHz = 48000;
    std::string description;
};

// What tests need of a sound server of their own, whichever it is: its address, and its control
// program.
class SoundServer {
public:
    virtual ~SoundServer() = default;

    std::string Address() const { return "unix:" + SocketPath().string(); }
    // Runs pactl on this server and returns its output without the last line break.
    std::string Control(const Arguments& arguments) const;
    // Loads another null sink; the number of its module.
    std::string LoadNullSink(const NullSink& sink) const;

    // The process that speaks to clients.
    virtual void Kill() = 0;
    virtual void Restart() = 0;
    virtual void Pause() = 0;
    virtual void Continue() = 0;

protected:
    // Also keeps the client library's files out of the user's folders.
    SoundServer();
    const std::filesystem::path& Folder() const noexcept { return folder_.Path(); }
    virtual std::filesystem::path SocketPath() const = 0;
    // Where programs find and keep their files.
    Environment FolderEnvironment() const;
    // Throws std::runtime_error with the server's output when it does not answer.
    void WaitUntilReady() const;
    void WaitUntilListed(const std::string& sink) const;
    std::filesystem::path LogPath() const { return Folder() / "log"; }

    static Arguments NullSinkArguments(const NullSink& sink);

private:
    PrivateFolder folder_;
};

}  // namespace sonavex
