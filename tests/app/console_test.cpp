#include "app/console.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;

TEST(PrintableColumn, HasItsWidthWhateverTheText) {
    EXPECT_EQ(printableColumn("", 3), "   ");
    EXPECT_EQ(printableColumn("\xc3\xbc\x1b", 3), "\xc3\xbc? ");
    EXPECT_EQ(printableColumn("abcd", 3), "abc");
}

TEST(FatalErrorLines, AtTheStartTheWindowCannotBeOpened) {
    EXPECT_THAT(fatalErrorLines("could not connect to display\nAvailable: offscreen.", true),
                ElementsAre("the window cannot be opened: could not connect to display",
                            "to sample without a window, try: tallowcrest --headless"));
}

TEST(FatalErrorLines, OnceTheWindowIsOpenOnlyTheReasonIsGiven) {
    EXPECT_THAT(fatalErrorLines("The connection to the display broke.\nMore.", false),
                ElementsAre("fatal error: The connection to the display broke."));
}

}  // namespace
}  // namespace tallowcrest
