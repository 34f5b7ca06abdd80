#pragma once

#include "ui/AnalyzerRig.h"

namespace sonavex {

// Readings of two days with texts of usual length, of every state; the last one is the newest.
void StoreExamples(AnalyzerRig& rig);

}  // namespace sonavex
