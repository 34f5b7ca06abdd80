#pragma once

#include <string>
#include <vector>

#include "support/ChildProcess.h"
#include "support/alsa/FakeMixerState.h"

namespace sonavex {

// Fake cards for libasound with a mixer only: "hw:N" for card number N. During the object's lifetime this
// process's ALSA configuration contains these cards only. One instance at a time.
class FakeMixerCards {
public:
    FakeMixerCards();
    ~FakeMixerCards();
    FakeMixerCards(const FakeMixerCards&) = delete;
    FakeMixerCards& operator=(const FakeMixerCards&) = delete;

    // Inserts a card with its initial levels. Returns the name of its control.
    std::string PutIn(int number);
    // Changes a control as another program does.
    void Change(int number, FakeControl control, const std::vector<std::int32_t>& values);
    std::vector<std::int32_t> Values(int number, FakeControl control) const;
    void PullOut(int number);
    // Removes a control as a driver does, or adds it again.
    void Offer(int number, FakeControl control, bool offered);

private:
    std::string StatePath(int number) const;
    FakeMixerState Load(int number) const;
    void Save(int number, const FakeMixerState& state) const;

    PrivateFolder folder_;
};

}  // namespace sonavex
