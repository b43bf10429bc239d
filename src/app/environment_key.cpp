#include "app/environment_key.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <span>
#include <utility>

#include "advisor/advisor_ports.h"
#include "advisor/openai_key.h"
#include "core/text.h"
#include "platform/base/core_dumps.h"
#include "platform/base/environment.h"
#include "platform/tools/spawn_support.h"

namespace tallowcrest {
namespace {

class EnvironmentKeyStore final : public SecretStore {
public:
    explicit EnvironmentKeyStore(SecretText key) : key_(std::move(key)) {}

    bool isStored() override { return true; }
    void forbidDumps() override { forbidCoreDumps(); }
    std::optional<SecretText> read() override { return SecretText(key_.view()); }
    bool add(const SecretText& /*secret*/) override { return false; }
    bool remove(bool /*unlocks*/) override { return false; }

private:
    SecretText key_;
};

/// The bytes of the value if `entry` of the environment is one of the key; empty otherwise.
std::span<char> valueOfKey(char* entry) {
    const std::size_t name = std::strlen(keyVariable);
    if (std::strncmp(entry, keyVariable, name) != 0 || entry[name] != '=') {
        return {};
    }
    char* const value = entry + name + 1;
    return {value, std::strlen(value)};
}

}  // namespace

EnvironmentKey takeEnvironmentKey() {
    const std::lock_guard guard(environmentLock());
    SecretText key;
    // A variable can be there several times, although the usual functions find only the first.
    for (char** entry = spawn_support::environment(); entry != nullptr && *entry != nullptr;
         ++entry) {
        if (const auto value = valueOfKey(*entry); !value.empty()) {
            forbidCoreDumps();
            if (key.isEmpty()) {
                key = SecretText(trimmingWhiteSpace({value.data(), value.size()}));
            }
            wipe(value);
        }
    }
    unsetenv(keyVariable);  // removes all of them
    if (key.isEmpty()) {
        return {};
    }
    if (!canStandInHeader(key.view())) {
        return {.isBad = true};
    }
    return {.store = std::make_shared<EnvironmentKeyStore>(std::move(key))};
}

}  // namespace tallowcrest
