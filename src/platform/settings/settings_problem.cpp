#include "platform/settings/settings_problem.h"

#include <fmt/format.h>

#include "core/utf8.h"

namespace tallowcrest::settings_problem {
namespace {

std::string shown(const Path& path) {
    return replacingInvalidUTF8(path.native());
}

/// The system may give its reasons in the user's language, and in any encoding.
std::string shown(std::string_view reason) {
    return replacingInvalidUTF8(reason);
}

}  // namespace

std::string noPlace() {
    return "Settings changes last only for this run: there is no home folder to keep them in.";
}

std::string folderCannotBeMade(const Path& folder, std::string_view reason) {
    return fmt::format(
        "Settings changes last only for this run: their folder cannot be made, {}, {}.",
        shown(reason), shown(folder));
}

std::string fileCannotBeMade(const Path& file, std::string_view reason) {
    return fmt::format(
        "Settings changes last only for this run: their file cannot be made, {}, {}.",
        shown(reason), shown(file));
}

std::string locked(const Path& file) {
    return fmt::format(
        "Settings are locked, so defaults are used and changes last only for this run: another "
        "program keeps the file, {}.",
        shown(file));
}

std::string newer(const Path& file) {
    return fmt::format(
        "Settings are a newer version's, so defaults are used and changes last only for this run: "
        "the file is left as it is, {}.",
        shown(file));
}

std::string canOnlyBeRead(const Path& file, std::string_view reason) {
    return fmt::format(
        "Settings can be read but not changed, so changes last only for this run: {}, {}.",
        shown(reason), shown(file));
}

std::string cannotBeRead(const Path& file, std::string_view reason) {
    return fmt::format(
        "Settings cannot be read, so defaults are used and changes last only for this run: {}, {}.",
        shown(reason), shown(file));
}

std::string damaged(const Path& file, const Path& keptAs) {
    return fmt::format(
        "Settings are damaged, so Tallowcrest starts with defaults: the file was put aside as {}, "
        "{}.",
        shown(keptAs.filename()), shown(file));
}

std::string notOurs(const Path& file, const Path& keptAs) {
    return fmt::format(
        "The file holds no settings of ours, so Tallowcrest starts with defaults: it was put aside "
        "as {}, {}.",
        shown(keptAs.filename()), shown(file));
}

std::string damagedInPlace(const Path& file, std::string_view reason) {
    return fmt::format(
        "Settings are damaged, so defaults are used and changes last only for this run: the file "
        "cannot be put aside, {}, {}.",
        shown(reason), shown(file));
}

std::string damagedAndLeft(const Path& file) {
    return fmt::format("Settings cannot be read, so defaults are used: the file is damaged, {}.",
                       shown(file));
}

std::string latestChangesLost(const Path& file, const Path& keptAs) {
    return fmt::format(
        "The latest settings changes cannot be read, so older values are used: they were put aside "
        "as {}, {}.",
        shown(keptAs.filename()), shown(file));
}

std::string latestChangesUnreadable(const Path& file) {
    return fmt::format(
        "The latest settings changes cannot be read, so older values are used: their log is "
        "damaged, {}.",
        shown(file));
}

std::string unreadableKeys(const Path& file, const std::vector<std::string_view>& keys) {
    return fmt::format("Some settings make no sense, so their defaults are used: {}, {}.",
                       fmt::join(keys, ", "), shown(file));
}

std::string unreadableKeysKept(const Path& file, const std::vector<std::string_view>& keys,
                               const Path& keptAs) {
    return fmt::format(
        "Some settings make no sense, so their defaults are used: {}; the file as it was is kept "
        "as {}, {}.",
        fmt::join(keys, ", "), shown(keptAs.filename()), shown(file));
}

std::string unreadableKeysLeft(const Path& file, const std::vector<std::string_view>& keys) {
    return fmt::format(
        "Some settings make no sense, so defaults are used and changed only for this run: {}, {}.",
        fmt::join(keys, ", "), shown(file));
}

std::string cannotBeSaved(const Path& file, std::string_view reason) {
    return fmt::format(
        "Settings cannot be saved for now, so changes may last only for this run: {}, {}.",
        shown(reason), shown(file));
}

}  // namespace tallowcrest::settings_problem
