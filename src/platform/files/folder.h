#pragma once

#include <atomic>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "disk/file_identity.h"

namespace tallowcrest {

struct Folder;

/// Shares the ownership of a folder; null when empty. Unlike `std::shared_ptr`, it releases a long
/// chain of parents without recursion. Any thread, as `std::shared_ptr`.
class FolderPointer {
public:
    FolderPointer() = default;
    explicit FolderPointer(Folder* added);
    FolderPointer(const FolderPointer& other) : FolderPointer(other.folder_) {}
    FolderPointer(FolderPointer&& other) noexcept
        : folder_(std::exchange(other.folder_, nullptr)) {}
    FolderPointer& operator=(FolderPointer other) noexcept {
        std::swap(folder_, other.folder_);
        return *this;
    }
    ~FolderPointer();

    Folder* get() const { return folder_; }
    Folder& operator*() const { return *folder_; }
    Folder* operator->() const { return folder_; }
    explicit operator bool() const { return folder_ != nullptr; }

private:
    Folder* folder_ = nullptr;
};

/// A folder below a root, or a root itself. It is reached by the names of its parents, so a deep
/// one takes neither a long path nor a descriptor.
struct Folder {
    FolderPointer parent;  ///< null for a root
    /// Of a root, its path without a slash at the end.
    std::string name;
    /// Set when the folder is first opened, before it can become a parent.
    std::optional<FileIdentity> identity = {};
    std::atomic<int> owners = 0;  ///< counted by `FolderPointer`
};

/// The path of an entry of a folder. The bytes as on disk.
std::string pathOf(const Folder& folder, const std::string& entry);
/// The path of a folder.
std::string pathOf(const Folder& folder);

}  // namespace tallowcrest
