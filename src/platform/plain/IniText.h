#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace sonavex {

// Values by section and key. All three are byte strings, usually UTF-8.
using IniSections = std::map<std::string, std::map<std::string, std::string, std::less<>>, std::less<>>;

struct IniReading {
    IniSections sections;
    // True when the text holds anything but settings. Its valid lines are still used, unless it holds control
    // characters: then no line is used.
    bool damaged = false;
};

// Text form of the settings, for reading and editing by hand:
//
//   ; a comment, also with #
//   [Signal Generator]
//   Memory Signal Start 3=1000
//   Level= -50                         the value is -50: blanks around it are dropped
//   Input=a card, "the big one"        the value is everything up to the end of the line
//   Name=" blanks, \"quotes\", a \\ and a\nline break"
//
// A value in quotation marks keeps its blanks, and \" \\ \n \r \t \xHH stand for characters. A backslash
// before any other character, or in a value without quotation marks, is an ordinary character. Section names
// and keys may be in quotation marks as well. The last value of a repeated key counts. Sections may come in
// any order and more than once.
IniReading ReadIni(std::string_view text);

// Text from which ReadIni reads exactly the same sections. Sections without a value are left out.
std::string WriteIni(const IniSections& sections);

}  // namespace sonavex
