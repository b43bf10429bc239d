#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tallowcrest {

/// Longer results are cut here, and end in an ellipsis. Characters, not bytes.
inline constexpr std::size_t longestTellingArgument = 40;

/// What tells a process from others of the same program: for an interpreter its script
/// ("server.py"), its module or the start of its program text ("sleep 5"), for a browser the type
/// of the process, for others the argument right behind the program's name, if it is no option.
/// Of a path only the last component. Empty when no argument tells anything, and for one that looks
/// like a secret. `program` is the file name of the executable. Pure; any thread.
std::string tellingArgument(std::string_view program, const std::vector<std::string>& arguments);

}  // namespace tallowcrest
