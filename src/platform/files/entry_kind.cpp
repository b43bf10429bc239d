#include "platform/files/entry_kind.h"

#include <dirent.h>

namespace tallowcrest::file_system {

EntryKind kindOfMode(mode_t mode) {
    if (S_ISREG(mode)) {
        return EntryKind::regular;
    }
    if (S_ISDIR(mode)) {
        return EntryKind::folder;
    }
    return S_ISLNK(mode) ? EntryKind::link : EntryKind::other;
}

EntryKind kindOfType(unsigned char type) {
    switch (type) {
        case DT_REG:
            return EntryKind::regular;
        case DT_DIR:
            return EntryKind::folder;
        case DT_LNK:
            return EntryKind::link;
        case DT_UNKNOWN:
            return EntryKind::unknown;
        default:
            return EntryKind::other;
    }
}

}  // namespace tallowcrest::file_system
