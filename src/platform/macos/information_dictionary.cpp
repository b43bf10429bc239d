#include <array>

#include "platform/host.h"
#include "platform/macos/frameworks.h"

namespace tallowcrest {

std::string host::updateFeed(const std::string& /*built*/) {
    const CoreFoundation* const foundation = coreFoundation();
    const CFObject bundle = foundation == nullptr ? nullptr : foundation->CFBundleGetMainBundle();
    if (bundle == nullptr) {
        return "";
    }
    constexpr std::string_view name = "TallowcrestUpdateFeedURL";
    const CFObject key = foundation->CFStringCreateWithBytes(
        nullptr, reinterpret_cast<const unsigned char*>(name.data()),
        static_cast<CoreFoundation::Index>(name.size()), CoreFoundation::utf8, 0);
    // Belongs to the bundle.
    const CFObject value = foundation->CFBundleGetValueForInfoDictionaryKey(bundle, key);
    foundation->CFRelease(key);
    constexpr std::size_t longestFeed = 2048;
    std::array<char, longestFeed> text{};
    if (value == nullptr || foundation->CFGetTypeID(value) != foundation->CFStringGetTypeID() ||
        foundation->CFStringGetCString(value, text.data(), text.size(), CoreFoundation::utf8) ==
            0) {
        return "";
    }
    return text.data();
}

}  // namespace tallowcrest
