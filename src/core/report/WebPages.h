#pragma once

#include <string>

#include "core/text/ApplicationVersion.h"

namespace sonavex::web_page {

// The maker's web server. No other source names it.
inline constexpr const char* kHost = "sonavex.example";

// Page that reports whether there is a newer version.
std::string UpdateCheck(const ApplicationVersion& version);
// The maker's contact form.
std::string Contact();
// The maker's home page.
std::string Home();

}  // namespace sonavex::web_page
