#pragma once

#include <string>

namespace tallowcrest {

/// Makes the directory and those above it that are missing, for the user alone, whatever the
/// process's mask. What is there stays as it is, even if it is no directory. 0, or the error number
/// of the first that cannot be made: of what would lie below it the system only says that it is not
/// there. Any thread.
int makeDirectories(const std::string& path);

}  // namespace tallowcrest
