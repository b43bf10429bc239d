#include "advisor/openai_key.h"

#include <algorithm>

#include "advisor/advisor_ports.h"
#include "core/text.h"

namespace tallowcrest {
namespace {

constexpr bool isControl(char c) {
    return (c >= 0 && c < ' ') || c == '\x7F';
}

bool fitsIntoHeader(std::string_view key) {
    return !key.empty() && key.size() <= maximumKeyLength && isValidUTF8(key) &&
           std::ranges::none_of(key, isControl);
}

}  // namespace

std::optional<SecretText> validatedOpenAIKey(std::string_view text) {
    const std::string_view key = trimmingWhiteSpace(text);
    if (!key.starts_with("sk-") || !fitsIntoHeader(key)) {
        return std::nullopt;
    }
    return SecretText(key);
}

std::optional<SecretText> readOpenAIKey(SecretStore& secrets) {
    std::optional<SecretText> key = secrets.read();
    if (key && !fitsIntoHeader(key->view())) {
        key.reset();
    }
    return key;
}

}  // namespace tallowcrest
