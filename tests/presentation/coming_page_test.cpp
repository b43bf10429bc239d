#include "presentation/coming_page.h"

#include "tests/presentation/window_fixture.h"

namespace tallowcrest {
namespace {

class ComingPageTest : public WindowFixture {};

TEST_F(ComingPageTest, TheContentOfEveryRouteSaysThatItSamples) {
    show();
    const auto saysSo = [this] {
        for (const auto* screen : window().findChildren<Screen*>()) {
            for (const auto* label : screen->findChildren<ElidedLabel*>()) {
                if (label->isVisible() && label->text() == QStringLiteral("Sampling this Mac...")) {
                    return true;
                }
            }
        }
        return false;
    };
    for (const AppRoute each : allAppRoutes) {
        goTo(each);
        EXPECT_TRUE(saysSo()) << title(each);
    }
    machine.finishSamples();
    for (const AppRoute each : allAppRoutes) {
        goTo(each);
        EXPECT_FALSE(saysSo()) << title(each);
    }
}

TEST_F(ComingPageTest, OptimizeTellsTheStepThatItsButtonsChange) {
    show();
    goTo(AppRoute::optimize);
    EXPECT_EQ(visible("coming.optimize.step"), nullptr);
    machine.finishSamples();
    settle();
    EXPECT_EQ(textOf("coming.optimize.step"),
              QStringLiteral("1. Select an offender to review. No optimization has run yet."));
    click("optimize.select-top");
    EXPECT_EQ(textOf("coming.optimize.step"),
              QStringLiteral("2. photo-indexer is selected for review. Choose a confirmed action "
                             "when ready."));
    click("optimize.top-app");
    EXPECT_EQ(textOf("coming.optimize.step"),
              QStringLiteral("2. photo-indexer is selected for review. Nothing has been quit or "
                             "purged yet."));
    EXPECT_TRUE(textOf("coming.optimize.line").startsWith(QStringLiteral("Here you will review")));
}

}  // namespace
}  // namespace tallowcrest
