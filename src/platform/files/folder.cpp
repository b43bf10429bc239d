#include "platform/files/folder.h"

#include <cstddef>

namespace tallowcrest {

FolderPointer::FolderPointer(Folder* added) : folder_(added) {
    if (folder_ != nullptr) {
        folder_->owners.fetch_add(1, std::memory_order_relaxed);
    }
}

FolderPointer::~FolderPointer() {
    while (folder_ != nullptr && folder_->owners.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        Folder* parent = std::exchange(folder_->parent.folder_, nullptr);
        delete std::exchange(folder_, parent);
    }
}

std::string pathOf(const Folder& folder, const std::string& entry) {
    std::size_t length = entry.size();
    for (const Folder* each = &folder; each != nullptr; each = each->parent.get()) {
        length += each->name.size() + 1;
    }
    std::string path(length, '/');
    std::size_t end = length - entry.size();
    path.replace(end, entry.size(), entry);
    for (const Folder* each = &folder; each != nullptr; each = each->parent.get()) {
        end -= each->name.size() + 1;
        path.replace(end, each->name.size(), each->name);
    }
    return path;
}

std::string pathOf(const Folder& folder) {
    std::string path = pathOf(folder, "");
    if (path.size() > 1) {
        path.pop_back();
    }
    return path;
}

}  // namespace tallowcrest
