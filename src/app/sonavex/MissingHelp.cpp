#include "app/sonavex/MissingHelp.h"

#include <string>

namespace sonavex::app {

void MissingHelp::ShowTopic(std::int32_t topic) {
    dialogs_.Message("The help file 'Sonavex.chm' was not found in the program's folder.\r" +
                         desktop_.ApplicationFolder() + "\r\rHelp topic: " + std::to_string(topic),
                     MessageIcon::kInformation);
}

}  // namespace sonavex::app
