#pragma once

#include <string>
#include <string_view>

/// What comes from outside as bytes and has to be text. Any thread.
namespace tallowcrest {

/// Strict: overlong forms, surrogates and values above U+10FFFF are invalid, and so is a sequence
/// that the end cuts short. The empty text and U+0000 are valid.
bool isValidUTF8(std::string_view bytes);

/// `bytes` with each maximal part that can only be the beginning of a sequence, or else each single
/// stray byte, replaced by one U+FFFD. Valid text comes back unchanged; the result is always valid.
std::string replacingInvalidUTF8(std::string_view bytes);

}  // namespace tallowcrest
