#pragma once

namespace sonavex {

// From now on freed blocks of 1 MB and more return to the system. Otherwise the C library keeps what the
// records of the longest measurements leave. Call it once, before threads start.
void ReturnLargeBlocks();

}  // namespace sonavex
