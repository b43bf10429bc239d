#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include <fmt/format.h>

#include "core/text.h"

/// What the owner is told when stored settings cannot be read or kept. A sentence begins with the
/// consequence, because the window may cut it short, and ends with the place: {0}. {1} is the
/// system's reason or a list of keys, {2} the name of what was kept.
namespace tallowcrest::settings_problem {

constexpr std::string_view noHomeFolder =
    "Settings changes last only for this run: there is no home folder to keep them in.";
constexpr std::string_view folderCannotBeMade =
    "Settings changes last only for this run: their folder cannot be made, {1}, {0}.";
constexpr std::string_view fileCannotBeMade =
    "Settings changes last only for this run: their file cannot be made, {1}, {0}.";
constexpr std::string_view locked =
    "Settings are locked, so defaults are used and changes last only for this run: another program "
    "keeps the file, {0}.";
constexpr std::string_view newer =
    "Settings are a newer version's, so defaults are used and changes last only for this run: the "
    "file is left as it is, {0}.";
constexpr std::string_view canOnlyBeRead =
    "Settings can be read but not changed, so changes last only for this run: {1}, {0}.";
constexpr std::string_view cannotBeRead =
    "Settings cannot be read, so defaults are used and changes last only for this run: {1}, {0}.";
constexpr std::string_view damaged =
    "Settings are damaged, so Tallowcrest starts with defaults: the file was put aside as {2}, "
    "{0}.";
constexpr std::string_view foreign =
    "The file holds no settings of ours, so Tallowcrest starts with defaults: it was put aside as "
    "{2}, {0}.";
constexpr std::string_view cannotBePutAside =
    "Settings are damaged, so defaults are used and changes last only for this run: the file "
    "cannot be put aside, {1}, {0}.";
constexpr std::string_view damagedAndLeft =
    "Settings cannot be read, so defaults are used: the file is damaged, {0}.";
constexpr std::string_view unreadableKeys =
    "Some settings make no sense, so their defaults are used: {1}, {0}.";
constexpr std::string_view unreadableKeysKept =
    "Some settings make no sense, so their defaults are used: {1}; the file as it was is kept as "
    "{2}, {0}.";
constexpr std::string_view unreadableKeysLeft =
    "Some settings make no sense, so defaults are used and changed only for this run: {1}, {0}.";
constexpr std::string_view cannotBeSaved =
    "Settings cannot be saved for now, so changes may last only for this run: {1}, {0}.";

/// Valid UTF-8, whatever encoding the paths and the detail are in. Any thread.
inline std::string describe(std::string_view sentence, const std::filesystem::path& place,
                            std::string_view detail = {},
                            const std::filesystem::path& keptAs = {}) {
    return fmt::format(fmt::runtime(sentence), replacingInvalidUTF8(place.native()),
                       replacingInvalidUTF8(detail),
                       replacingInvalidUTF8(keptAs.filename().native()));
}

}  // namespace tallowcrest::settings_problem
