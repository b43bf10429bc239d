#include "presentation/screens/overview/top_app_memory.h"

#include <gmock/gmock.h>

namespace tallowcrest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

AppImpact group(const std::string& name, double megabytes) {
    AppImpact impact;
    impact.name = name;
    impact.totalMemoryMB = megabytes;
    return impact;
}

TEST(TopAppMemory, OfNoGroupsIsEmpty) {
    EXPECT_THAT(topAppMemory({}, 6), IsEmpty());
    EXPECT_THAT(topAppMemory({group("a", 1.0)}, 0), IsEmpty());
}

TEST(TopAppMemory, LargestFirstWhateverTheOrderOfImpact) {
    EXPECT_THAT(
        topAppMemory({group("busy", 100.0), group("large", 400.0), group("middle", 200.0)}, 6),
        ElementsAre(AppMemoryBar{"large", 400.0, 1.0}, AppMemoryBar{"middle", 200.0, 0.5},
                    AppMemoryBar{"busy", 100.0, 0.25}));
}

TEST(TopAppMemory, EqualGroupsKeepTheirOrder) {
    EXPECT_THAT(topAppMemory({group("b", 5.0), group("a", 5.0)}, 6),
                ElementsAre(AppMemoryBar{"b", 5.0, 1.0}, AppMemoryBar{"a", 5.0, 1.0}));
}

TEST(TopAppMemory, TheLimitKeepsTheLargestAndNotTheFirst) {
    std::vector<AppImpact> groups;
    for (int i = 1; i <= 20; ++i) {
        groups.push_back(group("group " + std::to_string(i), i));
    }
    const auto bars = topAppMemory(groups, 3);
    ASSERT_THAT(bars, SizeIs(3));
    EXPECT_EQ(bars[0].name, "group 20");
    EXPECT_EQ(bars[2].name, "group 18");
}

TEST(TopAppMemory, GroupsWithoutMemoryHaveBarsWithoutLength) {
    EXPECT_THAT(topAppMemory({group("a", 0.0), group("b", 0.0)}, 6),
                ElementsAre(AppMemoryBar{"a", 0.0, 0.0}, AppMemoryBar{"b", 0.0, 0.0}));
}

}  // namespace
}  // namespace tallowcrest
