#include <memory>

#include "contract/SettingsStoreContract.h"
#include "platform/qt/QtSettingsStore.h"
#include "support/ChildProcess.h"

namespace sonavex {
namespace {

class QtStorePlatform {
public:
    QtStorePlatform() { Reopen(); }
    SettingsStore& Store() { return *store_; }
    void Reopen() {
        store_.reset();
        store_ = std::make_unique<QtSettingsStore>(folder_.Path() / "Sonavex" / "Sonavex.ini",
                                                   [](const std::string& text) { ADD_FAILURE() << text; });
    }

private:
    PrivateFolder folder_;
    std::unique_ptr<QtSettingsStore> store_;
};

INSTANTIATE_TYPED_TEST_SUITE_P(Qt, SettingsStoreContract, QtStorePlatform);

}  // namespace
}  // namespace sonavex
