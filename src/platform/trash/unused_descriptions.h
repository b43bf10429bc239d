#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>

#include "core/date.h"
#include "platform/trash/file_status.h"

namespace tallowcrest {

/// A description that the Trash has.
struct TrashDescription {
    FileStatus status;
    std::string text;      ///< as far as it was read
    bool hasFile = false;  ///< the Trash has an entry, of whatever kind, under the described name
};

/// Whether a description is certainly what a clean-up of this `user` has left that was killed
/// before it moved the file: without a file, regular, the user's, more than an hour old, in the
/// words of this program, and with a path that is `inside` and a path below. `inside` ends in a
/// slash; it is empty where paths are relative to the folder of the clean-up. Pure; any thread.
bool isUnused(const TrashDescription& description, uid_t user, Date now, std::string_view inside);

}  // namespace tallowcrest
