#include <gmock/gmock.h>

#include "platform/ring/DeviceDescriptions.h"

namespace sonavex {
namespace {

std::vector<std::string> Distinguished(SoundDeviceList devices) {
    DistinguishDescriptions(devices);
    std::vector<std::string> descriptions;
    for (const SoundDeviceInfo& device : devices) descriptions.push_back(device.description);
    return descriptions;
}

TEST(DeviceDescriptions, ThatSeveralDevicesShareGetTheIdentifier) {
    using testing::ElementsAre;
    EXPECT_THAT(Distinguished({{"a", "Twin", ""}, {"b", "Other", ""}, {"c", "Twin", ""}}),
                ElementsAre("Twin [a]", "Other", "Twin [c]"));
    EXPECT_THAT(Distinguished({{"a", "Same", ""}, {"b", "Same", ""}, {"c", "Same", ""}}),
                ElementsAre("Same [a]", "Same [b]", "Same [c]"));
    EXPECT_THAT(Distinguished({{"a", "Card", ""}, {"b", "Card 2", ""}, {"c", "card", ""}}),
                ElementsAre("Card", "Card 2", "card"));
    EXPECT_THAT(Distinguished({}), testing::IsEmpty());
}

}  // namespace
}  // namespace sonavex
