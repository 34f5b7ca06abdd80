#include <gmock/gmock.h>

#include "safety/Confined.h"
#include "safety/HelpPage.h"
#include "safety/Session.h"
#include "safety/Writers.h"

int main(int argc, char** argv) {
    for (const auto run : {sonavex::RunConfined, sonavex::RunSession, sonavex::RunShowHelpPage,
                           sonavex::RunOpenAddress, sonavex::RunWriter})
        if (const auto status = run(argc, argv)) return *status;
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
