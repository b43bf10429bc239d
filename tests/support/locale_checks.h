#pragma once

#include <compare>
#include <cstddef>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "core/locale.h"

namespace tallowcrest {

/// Ordinary and unusual names, invalid UTF-8 included.
inline std::vector<std::string> oddTexts() {
    std::string every;
    for (int byte = 0; byte < 256; ++byte) {
        every.push_back(static_cast<char>(byte));
    }
    return {"",
            "a",
            "A",
            "b",
            "aa",
            "AB",
            "a b",
            "a-b",
            "I",
            "i",
            "\u0130",
            "\u0131",
            "ä",
            "a\u0308",
            "Ä",
            "z",
            "ß",
            "ss",
            "SS",
            "\xFF",
            "\xFE",
            "a\xFF",
            "a\xC3",
            "a\xC3\xA4",
            "\xE2\x82",
            "\xE2\x82\xAC",
            "\xED\xA0\x80",
            "\xF4\x90\x80\x80",
            "\uFFFD",
            "\uFFFD\uFFFD",
            "\u200B",
            "a\u200B",
            std::string("a\0b", 3),
            std::string(1, '\0'),
            "\U0001F600",
            "日本",
            every,
            std::string(5000, 'x'),
            std::string(5000, 'x') + "\xC3"};
}

/// Checks that sorts can rely on the comparison.
inline void expectStrictWeakOrdering(const Locale& locale) {
    const std::vector<std::string> texts = oddTexts();
    std::vector<std::vector<std::weak_ordering>> orders;
    for (const std::string& a : texts) {
        orders.emplace_back();
        for (const std::string& b : texts) {
            orders.back().push_back(locale.compareIgnoringCase(a, b));
        }
    }
    for (std::size_t a = 0; a < texts.size(); ++a) {
        EXPECT_TRUE(orders[a][a] == 0) << texts[a];
        for (std::size_t b = 0; b < texts.size(); ++b) {
            EXPECT_EQ(orders[a][b], 0 <=> orders[b][a]) << texts[a] << " / " << texts[b];
            for (std::size_t c = 0; c < texts.size(); ++c) {
                const bool isBefore = orders[a][b] < 0 && orders[b][c] < 0;
                const bool isSame = orders[a][b] == 0 && orders[b][c] == 0;
                EXPECT_FALSE((isBefore && !(orders[a][c] < 0)) || (isSame && orders[a][c] != 0))
                    << texts[a] << " / " << texts[b] << " / " << texts[c];
            }
        }
    }
}

}  // namespace tallowcrest
