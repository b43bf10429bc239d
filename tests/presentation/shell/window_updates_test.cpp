#include <functional>
#include <vector>

#include <gmock/gmock.h>

#include "presentation/screens/history/history_page.h"
#include "presentation/screens/load/processes_page.h"
#include "presentation/screens/optimize/cleanup_page.h"
#include "presentation/screens/overview/overview_page.h"
#include "presentation/shell/status_strip.h"
#include "tests/presentation/widgets/paint_count.h"
#include "tests/presentation/window_fixture.h"

namespace tallowcrest {
namespace {

using testing::Contains;
using testing::Not;

/// Which part of the window follows which component.
class WindowUpdatesTest : public WindowFixture {
protected:
    Screen& page() {
        for (auto* screen : window().findChildren<Screen*>()) {
            if (screen->isVisible()) {
                return *screen;
            }
        }
        throw std::runtime_error("no page is shown");
    }

    /// A hundred changes, each on a turn of its own.
    void burst(const std::function<void(int)>& change) {
        for (int i = 0; i < 100; ++i) {
            change(i);
            settle();
        }
    }
};

TEST_F(WindowUpdatesTest, ABurstOfTheLogRepaintsNeitherTheProcessesNorTheTarget) {
    showProcesses();
    ASSERT_THAT(page().shows(), Not(Contains(&machine.monitor().log().observable())));
    PaintCount page(this->page());
    PaintCount target(*visible("target"));
    PaintCount whole(window());
    burst([&](int i) { machine.monitor().log().recordMessage("Event " + std::to_string(i)); });
    EXPECT_EQ(page.take(), 0);
    EXPECT_EQ(target.take(), 0);
    EXPECT_GT(whole.take(), 0) << "the status strip shows the last action";
}

TEST_F(WindowUpdatesTest, ABurstOfTheReviewRepaintsOnlyTheTargetOnAPageThatDoesNotShowIt) {
    showWithSample();
    goTo(AppRoute::history);
    ASSERT_THAT(page().shows(), Not(Contains(&machine.monitor().review().observable())));
    PaintCount page(this->page());
    PaintCount strip(*window().findChild<StatusStrip*>());
    PaintCount target(*visible("target"));
    burst([&](int i) {
        machine.monitor().review().setTarget(i % 2 == 0 ? 700 : 800, i % 2 == 0 ? "editor" : "x");
    });
    EXPECT_EQ(page.take(), 0);
    EXPECT_EQ(strip.take(), 0);
    EXPECT_GT(target.take(), 0);
}

TEST_F(WindowUpdatesTest, BurstsOfTheOthersRepaintNothingAtAll) {
    showProcesses();
    PaintCount whole(window());
    burst([&](int) {
        machine.monitor().localActions().observable().changed();
        machine.monitor().automation().observable().changed();
        machine.monitor().confirmations().observable().changed();
        window().state().navigation.observable().changed();
    });
    EXPECT_EQ(whole.take(), 0);
}

}  // namespace
}  // namespace tallowcrest
