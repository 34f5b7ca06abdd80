#pragma once

#include <functional>
#include <optional>
#include <string>

namespace sonavex {

// The system's own report about its sound devices.
class Diagnostics {
public:
    virtual ~Diagnostics() = default;

    // Receives the report as text, or nothing if no diagnostic program is installed.
    using Done = std::function<void(const std::optional<std::string>&)>;

    // Starts collecting and returns. `done` is called once, later, from the event loop, within a fixed time
    // limit. Starting again cancels the previous collection.
    virtual void Start(Done done) = 0;
    // Stops collecting; `done` is then not called.
    virtual void Cancel() = 0;
};

}  // namespace sonavex
