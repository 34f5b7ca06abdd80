#include "platform/plain/LargeBlocks.h"

#include <cstdlib>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace sonavex {

void ReturnLargeBlocks() {
#if defined(__GLIBC__)
    constexpr int kLargeBlock = 1 << 20;
    mallopt(M_MMAP_THRESHOLD, kLargeBlock);
#endif
}

}  // namespace sonavex
