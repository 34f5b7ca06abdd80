#pragma once

#include <string>
#include <vector>

// The inputs that the ports of a source select.
namespace sonavex {

enum class PulseInput { kMicrophone, kLine, kOther };

struct PulsePort {
    std::string name;
    PulseInput input = PulseInput::kOther;
};

// Decided by the server's type of the port. When the type decides nothing (0 means unknown), the words MIC
// and LINE in the name and description decide.
PulseInput InputOfPort(int type, const std::string& name, const std::string& description);

// The ports of one source.
class PulsePorts {
public:
    // When the active port is neither microphone nor line, or there are no ports, deviceName decides: a
    // microphone when it contains MIC in any letter case, otherwise a line input.
    PulsePorts(std::vector<PulsePort> ports, const std::string& activePort, const std::string& deviceName);

    // The input that is recorded.
    PulseInput Active() const noexcept { return active_; }
    // Whether the input is recorded or can be selected.
    bool Offers(PulseInput input) const { return active_ == input || !PortFor(input).empty(); }
    // The first port of that input; empty when there is none.
    std::string PortFor(PulseInput input) const;

private:
    std::vector<PulsePort> ports_;
    PulseInput active_;
};

}  // namespace sonavex
