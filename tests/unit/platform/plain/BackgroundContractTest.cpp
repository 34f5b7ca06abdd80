#include "contract/BackgroundContract.h"
#include "platform/plain/WorkerThread.h"
#include "support/InlineBackground.h"

namespace sonavex {
namespace {

INSTANTIATE_TYPED_TEST_SUITE_P(Worker, BackgroundContract, WorkerThread);
INSTANTIATE_TYPED_TEST_SUITE_P(Inline, BackgroundContract, InlineBackground);

}  // namespace
}  // namespace sonavex
