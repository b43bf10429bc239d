#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "core/local_records.h"
#include "tests/support/each_of.h"

namespace tallowcrest {

inline std::vector<std::string> titlesOf(const std::vector<Recommendation>& cards) {
    return eachOf(cards, &Recommendation::title);
}

inline constexpr std::optional<std::int64_t> noPID;

/// A card without its identifier.
struct Card {
    std::string title;
    std::string detail;
    Recommendation::Severity severity = Recommendation::Severity::info;
    std::optional<std::int64_t> relatedPID;

    bool operator==(const Card&) const = default;
};

inline void PrintTo(const Card& card, std::ostream* out) {
    *out << '"' << card.title << "\" / \"" << card.detail << "\" " << title(card.severity) << ' '
         << (card.relatedPID ? std::to_string(*card.relatedPID) : "-");
}

inline Card contentOf(const Recommendation& card) {
    return {card.title, card.detail, card.severity, card.relatedPID};
}

}  // namespace tallowcrest
