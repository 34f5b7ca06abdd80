#include <gmock/gmock.h>

#include "system/safety/Confined.h"
#include "system/safety/HelpPage.h"
#include "system/safety/OpenDialog.h"
#include "system/safety/Session.h"
#include "system/safety/Writers.h"

int main(int argc, char** argv) {
    for (const auto run : {sonavex::RunConfined, sonavex::RunSession, sonavex::RunShowHelpPage,
                           sonavex::RunOpenAddress, sonavex::RunOpenDialog, sonavex::RunWriter})
        if (const auto status = run(argc, argv)) return *status;
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
