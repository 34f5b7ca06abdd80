#include "support/SoundServer.h"

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <thread>

#include "support/Wait.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

constexpr auto kReadyLimit = 10s;
constexpr auto kControlLimit = 5s;

}  // namespace

SoundServer::SoundServer() {
    setenv("PULSE_COOKIE", (folder_.Path() / "cookie").c_str(), 1);
}

Environment SoundServer::FolderEnvironment() const {
    const std::string folder = Folder().string();
    return {{"HOME", folder},
            {"XDG_RUNTIME_DIR", folder},
            {"XDG_CONFIG_HOME", folder + "/config"},
            {"XDG_STATE_HOME", folder + "/state"},
            {"XDG_CACHE_HOME", folder + "/cache"},
            {"PULSE_RUNTIME_PATH", folder + "/pulse"},
            {"PULSE_COOKIE", folder + "/cookie"},
            {"PULSE_SERVER", Address()},
            {"LC_ALL", "C"},
            {"DISPLAY", ""}};
}

std::string SoundServer::Control(const Arguments& arguments) const {
    Arguments command{"pactl"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    std::string text = RunProgram(command, FolderEnvironment(), kControlLimit);
    while (!text.empty() && text.back() == '\n') text.pop_back();
    return text;
}

Arguments SoundServer::NullSinkArguments(const NullSink& sink) {
    Arguments arguments{"module-null-sink", "sink_name=" + sink.name, "rate=" + std::to_string(sink.rateHz),
                        "channels=2", "sink_properties=device.description=" + sink.description};
    if (!sink.format.empty()) arguments.push_back("format=" + sink.format);
    return arguments;
}

std::string SoundServer::LoadNullSink(const NullSink& sink) const {
    Arguments command{"load-module"};
    for (const std::string& argument : NullSinkArguments(sink)) command.push_back(argument);
    command.emplace_back("norewinds=1");
    const std::string module = Control(command);
    WaitUntilListed(sink.name);
    return module;
}

// PipeWire lists a new sink some time after the command that loads it.
void SoundServer::WaitUntilListed(const std::string& sink) const {
    const auto listed = [&](const char* kind, const std::string& name) {
        return Control({"list", "short", kind}).find('\t' + name + '\t') != std::string::npos;
    };
    if (!WaitUntil([&] { return listed("sinks", sink) && listed("sources", sink + ".monitor"); },
                   kReadyLimit))
        throw std::runtime_error("the sink does not come");
}

void SoundServer::WaitUntilReady() const {
    const auto answers = [this] {
        try {
            if (!std::filesystem::exists(SocketPath())) return false;
            Control({"info"});
            return true;
        } catch (const std::runtime_error&) {
            return false;
        }
    };
    if (WaitUntil(answers, kReadyLimit)) return;
    std::ostringstream log;
    log << std::ifstream(LogPath()).rdbuf();
    throw std::runtime_error("The sound server does not get ready: " + log.str());
}

}  // namespace sonavex
