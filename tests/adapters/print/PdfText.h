#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace sonavex {

// A word and its edges, in inches from the top left of the page.
struct PlacedWord {
    std::string text;
    double left = 0.0;
    double right = 0.0;
    double top = 0.0;
    double bottom = 0.0;
};

// Words that pdftotext finds in a PDF of one page.
std::vector<PlacedWord> WordsOfPdf(const std::filesystem::path& file);
// The page as lines of words separated by blanks.
std::string TextOfPdf(const std::filesystem::path& file);
// Output of pdfinfo and pdffonts: pages, paper size, fonts.
std::string FactsOfPdf(const std::filesystem::path& file);

}  // namespace sonavex
