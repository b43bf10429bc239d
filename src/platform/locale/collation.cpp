#include "platform/locale/collation.h"

#include <wchar.h>
#include <wctype.h>

#include <algorithm>
#include <cstddef>

#include <fmt/format.h>

#include "core/text.h"

namespace tallowcrest {
namespace {

static_assert(sizeof(wchar_t) == sizeof(char32_t), "a wide character is a code point");

/// On the stack for names of usual lengths.
using Folded = fmt::basic_memory_buffer<wchar_t, 128>;

std::wstring_view view(const Folded& text) {
    return {text.data(), text.size()};
}

}  // namespace

Collation::Collation(const std::string& localeName)
    : locale_(openCLocale(LC_COLLATE_MASK | LC_CTYPE_MASK, localeName)),
      hasOrder_(locale_ != nullptr && localeName.substr(0, localeName.find('.')) != "C") {
    if (locale_ == nullptr) {
        locale_ = neutralCLocale(LC_COLLATE_MASK | LC_CTYPE_MASK);
    }
    for (std::size_t c = 0; c < foldedASCII_.size(); ++c) {
        foldedASCII_[c] = fold(static_cast<wchar_t>(c));
        ranks_[c] =
            hasOrder_ ? std::uint8_t{0} : static_cast<std::uint8_t>(firstRank + foldedASCII_[c]);
    }
    if (hasOrder_) {
        rankPlainCharacters();
    }
}

// Upper case first, because of letters with two small forms, such as the Greek sigma.
wchar_t Collation::fold(wchar_t character) const {
    const auto upper = ::towupper_l(static_cast<wint_t>(character), locale_.get());
    return static_cast<wchar_t>(::towlower_l(upper, locale_.get()));
}

template <class Buffer>
void Collation::fold(std::string_view bytes, Buffer& folded) const {
    std::string repaired;
    if (!isValidUTF8(bytes)) {
        repaired = replacingInvalidUTF8(bytes);
        bytes = repaired;
    }
    while (!bytes.empty()) {
        const char32_t c = takeCharacter(bytes);
        folded.push_back(c < asciiEnd ? foldedASCII_[c] : fold(static_cast<wchar_t>(c)));
    }
}

void Collation::rankPlainCharacters() {
    const auto before = [this](const std::wstring& left, const std::wstring& right) {
        return ::wcscoll_l(left.c_str(), right.c_str(), locale_.get()) < 0;
    };
    std::wstring plain = L"abcdefghijklmnopqrstuvwxyz0123456789";
    std::sort(plain.begin(), plain.end(),
              [&before](wchar_t left, wchar_t right) { return before({left}, {right}); });
    // That the pairs are in the same order tells that no two characters count as one letter, as
    // "ch" does in Czech, and that none counts as much as another.
    std::wstring last;
    for (const wchar_t first : plain) {
        for (const wchar_t second : plain) {
            if (!before(last, {first, second})) {
                return;
            }
            last = {first, second};
        }
    }
    for (std::size_t c = 0; c < foldedASCII_.size(); ++c) {
        const wchar_t folded = foldedASCII_[c];
        if (const std::size_t place = plain.find(folded); place != std::wstring::npos) {
            ranks_[c] = static_cast<std::uint8_t>(firstRank + place);
        } else if (c > 0 && before({folded}, {plain[0]}) &&
                   before({plain[0]}, {folded, plain[1]})) {
            ranks_[c] = ignored;
        }
    }
}

/// Absent when they have other bytes, or differ only in what is ignored at first.
std::optional<std::weak_ordering> Collation::orderByRank(std::string_view left,
                                                         std::string_view right) const {
    const auto rank = [this](char c) { return ranks_[static_cast<unsigned char>(c)]; };
    const auto isRanked = [&rank](char c) { return rank(c) != 0; };
    const auto counts = [&rank](char c) { return rank(c) != ignored; };
    if (!std::all_of(left.begin(), left.end(), isRanked) ||
        !std::all_of(right.begin(), right.end(), isRanked)) {
        return std::nullopt;
    }
    const auto* atLeft = left.begin();
    const auto* atRight = right.begin();
    while (true) {
        atLeft = std::find_if(atLeft, left.end(), counts);
        atRight = std::find_if(atRight, right.end(), counts);
        if (atLeft == left.end() || atRight == right.end()) {
            break;
        }
        if (rank(*atLeft) != rank(*atRight)) {
            return rank(*atLeft) <=> rank(*atRight);
        }
        ++atLeft;
        ++atRight;
    }
    if (atLeft != left.end() || atRight != right.end()) {
        return atLeft == left.end() ? std::weak_ordering::less : std::weak_ordering::greater;
    }
    return hasOrder_ ? std::nullopt : std::optional(std::weak_ordering::equivalent);
}

std::weak_ordering Collation::compare(std::string_view left, std::string_view right) const {
    if (const auto order = orderByRank(left, right)) {
        return *order;
    }
    Folded leftFolded;
    Folded rightFolded;
    fold(left, leftFolded);
    fold(right, rightFolded);
    const std::weak_ordering byCodePoint = view(leftFolded) <=> view(rightFolded);
    if (!hasOrder_ || byCodePoint == 0) {
        return byCodePoint;
    }
    // To the C library a zero ends the text.
    for (Folded* folded : {&leftFolded, &rightFolded}) {
        std::replace(folded->begin(), folded->end(), L'\0', L'\1');
        folded->push_back(L'\0');
    }
    const int byLocale = ::wcscoll_l(leftFolded.data(), rightFolded.data(), locale_.get());
    return byLocale == 0 ? byCodePoint : byLocale <=> 0;
}

bool Collation::contains(std::string_view text, std::string_view part) const {
    Folded foldedText;
    Folded foldedPart;
    fold(text, foldedText);
    fold(part, foldedPart);
    return view(foldedText).find(view(foldedPart)) != std::wstring_view::npos;
}

}  // namespace tallowcrest
