#pragma once

#include <string>
#include <string_view>

namespace tallowcrest {

/// The words of the memory pressure source for display: trimmed, else verbatim. "Memory pressure
/// unavailable" when there are none. Any thread.
std::string pressureText(std::string_view sourceText);

}  // namespace tallowcrest
