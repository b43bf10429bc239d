#include <stdio.h>

#include <cerrno>

#include "platform/trash/finder_trash.h"
#include "platform/trash/system_trash.h"

namespace tallowcrest {
namespace {

int renameWithoutReplacing(const std::string& from, const std::string& to) {
    return ::renamex_np(from.c_str(), to.c_str(), RENAME_EXCL) == 0 ? 0 : errno;
}

}  // namespace

std::shared_ptr<Trash> host::makeTrash(const Clock& /*clock*/, UTCOffset /*utcOffset*/) {
    return std::make_shared<FinderTrash>(FinderTrash::System{moveByFinder, renameWithoutReplacing});
}

}  // namespace tallowcrest
