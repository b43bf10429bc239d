// The layout of the pages in windows of different widths.

#include "actions/actions.h"
#include "presentation/widgets/card.h"
#include "presentation/widgets/theme.h"
#include "presentation/widgets/toggle_switch.h"
#include "tests/presentation/window_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

class WideWindowTest : public WindowFixture {
protected:
    void showAtWidth(int width) {
        window().resize(width, 1000);
        showWithSample();
    }

    /// The columns of pixels of the window that `widget` takes.
    std::pair<int, int> columnsOf(const QWidget* widget) {
        const int left = widget->mapTo(&window(), QPoint()).x();
        return {left, left + widget->width()};
    }
};

TEST_F(WideWindowTest, TheContentEndsAtItsGreatestWidthBelowTheHeader) {
    showAtWidth(2400);
    for (const auto& [each, card] : {std::pair{AppRoute::overview, "overview.timeline"},
                                     {AppRoute::optimize, "optimize.workspace"},
                                     {AppRoute::load, "processes"},
                                     {AppRoute::chat, "optimize.workspace"},
                                     {AppRoute::remoteMacs, "remote.summary"},
                                     {AppRoute::history, "history.timeline"},
                                     {AppRoute::settings, "settings.hub"}}) {
        goTo(each);
        ASSERT_NE(visible(card), nullptr) << card;
        const auto [left, right] = columnsOf(visible(card));
        EXPECT_EQ(right - left, spacing::widestContent) << card;
        EXPECT_EQ(columnsOf(visible("page.title")).first, left) << card;
        // The button has no frame, so that its padding is beyond the card.
        EXPECT_EQ(columnsOf(visible("page.refresh")).second, right + 12) << card;
        EXPECT_EQ(columnsOf(visible("status.session")).first, left) << card;
        EXPECT_EQ(columnsOf(visible("target")), std::pair(left, right)) << card;
    }
}

TEST_F(WideWindowTest, ANarrowerWindowIsFilled) {
    showAtWidth(1200);
    const auto [left, right] = columnsOf(visible("overview.timeline"));
    EXPECT_EQ(right, 1200 - spacing::pagePadding);
    EXPECT_EQ(columnsOf(visible("page.title")).first, left);
}

TEST_F(WideWindowTest, NoCardOfTheOverviewIsStretched) {
    showAtWidth(1600);
    for (const char* each : {"overview.top-app-memory", "overview.disk-autopilot",
                             "overview.top-offender", "overview.recent-activity"}) {
        const QWidget* card = visible(each);
        ASSERT_NE(card, nullptr) << each;
        EXPECT_LE(card->height(), card->layout()->totalHeightForWidth(card->width())) << each;
    }
    EXPECT_EQ(columnsOf(visible("overview.disk-autopilot")).second,
              columnsOf(visible("overview.timeline")).second)
        << "two columns";
}

TEST_F(WideWindowTest, NoCardOfOptimizeIsStretched) {
    machine.addProcess(700, "/usr/bin/editor", 60.0, 900.0);
    showAtWidth(1600);
    machine.monitor().actions().review.selectProcessWithPID(700);
    goTo(AppRoute::optimize);
    for (const char* each : {"cleanup.flow", "cleanup.disk-autopilot", "cleanup.offender"}) {
        const QWidget* card = visible(each);
        ASSERT_NE(card, nullptr) << each;
        EXPECT_LE(card->height(), card->layout()->totalHeightForWidth(card->width())) << each;
    }
}

TEST_F(WideWindowTest, TheWordForASwitchStandsBesideIt) {
    showAtWidth(1600);
    goTo(AppRoute::history);
    const QWidget* toggle = visible<ToggleSwitch>("history.automation.auto-purge");
    const QWidget* word = visible("history.automation.auto-purge.state");
    EXPECT_LT(columnsOf(word).first - columnsOf(toggle).second, 5 * spacing::unit);
    EXPECT_GT(columnsOf(visible("history.automation.auto-purge.title")).first,
              columnsOf(word).first);
}

}  // namespace
}  // namespace tallowcrest
