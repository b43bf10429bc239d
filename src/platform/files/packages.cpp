#include "platform/files/packages.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace tallowcrest {
namespace {

/// Sorted. Without extensions that ordinary folders have too, such as "service".
constexpr std::array packageExtensions = std::to_array<std::string_view>({
    "aplibrary",     "app",
    "appdir",        "appex",
    "band",          "bundle",
    "dsym",          "fcpbundle",
    "imovielibrary", "kext",
    "key",           "logicx",
    "mdimporter",    "migratedphotolibrary",
    "mlpackage",     "mpkg",
    "musiclibrary",  "numbers",
    "pages",         "photolibrary",
    "photoslibrary", "pkg",
    "playground",    "plugin",
    "prefpane",      "pvm",
    "qlgenerator",   "rtfd",
    "saver",         "scptd",
    "sparsebundle",  "theater",
    "tvlibrary",     "utm",
    "vmwarevm",      "vst",
    "vst3",          "wdgt",
    "workflow",      "xcarchive",
    "xcodeproj",     "xcworkspace",
});
static_assert(std::is_sorted(packageExtensions.begin(), packageExtensions.end()));

char lowered(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

}  // namespace

bool isPackageName(std::string_view name) {
    const std::size_t dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0) {
        return false;
    }
    const std::string_view extension = name.substr(dot + 1);
    const auto isBefore = [](std::string_view left, std::string_view right) {
        return std::lexicographical_compare(left.begin(), left.end(), right.begin(), right.end(),
                                            [](char a, char b) { return lowered(a) < lowered(b); });
    };
    return std::binary_search(packageExtensions.begin(), packageExtensions.end(), extension,
                              isBefore);
}

}  // namespace tallowcrest
