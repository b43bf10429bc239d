#include "platform/desktop/keychain_secret_store.h"

#include <CoreFoundation/CoreFoundation.h>
#include <Security/Security.h>

#include <memory>
#include <type_traits>

#include "platform/base/core_dumps.h"

namespace tallowcrest {
namespace {

struct Releaser {
    void operator()(CFTypeRef object) const { CFRelease(object); }
};
template <class Reference>
using Handle = std::unique_ptr<std::remove_pointer_t<Reference>, Releaser>;
using Dictionary = Handle<CFMutableDictionaryRef>;

const UInt8* bytesOf(std::string_view text) {
    return reinterpret_cast<const UInt8*>(text.data());
}

Handle<CFStringRef> string(std::string_view text) {
    return Handle<CFStringRef>(CFStringCreateWithBytes(kCFAllocatorDefault, bytesOf(text),
                                                       static_cast<CFIndex>(text.size()),
                                                       kCFStringEncodingUTF8, 0));
}

/// What identifies the item.
Dictionary item() {
    Dictionary query(CFDictionaryCreateMutable(
        kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
    CFDictionaryAddValue(query.get(), kSecClass, kSecClassGenericPassword);
    CFDictionaryAddValue(query.get(), kSecAttrService, string(keychainService).get());
    CFDictionaryAddValue(query.get(), kSecAttrAccount, string(openAIKeyAccount).get());
    return query;
}

}  // namespace

bool KeychainSecretStore::isStored() {
    // Without its data, an item is found without a question.
    return SecItemCopyMatching(item().get(), nullptr) == errSecSuccess;
}

void KeychainSecretStore::forbidDumps() {
    forbidCoreDumps();
}

std::optional<SecretText> KeychainSecretStore::read() {
    forbidCoreDumps();
    const Dictionary query = item();
    CFDictionaryAddValue(query.get(), kSecReturnData, kCFBooleanTrue);
    CFDictionaryAddValue(query.get(), kSecMatchLimit, kSecMatchLimitOne);
    CFTypeRef found = nullptr;
    const OSStatus status = SecItemCopyMatching(query.get(), &found);
    const Handle<CFTypeRef> result(found);
    if (status != errSecSuccess || !result || CFGetTypeID(found) != CFDataGetTypeID()) {
        return std::nullopt;
    }
    const auto* const data = static_cast<CFDataRef>(found);
    return SecretText({reinterpret_cast<const char*>(CFDataGetBytePtr(data)),
                       static_cast<std::size_t>(CFDataGetLength(data))});
}

bool KeychainSecretStore::add(const SecretText& secret) {
    forbidCoreDumps();
    // Refers to the bytes of the secret, which outlives it.
    const Handle<CFDataRef> data(
        CFDataCreateWithBytesNoCopy(kCFAllocatorDefault, bytesOf(secret.view()),
                                    static_cast<CFIndex>(secret.view().size()), kCFAllocatorNull));
    const Dictionary attributes = item();
    CFDictionaryAddValue(attributes.get(), kSecValueData, data.get());
    CFDictionaryAddValue(attributes.get(), kSecAttrAccessible,
                         kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly);
    return SecItemAdd(attributes.get(), nullptr) == errSecSuccess;
}

bool KeychainSecretStore::remove() {
    const OSStatus status = SecItemDelete(item().get());
    return status == errSecSuccess || status == errSecItemNotFound;
}

}  // namespace tallowcrest
