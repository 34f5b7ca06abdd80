#include "core/text/ErrorText.h"

#include "core/text/Numbers.h"

namespace sonavex {
namespace {

std::string Heading(const RuntimeError& error) {
    return "Run-time error '" + CStr(error.Number()) + "':";
}

}  // namespace

std::string ErrorText(const RuntimeError& error) {
    return Heading(error) + "\r\r" + error.what();
}

std::string ErrorLine(const RuntimeError& error) {
    return Heading(error) + ' ' + error.what();
}

}  // namespace sonavex
