#include "presentation/page_header.h"

#include <algorithm>

#include <QPushButton>

#include "tests/presentation/window_fixture.h"

namespace tallowcrest {
namespace {

class PageHeaderTest : public WindowFixture {
protected:
    QStringList headerButtons() {
        QStringList titles;
        std::vector<QPushButton*> buttons;
        const QWidget* header = visible("page.refresh")->parentWidget();
        for (auto* button : header->findChildren<QPushButton*>()) {
            if (button->isVisible()) {
                buttons.push_back(button);
            }
        }
        std::sort(buttons.begin(), buttons.end(),
                  [](const auto* a, const auto* b) { return a->x() < b->x(); });
        for (const QPushButton* button : buttons) {
            titles.append(button->text());
        }
        return titles;
    }
};

TEST_F(PageHeaderTest, EachRouteHasItsActionsBeforeRefresh) {
    showWithSample();
    const QString refresh = QStringLiteral("Refresh");
    EXPECT_EQ(headerButtons(), QStringList({QStringLiteral("Review Cleanup"), refresh}));
    goTo(AppRoute::load);
    EXPECT_EQ(headerButtons(),
              QStringList({QStringLiteral("Select Top"), QStringLiteral("Activity"), refresh}));
    goTo(AppRoute::optimize);
    EXPECT_EQ(headerButtons(), QStringList({QStringLiteral("Select Top"), QStringLiteral("Top App"),
                                            QStringLiteral("Activity"), refresh}));
    goTo(AppRoute::history);
    EXPECT_EQ(headerButtons(), QStringList({refresh}));
    goTo(AppRoute::overview);
    EXPECT_EQ(headerButtons(), QStringList({QStringLiteral("Review Cleanup"), refresh}));
}

TEST_F(PageHeaderTest, ActionsOfTheRouteBeforeAreGoneAtOnce) {
    showWithSample();
    machine.monitor().navigation().setSelectedRoute(AppRoute::load);
    // Without a turn of Qt's own loop, in which deleted things linger.
    machine.mainQueue.drain();
    EXPECT_EQ(visible("overview.review-cleanup"), nullptr);
}

TEST_F(PageHeaderTest, ReviewCleanupGoesToOptimize) {
    showWithSample();
    click("overview.review-cleanup");
    EXPECT_EQ(route(), AppRoute::optimize);
    EXPECT_EQ(textOf("page.title"), QStringLiteral("Optimize"));
}

TEST_F(PageHeaderTest, TheActionsOfOptimizeSelectAndOpen) {
    int opened = 0;
    machine.extensions.openActivityMonitor = [&opened] {
        ++opened;
        return true;
    };
    showWithSample();
    goTo(AppRoute::optimize);
    click("optimize.select-top");
    EXPECT_EQ(selectedPID(), 800);
    machine.monitor().review().clearOperationTarget();
    click("optimize.top-app");
    EXPECT_EQ(selectedPID(), 800);
    EXPECT_EQ(lastAction(), "Selected the heaviest process inside photo-indexer.");
    click("optimize.activity");
    EXPECT_EQ(opened, 1);
}

}  // namespace
}  // namespace tallowcrest
