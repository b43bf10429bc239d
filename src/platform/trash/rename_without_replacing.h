#pragma once

#include <optional>
#include <string>

#include "disk/file_identity.h"

namespace tallowcrest {

/// Renames whatever has a name in the folder `from`, and replaces nothing. Returns 0 or an error
/// number; absent where the file system cannot refuse to replace. Any thread.
std::optional<int> renameWhereItCanRefuse(int from, const std::string& name, int to,
                                          const std::string& newName);

/// Renames whatever has a name in the folder `from`, and replaces nothing. Returns 0 or an error
/// number. Where the file system cannot refuse to replace, a file gets its new name before it loses
/// the old one, and has both if the process is killed in between; a folder is then left with EPERM.
/// A file that already has both names loses the old one there, and `linked`, where it is not null,
/// tells which file had both. Any thread.
int renameWithoutReplacing(int from, const std::string& name, int to, const std::string& newName,
                           std::optional<FileIdentity>* linked = nullptr);

}  // namespace tallowcrest
