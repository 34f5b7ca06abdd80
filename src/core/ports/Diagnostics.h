#pragma once

#include <functional>
#include <optional>
#include <string>

namespace sonavex {

// What the system itself can tell about its sound devices. User-interface thread only.
class Diagnostics {
public:
    virtual ~Diagnostics() = default;

    // Gets the report as lines for people, or nothing when there is no program that could make one.
    using Done = std::function<void(const std::optional<std::string>&)>;

    // Begins to collect and returns; `done` is called once, later, from the event loop. Collecting ends
    // within a time limit whatever the programs do. Another start drops the one before.
    virtual void Start(Done done) = 0;
    // Stops collecting; `done` is not called any more.
    virtual void Cancel() = 0;
};

}  // namespace sonavex
