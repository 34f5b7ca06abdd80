#include "adapters/print/PdfText.h"

#include <chrono>
#include <regex>

#include "support/ChildProcess.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

constexpr double kPointsPerInch = 72.0;
constexpr auto kLimit = 20s;

}  // namespace

std::vector<PlacedWord> WordsOfPdf(const std::filesystem::path& file) {
    const std::string page = RunProgram({"pdftotext", "-bbox", file, "-"}, {}, kLimit);
    const std::regex word(
        R"re(<word xMin="([^"]*)" yMin="([^"]*)" xMax="([^"]*)" yMax="([^"]*)">([^<]*)</word>)re");
    std::vector<PlacedWord> words;
    for (auto found = std::sregex_iterator(page.begin(), page.end(), word); found != std::sregex_iterator();
         ++found) {
        const auto inches = [&](std::size_t group) { return std::stod((*found)[group]) / kPointsPerInch; };
        words.push_back({(*found)[5], inches(1), inches(3), inches(2), inches(4)});
    }
    return words;
}

std::string TextOfPdf(const std::filesystem::path& file) {
    return RunProgram({"pdftotext", "-layout", file, "-"}, {}, kLimit);
}

std::string FactsOfPdf(const std::filesystem::path& file) {
    return RunProgram({"pdfinfo", file}, {}, kLimit) + RunProgram({"pdffonts", file}, {}, kLimit);
}

}  // namespace sonavex
