#include "platform/sqlite/settings_problem.h"

#include <fmt/format.h>

#include "core/utf8.h"

namespace tallowcrest::settings_problem {
namespace {

constexpr std::string_view untilTheEnd = "changes last only until Tallowcrest ends";
constexpr std::string_view withDefaults = "Tallowcrest starts with default settings";

std::string shown(const Path& path) {
    return replacingInvalidUTF8(path.native());
}

/// The system may give its reasons in the user's language, and in any encoding.
std::string shown(std::string_view reason) {
    return replacingInvalidUTF8(reason);
}

}  // namespace

std::string noPlace() {
    return fmt::format("There is no home folder to keep settings in, so {}.", untilTheEnd);
}

std::string folderCannotBeMade(const Path& folder, std::string_view reason) {
    return fmt::format("The settings folder {} cannot be made ({}), so {}.", shown(folder),
                       shown(reason), untilTheEnd);
}

std::string fileCannotBeMade(const Path& file, std::string_view reason) {
    return fmt::format("The settings file {} cannot be made ({}), so {}.", shown(file),
                       shown(reason), untilTheEnd);
}

std::string locked(const Path& file) {
    return fmt::format("The settings in {} are locked by another program, so {} and {}.",
                       shown(file), withDefaults, untilTheEnd);
}

std::string newer(const Path& file) {
    return fmt::format(
        "The settings in {} belong to a newer version and are left as they are, so {} and {}.",
        shown(file), withDefaults, untilTheEnd);
}

std::string canOnlyBeRead(const Path& file, std::string_view reason) {
    return fmt::format("The settings in {} can be read but not changed ({}), so {}.", shown(file),
                       shown(reason), untilTheEnd);
}

std::string cannotBeRead(const Path& file, std::string_view reason) {
    return fmt::format("The settings in {} cannot be read ({}), so {} and {}.", shown(file),
                       shown(reason), withDefaults, untilTheEnd);
}

std::string damaged(const Path& file, const Path& keptAs) {
    return fmt::format("The settings in {} are damaged and were put aside as {}, so {}.",
                       shown(file), shown(keptAs.filename()), withDefaults);
}

std::string notOurs(const Path& file, const Path& keptAs) {
    return fmt::format("The file {} holds no settings of ours and was put aside as {}, so {}.",
                       shown(file), shown(keptAs.filename()), withDefaults);
}

std::string damagedInPlace(const Path& file, std::string_view reason) {
    return fmt::format("The settings in {} are damaged and cannot be put aside ({}), so {} and {}.",
                       shown(file), shown(reason), withDefaults, untilTheEnd);
}

std::string damagedAndLeft(const Path& file) {
    return fmt::format("The settings in {} cannot be read, so {}.", shown(file), withDefaults);
}

std::string latestChangesLost(const Path& file, const Path& keptAs) {
    return fmt::format(
        "The latest changes to the settings in {} cannot be read and were put aside as {}.",
        shown(file), shown(keptAs.filename()));
}

std::string unreadableKeys(const Path& file, const std::vector<std::string_view>& keys) {
    return fmt::format("In {} no sense can be made of {}, so the default is used.", shown(file),
                       fmt::join(keys, ", "));
}

std::string unreadableKeysKept(const Path& file, const std::vector<std::string_view>& keys,
                               const Path& keptAs) {
    return fmt::format(
        "In {} no sense can be made of {}, so the default is used; the file as it was is kept as "
        "{}.",
        shown(file), fmt::join(keys, ", "), shown(keptAs.filename()));
}

std::string cannotBeSaved(const Path& file, std::string_view reason) {
    return fmt::format("settings cannot be saved in {} for now ({})", shown(file), shown(reason));
}

}  // namespace tallowcrest::settings_problem
