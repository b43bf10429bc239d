#include "platform/trash/unused_descriptions.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>
#include <vector>

#include "platform/trash/trash_folder.h"
#include "platform/trash/trash_info.h"
#include "platform/trash/xdg_trash.h"

namespace tallowcrest {
namespace {

namespace fs = std::filesystem;

/// A Trash with a million files must not hold up a clean-up.
constexpr std::size_t mostEntries = 10'000;
/// No description of this program is as long: a byte of a path becomes three at most.
constexpr std::size_t longestText = 4 * PATH_MAX;
/// A move that another process has begun may still be under way.
constexpr double smallestAge = 3600.0;

/// Some names in an open folder, in no order.
std::vector<std::string> namesIn(int folder) {
    std::vector<std::string> names;
    std::error_code error;
    fs::directory_iterator entry("/proc/self/fd/" + std::to_string(folder), error);
    while (!error && entry != fs::directory_iterator() && names.size() < mostEntries) {
        names.push_back(entry->path().filename());
        entry.increment(error);
    }
    return names;
}

bool isPathBelow(const std::string& path, std::string_view inside) {
    if (!path.starts_with(inside) || path.find('\0') != std::string::npos) {
        return false;
    }
    const fs::path below = path.substr(inside.size()).insert(0, "/");
    return below.has_filename() && below.lexically_normal().native() == below.native();
}

}  // namespace

bool isUnused(const TrashDescription& description, uid_t user, Date now, std::string_view inside) {
    const FileStatus& status = description.status;
    if (description.hasFile || !S_ISREG(status.mode) || status.owner != user ||
        !status.modifiedAt ||
        now.unixSeconds() - static_cast<double>(*status.modifiedAt) <= smallestAge) {
        return false;
    }
    const bool isWhole = std::cmp_equal(description.text.size(), status.bytes);
    const auto path = isWhole ? pathInTrashInfo(description.text) : std::nullopt;
    return path && isPathBelow(*path, inside);
}

void XdgTrash::removeUnusedDescriptions(const std::string& inside,
                                        const std::function<bool()>& isStopped) {
    const UniqueFD folder = openFolder(inside);
    // With no name for the file, the path to restore it to is that of its folder.
    const auto trash = folder.valid() ? openTrashFolder(folder.get(), "", inside + '/', homeTrash_,
                                                        Missing::refused)
                                      : std::nullopt;
    if (!trash) {
        return;
    }
    for (const std::string& name : namesIn(trash->info.get())) {
        if (isStopped()) {
            return;
        }
        const std::string stored(describedName(name));
        // Nearly all have their file, which takes one call to find out.
        if (stored.empty() || statusAt(trash->files.get(), stored) || errno != ENOENT) {
            continue;
        }
        auto info = openInfo(*trash, stored, longestText);
        const auto status = info ? statusOf(info->file.get()) : std::nullopt;
        if (!status) {
            continue;
        }
        const bool hasFile = statusAt(trash->files.get(), stored) || errno != ENOENT;
        if (isUnused({*status, std::move(info->text), hasFile}, ::geteuid(), clock_.now(),
                     trash->restorePath)) {
            removeInfo(*trash, stored, info->file.get());
        }
    }
}

}  // namespace tallowcrest
