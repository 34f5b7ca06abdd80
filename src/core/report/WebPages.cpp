#include "core/report/WebPages.h"

namespace sonavex::web_page {
namespace {

std::string Address(const std::string& path) {
    return "https://" + std::string(kHost) + path;
}

}  // namespace

std::string UpdateCheck(const ApplicationVersion& version) {
    return Address("/check_sonavex_version.asp?Version=" + VersionNumber(version));
}

std::string Contact() {
    return Address("/sendemail/contactform.asp");
}

std::string Home() {
    return Address("/");
}

}  // namespace sonavex::web_page
