#include "platform/files/open_folders.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <iterator>
#include <utility>

namespace tallowcrest {
namespace {

using file_system::EntryStatus;
using file_system::statusOf;

constexpr std::size_t mostHeld = 64;

}  // namespace

UniqueFD OpenFolders::open(const Folder& folder, int parent) {
    constexpr int flags = O_RDONLY | O_DIRECTORY | O_NONBLOCK | O_CLOEXEC;
    for (;;) {
        UniqueFD opened(folder.parent ? ::openat(parent, folder.name.c_str(), flags | O_NOFOLLOW)
                                      : ::open((folder.name + '/').c_str(), flags));
        const bool areTooMany = !opened.valid() && (errno == EMFILE || errno == ENFILE);
        // The latest one is the parent.
        if (!areTooMany || held_.size() <= 1) {
            return opened;
        }
        held_.erase(held_.begin());
    }
}

int OpenFolders::find(const Folder* folder) {
    const auto found = std::find_if(held_.rbegin(), held_.rend(),
                                    [&](const Held& each) { return each.folder.get() == folder; });
    if (found == held_.rend()) {
        return -1;
    }
    std::rotate(std::prev(found.base()), found.base(), held_.end());
    return held_.back().descriptor.get();
}

void OpenFolders::hold(FolderPointer folder, UniqueFD descriptor) {
    if (held_.size() == mostHeld) {
        held_.erase(held_.begin());
    }
    held_.push_back({std::move(folder), std::move(descriptor)});
}

int OpenFolders::descriptorOf(const FolderPointer& folder) {
    std::vector<const FolderPointer*> missing;
    int descriptor = -1;
    for (const FolderPointer* each = &folder; *each && descriptor < 0; each = &(*each)->parent) {
        descriptor = find(each->get());
        if (descriptor < 0) {
            missing.push_back(each);
        }
    }
    std::reverse(missing.begin(), missing.end());
    for (const FolderPointer* each : missing) {
        UniqueFD opened = open(**each, descriptor);
        const auto status = opened.valid() ? statusOf(opened.get(), "") : std::nullopt;
        if (!status || status->identity != (*each)->identity) {
            return -1;
        }
        descriptor = opened.get();
        hold(*each, std::move(opened));
    }
    return descriptor;
}

std::optional<EntryStatus> OpenFolders::enter(const FolderPointer& folder) {
    const int parent = folder->parent ? descriptorOf(folder->parent) : -1;
    if (folder->parent && parent < 0) {
        return std::nullopt;
    }
    UniqueFD opened = open(*folder, parent);
    auto status = opened.valid() ? statusOf(opened.get(), "") : std::nullopt;
    if (status) {
        folder->identity = status->identity;
        hold(folder, std::move(opened));
    }
    return status;
}

}  // namespace tallowcrest
