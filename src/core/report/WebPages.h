#pragma once

#include <string>

#include "core/text/ApplicationVersion.h"

namespace sonavex::web_page {

// The maker's web server: the one place that names it.
inline constexpr const char* kHost = "sonavex.example";

// Tells whether there is a version newer than this one.
std::string UpdateCheck(const ApplicationVersion& version);
// The form by which users write to the maker.
std::string Contact();
// The maker's home page.
std::string Home();

}  // namespace sonavex::web_page
