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
    std::string format{};  // "s24le"; empty for the server's
};

// A private sound server: its address and its control program.
class SoundServer {
public:
    virtual ~SoundServer() = default;

    std::string Address() const { return "unix:" + SocketPath().string(); }
    // Runs pactl on this server and returns its output without the last line break.
    std::string Control(const Arguments& arguments) const;
    // Loads another null sink and returns the number of its module.
    std::string LoadNullSink(const NullSink& sink) const;

    // Acts on the process that serves clients.
    virtual void Kill() = 0;
    virtual void Restart() = 0;
    virtual void Pause() = 0;
    virtual void Continue() = 0;

protected:
    // Also keeps files of the client library out of the user's folders.
    SoundServer();
    const std::filesystem::path& Folder() const noexcept { return folder_.Path(); }
    virtual std::filesystem::path SocketPath() const = 0;
    // Environment with private folders for programs.
    Environment FolderEnvironment() const;
    // Throws std::runtime_error with the server's output if it does not answer.
    void WaitUntilReady() const;
    void WaitUntilListed(const std::string& sink) const;
    std::filesystem::path LogPath() const { return Folder() / "log"; }

    static Arguments NullSinkArguments(const NullSink& sink);

private:
    PrivateFolder folder_;
};

}  // namespace sonavex
