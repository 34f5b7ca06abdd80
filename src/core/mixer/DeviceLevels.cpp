#include "core/mixer/DeviceLevels.h"

#include <sstream>
#include <vector>

#include "core/support/RuntimeError.h"

namespace sonavex {
namespace {

// The values in the line of that key, as text; nothing when the text has no such line.
std::optional<std::string> LineOf(const std::string& levels, const std::string& key) {
    std::istringstream lines(levels);
    for (std::string line; std::getline(lines, line);)
        if (line.size() > key.size() && line[key.size()] == '\t' && line.compare(0, key.size(), key) == 0)
            return line.substr(key.size() + 1);
    return {};
}

// The control's line with its line end; empty when the control does not answer.
std::string LineFor(const DeviceMixer::RawEntry& entry) {
    try {
        std::string line = entry.key + '\t';
        for (const std::int32_t value : entry.element->Read()) line += std::to_string(value) + ' ';
        line.back() = '\n';
        return line;
    } catch (const RuntimeError&) {
        return {};
    }
}

// False when the device rejected the values. A line with another number of values is skipped.
bool Put(MixerElement& element, const std::string& line) {
    std::istringstream numbers(line);
    std::vector<std::int32_t> values;
    for (std::int32_t value = 0; numbers >> value;) values.push_back(value);
    try {
        const std::vector<std::int32_t> present = element.Read();
        if (values.size() == present.size() && values != present) element.Write(values);
        return true;
    } catch (const RuntimeError&) {
        return false;
    }
}

}  // namespace

std::optional<std::string> DeviceLevels::Read(const MixerDevice& device) {
    const std::shared_ptr<DeviceMixer> mixer = hardware_.Open(device);
    if (!mixer) return {};
    std::string levels;
    const std::vector<DeviceMixer::RawEntry> entries = mixer->RawEntries();
    for (const DeviceMixer::RawEntry& entry : entries) levels += LineFor(entry);
    if (levels.empty() && !entries.empty()) return {};
    return levels;
}

bool DeviceLevels::Write(const MixerDevice& device, const std::string& levels) {
    const std::shared_ptr<DeviceMixer> mixer = hardware_.Open(device);
    if (!mixer) return false;
    bool accepted = true;
    for (const DeviceMixer::RawEntry& entry : mixer->RawEntries())
        if (const auto line = LineOf(levels, entry.key)) accepted = Put(*entry.element, *line) && accepted;
    return accepted;
}

}  // namespace sonavex
