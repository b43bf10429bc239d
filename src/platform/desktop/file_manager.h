#pragma once

#include <filesystem>

namespace tallowcrest {

/// Shows a file, selected, in the desktop's file manager where one answers on the session bus, else
/// opens its folder. Returns at once; a failure is not noticed. Main thread.
void revealFile(const std::filesystem::path& file);

}  // namespace tallowcrest
