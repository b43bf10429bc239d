#pragma once

#include <string_view>

namespace tallowcrest {

/// Whether a folder of this name is shown to people as one thing, by its extension in any case.
/// Any thread.
bool isPackageName(std::string_view name);

}  // namespace tallowcrest
