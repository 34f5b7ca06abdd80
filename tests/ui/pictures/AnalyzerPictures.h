#pragma once

#include <QString>

namespace sonavex {

// Saves pictures of the Analyzer in its states. Returns false if a file cannot be written.
bool AnalyzerPictures(bool dark, const QString& folder);

}  // namespace sonavex
