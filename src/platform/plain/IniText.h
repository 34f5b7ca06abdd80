#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace sonavex {

// Values by section and key. All three are strings of bytes, usually UTF-8.
using IniSections = std::map<std::string, std::map<std::string, std::string, std::less<>>, std::less<>>;

struct IniReading {
    IniSections sections;
    // Some of the text is no settings text. When it holds control characters nothing of it is taken;
    // otherwise the lines that could be understood are.
    bool damaged = false;
};

// Text form of the settings, made to be read and edited by hand:
//
//   ; a comment, also with #
//   [Signal Generator]
//   Memory Signal Start 3=1000
//   Level= -50                         the text is -50: blanks around it do not count
//   Input=a card, "the big one"        everything to the end of the line, as it is
//   Name=" blanks, \"quotes\", a \\ and a\nline break"
//
// A value that begins and ends with a quotation mark has its blanks kept and \" \\ \n \r \t \xHH
// replaced; a backslash before anything else stands for itself, as it does in a value without quotation
// marks. Section names and keys may be written in quotation marks as well. A repeated key counts with
// its last value; sections may come in any order and more than once.
IniReading ReadIni(std::string_view text);

// Text that ReadIni reads back as the same sections, letter for letter. Sections without a value are
// not written.
std::string WriteIni(const IniSections& sections);

}  // namespace sonavex
