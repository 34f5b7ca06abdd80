#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace sonavex {

// A word of a page and its edges, in inches from the top left of the page.
struct PlacedWord {
    std::string text;
    double left = 0.0;
    double right = 0.0;
    double top = 0.0;
    double bottom = 0.0;
};

// What another program (pdftotext) reads in a PDF of one page.
std::vector<PlacedWord> WordsOfPdf(const std::filesystem::path& file);
// The page as lines of text, with blanks between the words.
std::string TextOfPdf(const std::filesystem::path& file);
// Pages, paper size, fonts: what pdfinfo and pdffonts say.
std::string FactsOfPdf(const std::filesystem::path& file);

}  // namespace sonavex
