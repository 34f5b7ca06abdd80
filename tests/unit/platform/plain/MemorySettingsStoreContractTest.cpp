#include "contract/SettingsStoreContract.h"
#include "platform/plain/MemorySettingsStore.h"

namespace sonavex {
namespace {

class MemoryPlatform {
public:
    SettingsStore& Store() { return store_; }
    void Reopen() {}  // its values live as long as the store

private:
    MemorySettingsStore store_;
};

INSTANTIATE_TYPED_TEST_SUITE_P(Memory, SettingsStoreContract, MemoryPlatform);

}  // namespace
}  // namespace sonavex
