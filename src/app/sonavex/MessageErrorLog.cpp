#include "app/sonavex/MessageErrorLog.h"

#include <algorithm>
#include <iostream>

namespace sonavex::app {

std::int32_t MessageErrorLog::WriteErrorLog(std::string& tStr, const RuntimeError& error) {
    if (*error.what() != '\0') tStr += std::string("\r\r") + error.what();
    if (fatal_) tStr += "\r\rProgram will terminate.";
    std::string line = tStr;
    std::replace(line.begin(), line.end(), '\r', ' ');
    WriteLine(line);
    dialogs_.Message(tStr, MessageIcon::kCritical);
    return 0;
}

void MessageErrorLog::WriteLine(const std::string& line) {
    std::cerr << "sonavex: " << line << '\n';
}

}  // namespace sonavex::app
