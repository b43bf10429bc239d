// The parts of CoreFoundation and of the Keychain that this program uses, on texts. Defines what
// frameworks.cpp defines on a Mac.

#include "tests/platform/macos/recorded_frameworks.h"

#include <algorithm>
#include <cstring>
#include <set>
#include <string_view>

#include "platform/macos/frameworks.h"

namespace tallowcrest {
namespace {

enum class Kind : unsigned long { constant, text, data, number, dictionary };

struct Recorded {
    Kind kind = Kind::constant;
    std::string text = {};
    std::map<std::string, std::string> entries = {};
};

Recorded& recorded(CFObject object) {
    return *static_cast<Recorded*>(const_cast<void*>(object));
}

CFObject made(Recorded object) {
    ++recordedFrameworks().objects;
    return new Recorded(std::move(object));
}

std::string textOf(const unsigned char* bytes, CoreFoundation::Index count) {
    return {reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(count)};
}

void release(CFObject object) {
    --recordedFrameworks().objects;
    delete &recorded(object);
}

CFObject valueInBundle(CFObject, CFObject key) {
    static Recorded value;
    const auto& information = recordedFrameworks().information;
    const auto found = information.find(recorded(key).text);
    if (found == information.end()) {
        return nullptr;
    }
    const bool isNumber = found->second.find_first_not_of("0123456789") == std::string::npos;
    value = {isNumber ? Kind::number : Kind::text, found->second};
    return &value;
}

CoreFoundation::Boolean copyText(CFObject text, char* buffer, CoreFoundation::Index size,
                                 CoreFoundation::Encoding encoding) {
    const std::string& copied = recorded(text).text;
    if (encoding != CoreFoundation::utf8 || copied.size() >= static_cast<std::size_t>(size)) {
        return 0;
    }
    std::memcpy(buffer, copied.c_str(), copied.size() + 1);
    return 1;
}

/// A variable of a framework that holds a constant of this name.
const CFObject* constant(const char* name) {
    static std::map<std::string, CFObject> constants;
    CFObject& held = constants[name];
    if (held == nullptr) {
        static std::map<std::string, Recorded> objects;
        objects[name].text = name;
        held = &objects[name];
    }
    return &held;
}

bool isOfItem(const std::map<std::string, std::string>& query) {
    const auto& item = recordedFrameworks().item;
    return !item.empty() && std::all_of(query.begin(), query.end(), [&item](const auto& wanted) {
        const bool isAboutAnswer =
            wanted.first == "kSecReturnData" || wanted.first == "kSecMatchLimit";
        const auto found = item.find(wanted.first);
        return isAboutAnswer || (found != item.end() && found->second == wanted.second);
    });
}

int asked(CFObject dictionary) {
    recordedFrameworks().asked = recorded(dictionary).entries;
    return recordedFrameworks().refusal;
}

SecurityFramework::Status find(CFObject query, CFObject* result) {
    if (const int refusal = asked(query); refusal != 0) {
        return refusal;
    }
    if (!isOfItem(recorded(query).entries)) {
        return SecurityFramework::notFound;
    }
    if (result != nullptr) {
        *result = made({Kind::data, recordedFrameworks().item.at("kSecValueData")});
    }
    return SecurityFramework::success;
}

SecurityFramework::Status add(CFObject attributes, CFObject*) {
    constexpr int duplicate = -25299;
    if (const int refusal = asked(attributes); refusal != 0) {
        return refusal;
    }
    if (!recordedFrameworks().item.empty()) {
        return duplicate;
    }
    recordedFrameworks().item = recorded(attributes).entries;
    return SecurityFramework::success;
}

SecurityFramework::Status remove(CFObject query) {
    if (const int refusal = asked(query); refusal != 0) {
        return refusal;
    }
    if (!isOfItem(recorded(query).entries)) {
        return SecurityFramework::notFound;
    }
    recordedFrameworks().item.clear();
    return SecurityFramework::success;
}

}  // namespace

RecordedFrameworks& recordedFrameworks() {
    static RecordedFrameworks frameworks;
    return frameworks;
}

const CoreFoundation* coreFoundation() {
    static const CoreFoundation framework{
        .CFGetTypeID =
            [](CFObject object) { return static_cast<unsigned long>(recorded(object).kind); },
        .CFStringGetTypeID = [] { return static_cast<unsigned long>(Kind::text); },
        .CFStringCreateWithBytes =
            [](CFObject, const unsigned char* bytes, CoreFoundation::Index count,
               CoreFoundation::Encoding encoding, CoreFoundation::Boolean) {
                return encoding == CoreFoundation::utf8 ? made({Kind::text, textOf(bytes, count)})
                                                        : nullptr;
            },
        .CFStringGetCString = copyText,
        .CFDataCreateWithBytesNoCopy =
            [](CFObject, const unsigned char* bytes, CoreFoundation::Index count,
               CFObject deallocator) {
                // With another deallocator it would free bytes that are not its own.
                return deallocator == *constant("kCFAllocatorNull")
                           ? made({Kind::data, textOf(bytes, count)})
                           : nullptr;
            },
        .CFDataGetTypeID = [] { return static_cast<unsigned long>(Kind::data); },
        .CFDataGetBytePtr =
            [](CFObject data) {
                return reinterpret_cast<const unsigned char*>(recorded(data).text.data());
            },
        .CFDataGetLength =
            [](CFObject data) {
                return static_cast<CoreFoundation::Index>(recorded(data).text.size());
            },
        .CFDictionaryCreateMutable = [](CFObject, CoreFoundation::Index, const void*,
                                        const void*) { return made({Kind::dictionary}); },
        .CFDictionaryAddValue =
            [](CFObject dictionary, CFObject key, CFObject value) {
                recorded(dictionary).entries.emplace(recorded(key).text, recorded(value).text);
            },
        .CFBundleGetMainBundle =
            [] { return recordedFrameworks().hasBundle ? *constant("bundle") : nullptr; },
        .CFBundleGetValueForInfoDictionaryKey = valueInBundle,
        .CFRelease = release,
        .kCFAllocatorNull = constant("kCFAllocatorNull"),
        .kCFBooleanTrue = constant("kCFBooleanTrue")};
    return &framework;
}

const SecurityFramework* securityFramework() {
    static const SecurityFramework framework{
        .SecItemCopyMatching = find,
        .SecItemAdd = add,
        .SecItemDelete = remove,
        .kSecClass = constant("kSecClass"),
        .kSecClassGenericPassword = constant("kSecClassGenericPassword"),
        .kSecAttrService = constant("kSecAttrService"),
        .kSecAttrAccount = constant("kSecAttrAccount"),
        .kSecAttrAccessible = constant("kSecAttrAccessible"),
        .kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly =
            constant("kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly"),
        .kSecReturnData = constant("kSecReturnData"),
        .kSecMatchLimit = constant("kSecMatchLimit"),
        .kSecMatchLimitOne = constant("kSecMatchLimitOne"),
        .kSecValueData = constant("kSecValueData")};
    return &framework;
}

}  // namespace tallowcrest
