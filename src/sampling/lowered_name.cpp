#include "sampling/lowered_name.h"

namespace tallowcrest {
namespace {

/// Lower-cases A to Z and the only two other letters whose lower case contains an ASCII letter.
/// Other letters are left alone: the needles are ASCII, so those letters cannot be part of a match.
void lowerCase(std::string_view text, std::string& lowered) {
    constexpr std::string_view kelvinSign = "\u212A";
    constexpr std::string_view dottedCapitalI = "\u0130";
    lowered.clear();
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c >= 'A' && c <= 'Z') {
            lowered.push_back(static_cast<char>(c - 'A' + 'a'));
        } else if (c == kelvinSign.front() && text.substr(i).starts_with(kelvinSign)) {
            lowered.push_back('k');
            i += kelvinSign.size() - 1;
        } else if (c == dottedCapitalI.front() && text.substr(i).starts_with(dottedCapitalI)) {
            lowered.append("i\u0307");
            i += dottedCapitalI.size() - 1;
        } else {
            lowered.push_back(c);
        }
    }
}

}  // namespace

void LoweredName::assign(std::string_view name) {
    lowerCase(name, text_);
    letters_ = lowerCaseLetters(text_);
}

}  // namespace tallowcrest
