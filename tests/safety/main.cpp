#include <gmock/gmock.h>

#include "safety/Writers.h"

int main(int argc, char** argv) {
    if (const auto status = sonavex::RunWriter(argc, argv)) return *status;
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
