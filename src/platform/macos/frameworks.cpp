#include "platform/macos/frameworks.h"

#include <dlfcn.h>

// The name that is looked up is that of the member.
#define FIND(member) find(found.member, #member)

namespace tallowcrest {
namespace {

class Finder {
public:
    explicit Finder(const FrameworkLookup& lookup) : lookup_(lookup) {}

    template <class Pointer>
    void operator()(Pointer& pointer, const char* name) {
        pointer = reinterpret_cast<Pointer>(lookup_(name));
        isComplete_ = isComplete_ && pointer != nullptr;
    }

    template <class Table>
    std::optional<Table> complete(const Table& found) const {
        return isComplete_ ? std::optional(found) : std::nullopt;
    }

private:
    const FrameworkLookup& lookup_;
    bool isComplete_ = true;
};

FrameworkLookup lookupIn(const char* path) {
    void* const framework = ::dlopen(path, RTLD_NOW | RTLD_LOCAL);
    return [framework](const char* wanted) {
        return framework == nullptr ? nullptr : ::dlsym(framework, wanted);
    };
}

}  // namespace

std::optional<CoreFoundation> coreFoundationFrom(const FrameworkLookup& lookup) {
    Finder find(lookup);
    CoreFoundation found;
    FIND(CFURLCreateFromFileSystemRepresentation);
    FIND(CFURLCopyResourcePropertyForKey);
    FIND(CFGetTypeID);
    FIND(CFNumberGetTypeID);
    FIND(CFNumberGetValue);
    FIND(CFStringGetTypeID);
    FIND(CFStringCreateWithBytes);
    FIND(CFStringGetCString);
    FIND(CFDataCreateWithBytesNoCopy);
    FIND(CFDataGetTypeID);
    FIND(CFDataGetBytePtr);
    FIND(CFDataGetLength);
    FIND(CFDictionaryCreateMutable);
    FIND(CFDictionaryAddValue);
    FIND(CFBundleGetMainBundle);
    FIND(CFBundleGetValueForInfoDictionaryKey);
    FIND(CFRelease);
    FIND(kCFTypeDictionaryKeyCallBacks);
    FIND(kCFTypeDictionaryValueCallBacks);
    FIND(kCFAllocatorNull);
    FIND(kCFBooleanTrue);
    FIND(kCFURLVolumeTotalCapacityKey);
    FIND(kCFURLVolumeAvailableCapacityForImportantUsageKey);
    return find.complete(found);
}

std::optional<SecurityFramework> securityFrameworkFrom(const FrameworkLookup& lookup) {
    Finder find(lookup);
    SecurityFramework found;
    FIND(SecItemCopyMatching);
    FIND(SecItemAdd);
    FIND(SecItemDelete);
    FIND(kSecClass);
    FIND(kSecClassGenericPassword);
    FIND(kSecAttrService);
    FIND(kSecAttrAccount);
    FIND(kSecAttrAccessible);
    FIND(kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly);
    FIND(kSecReturnData);
    FIND(kSecMatchLimit);
    FIND(kSecMatchLimitOne);
    FIND(kSecValueData);
    return find.complete(found);
}

const CoreFoundation* coreFoundation() {
    static const std::optional framework = coreFoundationFrom(lookupIn(CoreFoundation::path));
    return framework ? &*framework : nullptr;
}

const SecurityFramework* securityFramework() {
    static const std::optional framework = securityFrameworkFrom(lookupIn(SecurityFramework::path));
    return framework ? &*framework : nullptr;
}

}  // namespace tallowcrest
