#pragma once

#include <string>

namespace tallowcrest {

/// Gives the finished file `temporary` in an open folder the name `name`, without ever replacing
/// another file. Returns 0 or the error number; the file then keeps its name. Any thread.
int publishNewFile(int folder, const std::string& temporary, const std::string& name);

}  // namespace tallowcrest
