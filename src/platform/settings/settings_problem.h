#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include <fmt/format.h>

#include "core/text.h"

/// The sentences for the owner when stored settings cannot be read or kept. Each begins with the
/// consequence, because the window may cut it short; `describe` fills in what stands in braces and
/// adds the place.
namespace tallowcrest::settings_problem {

using Text = std::string_view;

constexpr Text noHomeFolder = "Settings changes {run}: there is no home folder to keep them in";
constexpr Text folderCannotBeMade = "Settings changes {run}: their folder cannot be made, {detail}";
constexpr Text fileCannotBeMade = "Settings changes {run}: their file cannot be made, {detail}";
constexpr Text locked = "Settings are locked, so {defaults}: another program keeps the file";
constexpr Text newer = "Settings are a newer version's, so {defaults}: the file is left as it is";
constexpr Text canOnlyBeRead = "Settings can be read but not changed, so changes {run}: {detail}";
constexpr Text cannotBeRead = "Settings cannot be read, so {defaults}: {detail}";
constexpr Text damaged = "Settings are damaged, {fresh}: the file was put aside as {kept}";
constexpr Text foreign = "The file holds no settings of ours, {fresh}: it was put aside as {kept}";
constexpr Text cannotBePutAside =
    "Settings are damaged, so {defaults}: the file cannot be put aside, {detail}";
constexpr Text damagedLeft = "Settings cannot be read, so defaults are used: the file is damaged";
constexpr Text unreadableKeys = "{some} their defaults are used: {detail}";
constexpr Text unreadableKeysKept =
    "{some} their defaults are used: {detail}; the file as it was is kept as {kept}";
constexpr Text unreadableKeysLeft =
    "{some} defaults are used and changed only for this run: {detail}";
constexpr Text cannotBeSaved = "Settings cannot be saved for now, so changes may {run}: {detail}";

/// `detail` is the system's reason or a list of keys. An empty place is left out. Valid UTF-8,
/// whatever encoding the paths and the detail are in. Any thread.
inline std::string describe(Text sentence, const std::filesystem::path& place, Text detail = {},
                            const std::filesystem::path& keptAs = {}) {
    using fmt::arg;
    return fmt::format(fmt::runtime(sentence), arg("detail", replacingInvalidUTF8(detail)),
                       arg("kept", replacingInvalidUTF8(keptAs.filename().native())),
                       arg("fresh", "so Tallowcrest starts with defaults"),
                       arg("some", "Some settings cannot be read, so"),
                       arg("run", "last only for this run"),
                       arg("defaults", "defaults are used and changes last only for this run")) +
           (place.empty() ? "." : ", " + replacingInvalidUTF8(place.native()) + ".");
}

}  // namespace tallowcrest::settings_problem
