#pragma once

#include <QString>

namespace sonavex {

// Saves pictures of the Analyzer in its states whose names begin with `scenes`. Returns false if a file
// cannot be written.
bool AnalyzerPictures(bool dark, const QString& folder, const QString& scenes);

}  // namespace sonavex
