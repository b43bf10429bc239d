#include "app/environment_key.h"

#include <cstdlib>
#include <cstring>
#include <mutex>
#include <utility>

#include "advisor/advisor_ports.h"
#include "advisor/openai_key.h"
#include "core/text.h"
#include "platform/base/core_dumps.h"
#include "platform/base/environment.h"

namespace tallowcrest {
namespace {

class EnvironmentKeyStore final : public SecretStore {
public:
    explicit EnvironmentKeyStore(SecretText key) : key_(std::move(key)) {}

    bool isStored() override { return true; }
    void forbidDumps() override { forbidCoreDumps(); }
    std::optional<SecretText> read() override { return SecretText(key_.view()); }
    bool add(const SecretText& /*secret*/) override { return false; }
    bool remove() override { return false; }

private:
    SecretText key_;
};

}  // namespace

EnvironmentKey takeEnvironmentKey() {
    const std::lock_guard guard(environmentLock());
    char* const value = std::getenv(keyVariable);
    if (value == nullptr || *value == '\0') {
        return {};
    }
    forbidCoreDumps();
    const std::size_t length = std::strlen(value);
    SecretText key(trimmingWhiteSpace({value, length}));
    wipe({value, length});
    unsetenv(keyVariable);
    if (key.isEmpty()) {
        return {};
    }
    if (!canStandInHeader(key.view())) {
        return {.isBad = true};
    }
    return {.store = std::make_shared<EnvironmentKeyStore>(std::move(key))};
}

}  // namespace tallowcrest
