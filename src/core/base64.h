#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tallowcrest {

/// The bytes that a text in Base64 stands for, with "+" and "/" and its full padding. Absent for
/// any other text, also one with bits that stand for nothing. Any thread.
std::optional<std::string> decodedBase64(std::string_view text);

}  // namespace tallowcrest
