#include "platform/files/file_walk_posix.h"

#include <utility>
#include <vector>

#include "platform/files/folder_tree.h"

namespace tallowcrest {

void PosixFileWalk::walk(const std::string& root,
                         const std::function<bool(const FoundFile&)>& visit,
                         const std::function<void(const SearchProgress&)>& progress,
                         const std::stop_token& stop) {
    SearchProgress seen{.folder = root};
    auto reportedAt = now_();
    progress(seen);
    const auto reportWhenDue = [&] {
        constexpr std::chrono::milliseconds distance{100};
        if (const auto now = now_(); now - reportedAt >= distance) {
            reportedAt = now;
            progress(seen);
        }
    };
    std::vector<FolderPart> pending;
    if (FolderPointer folder = rootFolder(root)) {
        pending.push_back({std::move(folder)});
    }
    FolderTreeReader reader({.staysOnDevice = true, .freshness = file_system::Freshness::current},
                            reportWhenDue);
    std::string path;  // of the folder at hand, with a slash at the end
    const auto visitFile = [&](const Folder& /*folder*/, const char* name,
                               const file_system::EntryStatus& status) {
        ++seen.filesSeen;
        return visit({path + name, status.bytes, status.modifiedAt, status.identity});
    };
    bool goesOn = true;
    while (goesOn && !pending.empty()) {
        const FolderPart part = std::move(pending.back());
        pending.pop_back();
        seen.foldersSeen += part.position == 0 ? 1 : 0;
        seen.folder = pathOf(*part.folder);
        path = seen.folder.ends_with('/') ? seen.folder : seen.folder + '/';
        progress(seen);
        goesOn = reader.read(part, visitFile, stop, pending);
    }
    progress(seen);
}

}  // namespace tallowcrest
