#pragma once

#include <string>
#include <vector>

#include "support/ChildProcess.h"
#include "support/alsa/FakeMixerState.h"

namespace sonavex {

// Cards without hardware for libasound that have a mixer only: "hw:N" for the number of a card. While
// this object lives this process's ALSA configuration holds them and nothing else. One at a time.
class FakeMixerCards {
public:
    FakeMixerCards();
    ~FakeMixerCards();
    FakeMixerCards(const FakeMixerCards&) = delete;
    FakeMixerCards& operator=(const FakeMixerCards&) = delete;

    // Puts a card in, with its levels as they are at first; the name of its control.
    std::string PutIn(int number);
    // As another program.
    void Change(int number, FakeControl control, const std::vector<std::int32_t>& values);
    std::vector<std::int32_t> Values(int number, FakeControl control) const;
    void PullOut(int number);
    // The driver takes the control away, or brings it again.
    void Offer(int number, FakeControl control, bool offered);

private:
    std::string StatePath(int number) const;
    FakeMixerState Load(int number) const;
    void Save(int number, const FakeMixerState& state) const;

    PrivateFolder folder_;
};

}  // namespace sonavex
