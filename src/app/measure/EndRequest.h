#pragma once

namespace sonavex::measure {

// While it exists, the first SIGINT, SIGTERM or SIGHUP does not end the program but is noted; the second one
// of its kind ends it. Signals that the program was started to ignore stay ignored. One object at a time.
class EndRequest {
public:
    EndRequest();
    // Restores the former handling.
    ~EndRequest();
    EndRequest(const EndRequest&) = delete;
    EndRequest& operator=(const EndRequest&) = delete;

    bool Noted() const noexcept;
};

}  // namespace sonavex::measure
