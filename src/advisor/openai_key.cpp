#include "advisor/openai_key.h"

#include <algorithm>

#include "advisor/advisor_ports.h"
#include "core/text.h"

namespace tallowcrest {
namespace {

constexpr std::size_t shortestSecret = 8;

constexpr bool isControl(char c) {
    return (c >= 0 && c < ' ') || c == '\x7F';
}

/// Whether `key`, which is valid UTF-8, has one of U+0080 to U+009F.
bool hasLaterControl(std::string_view key) {
    for (std::size_t at = key.find('\xC2'); at != std::string_view::npos;
         at = key.find('\xC2', at + 1)) {
        if (static_cast<unsigned char>(key[at + 1]) < 0xA0) {
            return true;
        }
    }
    return false;
}

bool fitsIntoHeader(std::string_view key) {
    return !key.empty() && key.size() <= maximumKeyLength && isValidUTF8(key) &&
           std::ranges::none_of(key, isControl) && !hasLaterControl(key);
}

/// How many bytes at the beginning of `text` are the key; 0 when it begins otherwise.
std::size_t lengthOfKey(std::string_view text, std::string_view key) {
    std::size_t length = 0;
    for (const char c : key) {
        const bool isEscaped = length > 0 && c != '\\' && text.substr(length).starts_with('\\');
        length += isEscaped ? 1 : 0;
        if (length == text.size() || text[length] != c) {
            return 0;
        }
        ++length;
    }
    return length;
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

std::string strikingOutKey(std::string_view text, std::string_view key) {
    if (key.size() < shortestSecret) {
        return std::string(text);
    }
    std::string struckOut;
    std::size_t copied = 0;
    for (std::size_t at = text.find(key.front()); at != std::string_view::npos;
         at = text.find(key.front(), at)) {
        const std::size_t length = lengthOfKey(text.substr(at), key);
        if (length == 0) {
            ++at;
        } else {
            struckOut.append(text.substr(copied, at - copied)).append("\u2022\u2022\u2022");
            at += length;
            copied = at;
        }
    }
    return struckOut.append(text.substr(copied));
}

}  // namespace tallowcrest
