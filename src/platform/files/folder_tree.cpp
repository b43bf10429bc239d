#include "platform/files/folder_tree.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>

#include "platform/files/packages.h"

namespace tallowcrest {
namespace {

using file_system::EntryKind;
using file_system::EntryStatus;
using file_system::statusOf;

/// After as many folders in one folder, those are read before the rest of it.
constexpr std::ptrdiff_t mostFoldersAtOnce = 1024;

bool contains(const std::vector<FileIdentity>& identities, const FileIdentity& identity) {
    return std::find(identities.begin(), identities.end(), identity) != identities.end();
}

bool isHidden(const char* name) {
    return *name == '.';
}

/// Whether an open folder is an application, which has a program or a link of a certain name.
bool isAppDir(int folder) {
    const std::optional<EntryStatus> program = statusOf(folder, "AppRun");
    return program && (program->kind == EntryKind::link ||
                       (program->kind == EntryKind::regular && program->isExecutable));
}

/// Whether the folder is mounted inside itself, which could go on for ever.
bool isInsideItself(const Folder& folder) {
    for (const Folder* each = folder.parent.get(); each != nullptr; each = each->parent.get()) {
        if (each->identity == folder.identity) {
            return true;
        }
    }
    return false;
}

}  // namespace

FolderPointer rootFolder(std::string path) {
    if (!path.starts_with('/')) {
        return {};
    }
    while (path.ends_with('/')) {
        path.pop_back();
    }
    return FolderPointer(new Folder{.parent = {}, .name = std::move(path)});
}

/// Whether the folder is to be read.
bool FolderTreeReader::enter(const FolderPointer& folder) {
    const std::optional<EntryStatus> status = open_.enter(folder);
    if (!status || !folder->parent) {
        return status.has_value();
    }
    const bool isElsewhere =
        rules_.staysOnDevice &&
        (status->isMountPoint || status->identity.device != folder->parent->identity->device);
    return !isElsewhere && !status->isHidden && !contains(rules_.roots, status->identity) &&
           !isInsideItself(*folder) && !isAppDir(open_.descriptorOf(folder));
}

bool FolderTreeReader::read(const FolderPart& part, const Visit& visit, const std::stop_token& stop,
                            std::vector<FolderPart>& pending) {
    const FolderPointer& folder = part.folder;
    const bool isFirstPart = part.position == 0;
    if (stop.stop_requested() || (isFirstPart && !enter(folder))) {
        return !stop.stop_requested();
    }
    const int descriptor = open_.descriptorOf(folder);
    if (descriptor < 0) {
        return true;
    }
    const auto found = static_cast<std::ptrdiff_t>(pending.size());
    reader_.begin(descriptor, part.position);
    while (const auto entry = reader_.next()) {
        if (stop.stop_requested()) {
            return false;
        }
        if (eachEntry_) {
            eachEntry_();
        }
        if (isHidden(entry->name)) {
            continue;
        }
        EntryKind kind = entry->kind;
        if (kind == EntryKind::regular || kind == EntryKind::unknown) {
            const std::optional<EntryStatus> status =
                statusOf(descriptor, entry->name, rules_.freshness);
            if (!status || status->isHidden) {
                continue;
            }
            kind = status->kind;
            const bool isElsewhere =
                rules_.staysOnDevice &&
                (status->isMountPoint || status->identity.device != folder->identity->device);
            if (kind == EntryKind::regular && !isElsewhere &&
                !visit(*folder, entry->name, *status)) {
                return false;
            }
        }
        if (kind == EntryKind::folder && !isPackageName(entry->name)) {
            pending.push_back({FolderPointer(new Folder{.parent = folder, .name = entry->name})});
            const auto folders = static_cast<std::ptrdiff_t>(pending.size()) - found;
            if (folders == mostFoldersAtOnce && reader_.position()) {
                pending.push_back({folder, *reader_.position()});
                break;
            }
        }
    }
    std::reverse(pending.begin() + found, pending.end());
    return true;
}

}  // namespace tallowcrest
