#include "sampling/stable_order.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <numeric>
#include <random>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/numbers.h"

namespace tallowcrest {
namespace {

std::vector<int> numbersTo(std::size_t count) {
    std::vector<int> numbers(count);
    std::iota(numbers.begin(), numbers.end(), 0);
    return numbers;
}

std::vector<int> shuffled(std::size_t count, unsigned seed, int modulus) {
    std::mt19937 generator(seed);
    std::vector<int> numbers(count);
    for (int& number : numbers) {
        number = static_cast<int>(generator() % static_cast<unsigned>(modulus));
    }
    return numbers;
}

TEST(StableOrder, SortsEveryLengthLikeTheStandardSort) {
    for (std::size_t count = 0; count < 130; ++count) {
        std::vector<int> numbers = shuffled(count, static_cast<unsigned>(count), 50);
        std::vector<int> expected = numbers;
        std::sort(expected.begin(), expected.end());
        stableOrder(numbers, std::less<>{});
        EXPECT_EQ(numbers, expected) << count;
    }
}

TEST(StableOrder, KeepsTheOrderOfEqualItems) {
    using Item = std::pair<int, int>;
    std::vector<Item> items;
    const std::vector<int> keys = shuffled(1000, 7, 10);
    for (std::size_t i = 0; i < keys.size(); ++i) {
        items.emplace_back(keys[i], static_cast<int>(i));
    }
    std::vector<Item> expected = items;
    const auto byKey = [](const Item& a, const Item& b) { return a.first < b.first; };
    std::stable_sort(expected.begin(), expected.end(), byKey);
    stableOrder(items, byKey);
    EXPECT_EQ(items, expected);
}

TEST(StableOrder, KeepsTheOrderWhenNoItemComesBeforeAnother) {
    std::vector<int> numbers = numbersTo(77);
    stableOrder(numbers, [](int, int) { return false; });
    EXPECT_EQ(numbers, numbersTo(77));
}

TEST(StableOrder, KeepsAllItemsUnderAnyRelation) {
    std::mt19937 generator(11);
    const auto random = [&generator](int, int) { return generator() % 2 == 0; };
    const auto always = [](int, int) { return true; };
    const auto rockPaperScissors = [](int a, int b) { return (a - b + 3) % 3 == 1; };
    for (const std::size_t count : {2U, 3U, 17U, 64U, 1000U}) {
        for (const auto& relation :
             {std::function<bool(int, int)>(random), std::function<bool(int, int)>(always),
              std::function<bool(int, int)>(rockPaperScissors)}) {
            std::vector<int> numbers = numbersTo(count);
            stableOrder(numbers, relation);
            std::sort(numbers.begin(), numbers.end());
            EXPECT_EQ(numbers, numbersTo(count));
        }
    }
}

TEST(StableOrder, ToleratesNaN) {
    std::vector<double> figures{3, nan, 1, infinity, nan, 2, -infinity};
    stableOrder(figures, std::greater<>{});
    EXPECT_EQ(figures.size(), 7U);
    EXPECT_EQ(std::count_if(figures.begin(), figures.end(), [](double x) { return std::isnan(x); }),
              2);
    for (const double kept : {3.0, 1.0, 2.0, infinity, -infinity}) {
        EXPECT_EQ(std::count(figures.begin(), figures.end(), kept), 1) << kept;
    }
}

TEST(StableOrder, ComparesNoMoreOftenThanAMergeSort) {
    constexpr std::size_t count = 10000;
    std::size_t asked = 0;
    std::vector<int> numbers = shuffled(count, 3, 1000);
    stableOrder(numbers, [&asked](int a, int b) {
        ++asked;
        return a < b;
    });
    EXPECT_LE(asked, count * 14);
}

TEST(StableFirst, IsTheFirstOfTheWholeOrderUnderAnyRelation) {
    const auto less = [](int a, int b) { return a < b; };
    const auto banded = [](int a, int b) { return std::abs(a - b) > 5 ? a > b : a % 5 > b % 5; };
    const auto circular = [](int a, int b) { return (a - b + 300) % 3 == 1; };
    for (std::size_t count = 1; count < 130; ++count) {
        for (const auto& relation :
             {std::function<bool(int, int)>(less), std::function<bool(int, int)>(banded),
              std::function<bool(int, int)>(circular)}) {
            const std::vector<int> numbers = shuffled(count, static_cast<unsigned>(count), 40);
            std::vector<int> ordered = numbers;
            stableOrder(ordered, relation);
            EXPECT_EQ(stableFirst(numbers, relation), ordered.front()) << count;
        }
    }
}

}  // namespace
}  // namespace tallowcrest
