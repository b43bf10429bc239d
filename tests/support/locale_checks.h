#pragma once

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
    const auto before = [&locale](const std::string& a, const std::string& b) {
        return locale.compareIgnoringCase(a, b) < 0;
    };
    const auto same = [&locale](const std::string& a, const std::string& b) {
        return locale.compareIgnoringCase(a, b) == 0;
    };
    for (const std::string& a : texts) {
        EXPECT_TRUE(same(a, a)) << a;
        for (const std::string& b : texts) {
            EXPECT_EQ(before(a, b), locale.compareIgnoringCase(b, a) > 0) << a << " / " << b;
            for (const std::string& c : texts) {
                EXPECT_FALSE(before(a, b) && before(b, c) && !before(a, c))
                    << a << " / " << b << " / " << c;
                EXPECT_FALSE(same(a, b) && same(b, c) && !same(a, c))
                    << a << " / " << b << " / " << c;
            }
        }
    }
}

}  // namespace tallowcrest
