#include <cstddef>
#include <memory>
#include <utility>

#include "advisor/advisor_ports.h"
#include "platform/base/core_dumps.h"
#include "platform/desktop_services.h"
#include "platform/macos/frameworks.h"

namespace tallowcrest {
namespace {

const unsigned char* bytesOf(std::string_view text) {
    return reinterpret_cast<const unsigned char*>(text.data());
}

/// The owner's Keychain. The system asks whom it must and decides how long that takes.
class KeychainSecretStore final : public SecretStore {
public:
    KeychainSecretStore(const CoreFoundation& foundation, const SecurityFramework& security)
        : foundation_(foundation), security_(security) {}

    bool isStored() override {
        // Without its data, an item is found without a question.
        return security_.SecItemCopyMatching(item().get(), nullptr) == SecurityFramework::success;
    }

    void forbidDumps() override { forbidCoreDumps(); }

    std::optional<SecretText> read() override {
        forbidCoreDumps();
        const Handle query = item();
        set(query, security_.kSecReturnData, *foundation_.kCFBooleanTrue);
        set(query, security_.kSecMatchLimit, *security_.kSecMatchLimitOne);
        CFObject found = nullptr;
        const auto status = security_.SecItemCopyMatching(query.get(), &found);
        const Handle result = handle(found);
        if (status != SecurityFramework::success || result == nullptr ||
            foundation_.CFGetTypeID(found) != foundation_.CFDataGetTypeID()) {
            return std::nullopt;
        }
        return SecretText({reinterpret_cast<const char*>(foundation_.CFDataGetBytePtr(found)),
                           static_cast<std::size_t>(foundation_.CFDataGetLength(found))});
    }

    bool add(const SecretText& secret) override {
        forbidCoreDumps();
        // Refers to the bytes of the secret, which outlives it.
        const Handle data = handle(foundation_.CFDataCreateWithBytesNoCopy(
            nullptr, bytesOf(secret.view()),
            static_cast<CoreFoundation::Index>(secret.view().size()),
            *foundation_.kCFAllocatorNull));
        const Handle attributes = item();
        set(attributes, security_.kSecValueData, data.get());
        set(attributes, security_.kSecAttrAccessible,
            *security_.kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly);
        return security_.SecItemAdd(attributes.get(), nullptr) == SecurityFramework::success;
    }

    bool remove(bool /*unlocks*/) override {
        const auto status = security_.SecItemDelete(item().get());
        return status == SecurityFramework::success || status == SecurityFramework::notFound;
    }

private:
    /// Releases its object. Null where there is none.
    using Handle = std::unique_ptr<const void, void (*)(CFObject)>;

    Handle handle(CFObject object) const { return {object, foundation_.CFRelease}; }

    Handle string(std::string_view text) const {
        return handle(foundation_.CFStringCreateWithBytes(
            nullptr, bytesOf(text), static_cast<CoreFoundation::Index>(text.size()),
            CoreFoundation::utf8, 0));
    }

    void set(const Handle& dictionary, const CFObject* key, CFObject value) const {
        foundation_.CFDictionaryAddValue(dictionary.get(), *key, value);
    }

    /// What identifies the item.
    Handle item() const {
        Handle query = handle(foundation_.CFDictionaryCreateMutable(
            nullptr, 0, foundation_.kCFTypeDictionaryKeyCallBacks,
            foundation_.kCFTypeDictionaryValueCallBacks));
        set(query, security_.kSecClass, *security_.kSecClassGenericPassword);
        set(query, security_.kSecAttrService, string(keychainService).get());
        set(query, security_.kSecAttrAccount, string(openAIKeyAccount).get());
        return query;
    }

    const CoreFoundation& foundation_;
    const SecurityFramework& security_;
};

}  // namespace

std::shared_ptr<SecretStore> desktop::makeSecretStore(std::stop_token) {
    const CoreFoundation* const foundation = coreFoundation();
    const SecurityFramework* const security = securityFramework();
    return foundation == nullptr || security == nullptr
               ? nullptr
               : std::make_shared<KeychainSecretStore>(*foundation, *security);
}

}  // namespace tallowcrest
