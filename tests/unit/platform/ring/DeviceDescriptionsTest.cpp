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

TEST(DeviceDescriptions, LastWithTheIdentifier) {
    EXPECT_EQ(LastingDescription({"a", "Card", ""}), "Card [a]");
    EXPECT_EQ(LastingDescription({"a", "Card [a]", ""}), "Card [a]");
    EXPECT_EQ(LastingDescription({"b", "Card [a]", ""}), "Card [a] [b]");
    for (const char* present : {"Card", "Card [a]"}) EXPECT_TRUE(IsNamed({"a", present, ""}, "Card [a]"));
    EXPECT_TRUE(IsNamed({"a", "Card", ""}, "Card"));
    EXPECT_FALSE(IsNamed({"a", "Card [a]", ""}, "Card")) << "also the name of a twin";
    EXPECT_FALSE(IsNamed({"b", "Card", ""}, "Card [a]"));
    EXPECT_FALSE(IsNamed({"a", "Card", ""}, ""));
}

}  // namespace
}  // namespace sonavex
