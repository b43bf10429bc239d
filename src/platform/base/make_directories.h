#pragma once

#include <string>

namespace tallowcrest {

/// Creates the directory and its missing parents with access for the user only, whatever the umask.
/// An existing file of any kind stays as it is. Returns 0, or the error number of the first
/// directory that cannot be created, because the error of those below it would only be that it does
/// not exist. Any thread.
int makeDirectories(const std::string& path);

}  // namespace tallowcrest
