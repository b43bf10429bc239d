#include "platform/files/file_walk_posix.h"

#include <utility>
#include <vector>

#include "platform/files/folder_tree.h"

namespace tallowcrest {

void PosixFileWalk::walk(const std::string& root,
                         const std::function<bool(const FoundFile&)>& visit,
                         const std::stop_token& stop) {
    std::vector<FolderPart> pending = treeRoots({root}).parts;
    FolderTreeReader reader({.staysOnDevice = true, .freshness = file_system::Freshness::current});
    std::string path;  // of the folder at hand, with a slash at the end
    const auto visitFile = [&](const Folder& folder, const char* name,
                               const file_system::EntryStatus& status) {
        if (path.empty()) {
            path = pathOf(folder, "");
        }
        return visit({path + name, status.bytes, status.modifiedAt, status.identity});
    };
    bool goesOn = true;
    while (goesOn && !pending.empty()) {
        const FolderPart part = std::move(pending.back());
        pending.pop_back();
        path.clear();
        goesOn = reader.read(part, visitFile, stop, pending);
    }
}

}  // namespace tallowcrest
