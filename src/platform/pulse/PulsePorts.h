#pragma once

#include <string>
#include <vector>

// What the ports of a source are for.
namespace sonavex {

enum class PulseInput { kMicrophone, kLine, kOther };

struct PulsePort {
    std::string name;
    PulseInput input = PulseInput::kOther;
};

// By the server's type of the port (0 where it has none), else by what its name and description say.
PulseInput InputOfPort(int type, const std::string& name, const std::string& description);

// The ports of one source as far as levels are concerned.
class PulsePorts {
public:
    // deviceName decides for a source whose active port is neither microphone nor line, or that has no
    // ports: a microphone when it holds MIC in any letter case, else a line input.
    PulsePorts(std::vector<PulsePort> ports, const std::string& activePort, const std::string& deviceName);

    // What is being recorded.
    PulseInput Active() const noexcept { return active_; }
    // Whether the source can record this input, now or after selecting it.
    bool Offers(PulseInput input) const { return active_ == input || !PortFor(input).empty(); }
    // The first port of that kind; empty without one.
    std::string PortFor(PulseInput input) const;

private:
    std::vector<PulsePort> ports_;
    PulseInput active_;
};

}  // namespace sonavex
