#include "app/environment_key.h"

#include <cstdlib>
#include <cstring>
#include <mutex>
#include <utility>

#include "advisor/advisor_ports.h"
#include "platform/base/core_dumps.h"
#include "platform/base/environment.h"

namespace tallowcrest {
namespace {

class EnvironmentKey final : public SecretStore {
public:
    explicit EnvironmentKey(SecretText key) : key_(std::move(key)) {}

    bool isStored() override { return true; }
    void forbidDumps() override { forbidCoreDumps(); }
    std::optional<SecretText> read() override { return SecretText(key_.view()); }
    bool add(const SecretText& /*secret*/) override { return false; }
    bool remove() override { return false; }

private:
    SecretText key_;
};

}  // namespace

std::shared_ptr<SecretStore> takeEnvironmentKey() {
    const std::lock_guard guard(environmentLock());
    char* const value = std::getenv(keyVariable);
    if (value == nullptr || *value == '\0') {
        return nullptr;
    }
    forbidCoreDumps();
    const std::size_t length = std::strlen(value);
    SecretText key({value, length});
    wipe({value, length});
    unsetenv(keyVariable);
    return std::make_shared<EnvironmentKey>(std::move(key));
}

}  // namespace tallowcrest
