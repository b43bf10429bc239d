#include "presentation/shell/page_header.h"

#include <algorithm>
#include <map>

#include <QPushButton>

#include "actions/actions.h"
#include "tests/presentation/window_fixture.h"

using namespace Qt::StringLiterals;

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
    const std::map<AppRoute, std::string> expected{
        {AppRoute::overview, "Local Analyze|Review Cleanup|Refresh"},
        {AppRoute::load, "Select Top|Activity|Refresh"},
        {AppRoute::optimize, "Select Top|Top App|Purge|Activity|Refresh"},
        {AppRoute::optimizationSuggestions, "Analyze Storage|Refresh"},
        {AppRoute::aiAdvisor, "Local Analyze|Open Chat|Refresh"},
        {AppRoute::chat, "Send|Clear|Refresh"},
        {AppRoute::remoteMacs, "Scan Remotes|Open Tailscale|Refresh"},
        {AppRoute::history, "Copy Report|Export|Refresh"},
        {AppRoute::settings, "Open Settings Sheet|Refresh"}};
    ASSERT_EQ(expected.size(), allAppRoutes.size());
    showWithSample();
    // In both directions, because each route replaces the actions of the one before.
    for (const bool isForward : {true, false}) {
        for (std::size_t i = 0; i < allAppRoutes.size(); ++i) {
            const AppRoute each = allAppRoutes.at(isForward ? i : allAppRoutes.size() - 1 - i);
            goTo(each);
            EXPECT_EQ(headerButtons().join(u'|').toStdString(), expected.at(each))
                << rawValue(each);
        }
    }
}

TEST_F(PageHeaderTest, ActionsAreBesideTheTitleAtEverySize) {
    showWithSample();
    for (const QSize size : {QSize(640, 480), QSize(640, 800), QSize(900, 600), QSize(1080, 720),
                             QSize(1200, 800), QSize(1600, 1000)}) {
        window().resize(size);
        for (const AppRoute each : allAppRoutes) {
            goTo(each);
            const QWidget* title = visible("page.title");
            const QWidget* subtitle = visible("page.subtitle");
            for (const QWidget* button : title->parentWidget()->findChildren<QPushButton*>()) {
                EXPECT_EQ(button->geometry().center().y(), title->geometry().center().y());
                EXPECT_GT(button->x(), title->geometry().right());
                EXPECT_FALSE(button->geometry().intersects(subtitle->geometry()));
            }
            EXPECT_FALSE(title->geometry().intersects(subtitle->geometry()));
            const auto lines = visible<ElidedLabel>("page.subtitle")->shownLines();
            EXPECT_EQ(lines, QStringList(textOf("page.subtitle")))
                << size.width() << rawValue(each);
            EXPECT_EQ(visible<ElidedLabel>("page.title")->shownLines(),
                      QStringList(textOf("page.title")))
                << size.width() << rawValue(each);
        }
    }
}

TEST_F(PageHeaderTest, TheSubtitleIsBesideTheTitleInAWideWindowAndBelowItOtherwise) {
    showWithSample();
    const QWidget* title = visible("page.title");
    const QWidget* subtitle = visible("page.subtitle");
    for (const int width : {1600, 900, 1200, 640}) {
        window().resize(width, 800);
        settle();
        const bool isBeside = width >= 1200;
        EXPECT_EQ(subtitle->x() > title->geometry().right(), isBeside) << width;
        EXPECT_EQ(subtitle->y() > title->geometry().bottom(), !isBeside) << width;
    }
}

TEST_F(PageHeaderTest, TakesLessRoomInALowWindow) {
    showWithSample();
    const QWidget* header = visible("page.title")->parentWidget();
    const auto heightAt = [&](int width, int height) {
        window().resize(width, height);
        settle();
        return header->height();
    };
    for (const int width : {640, 900, 1600}) {
        EXPECT_LT(heightAt(width, 600), heightAt(width, 800)) << width;
    }
    EXPECT_EQ(heightAt(900, 600), heightAt(900, 480));
    EXPECT_EQ(heightAt(900, 800), heightAt(900, 1000));
}

TEST_F(PageHeaderTest, InANarrowWindowActionsHaveNoIcons) {
    window().resize(640, 480);
    showWithSample();
    goTo(AppRoute::optimize);
    const auto* purge = visible<QPushButton>("optimize.purge");
    EXPECT_TRUE(purge->icon().isNull());
    EXPECT_TRUE(visible<QPushButton>("page.refresh")->icon().isNull());
    EXPECT_EQ(headerButtons().join(u'|').toStdString(),
              "Select Top|Top App|Purge|Activity|Refresh");
    window().resize(1080, 720);
    settle();
    EXPECT_FALSE(purge->icon().isNull());
    EXPECT_FALSE(visible<QPushButton>("page.refresh")->icon().isNull());
    window().resize(640, 480);
    goTo(AppRoute::history);
    EXPECT_FALSE(visible<QPushButton>("page.refresh")->icon().isNull());
}

TEST_F(PageHeaderTest, IconsAreNotReplacedWhileTheyStayShownOrHidden) {
    showWithSample();
    goTo(AppRoute::optimize);
    const auto icon = [this] { return visible<QPushButton>("optimize.purge")->icon().cacheKey(); };
    for (const int width : {1080, 640}) {
        window().resize(width, 720);
        settle();
        const qint64 before = icon();
        window().resize(width + 1, 720);
        settle();
        EXPECT_EQ(icon(), before) << width;
    }
}

TEST_F(PageHeaderTest, ALargerFontHidesTheIcons) {
    showWithSample();
    goTo(AppRoute::optimize);
    const auto* purge = visible<QPushButton>("optimize.purge");
    int width = 820;
    for (; !purge->icon().isNull(); --width) {
        window().resize(width - 1, 720);
        settle();
    }
    window().resize(width + 1, 720);
    settle();
    ASSERT_FALSE(purge->icon().isNull()) << "the smallest width with room for them";
    QFont larger = purge->font();
    larger.setPointSizeF(1.5 * larger.pointSizeF());
    purge->parentWidget()->setFont(larger);
    settle();
    EXPECT_TRUE(purge->icon().isNull());
}

TEST_F(PageHeaderTest, ActionsOfThePreviousRouteAreRemovedAtOnce) {
    showWithSample();
    window().state().navigation.setSelectedRoute(AppRoute::load);
    // Without processing Qt events, which would delete the old buttons.
    machine.mainQueue.drain();
    EXPECT_EQ(visible("overview.review-cleanup"), nullptr);
}

TEST_F(PageHeaderTest, ActionsGoToTheirRoutes) {
    showWithSample();
    click("overview.review-cleanup");
    EXPECT_EQ(route(), AppRoute::optimize);
    EXPECT_EQ(textOf("page.title"), u"Optimize"_s);
    goTo(AppRoute::aiAdvisor);
    click("aiAdvisor.open-chat");
    EXPECT_EQ(route(), AppRoute::chat);
}

TEST_F(PageHeaderTest, TheActionsOfOptimizeSelectAndOpen) {
    int opened = 0;
    machine.openActivityMonitor = [&opened] {
        ++opened;
        return true;
    };
    showWithSample();
    goTo(AppRoute::optimize);
    click("optimize.select-top");
    EXPECT_EQ(selectedPID(), 800);
    machine.monitor().actions().review.clearOperationTarget();
    click("optimize.top-app");
    EXPECT_EQ(selectedPID(), 800);
    EXPECT_EQ(lastAction(), "Selected the heaviest process inside photo-indexer.");
    click("optimize.activity");
    EXPECT_EQ(opened, 1);
    click("optimize.purge");
    EXPECT_EQ(textOf("confirmation.title"), u"Purge file caches?"_s);
    EXPECT_EQ(machine.actions.cachePurge->count, 0);
}

}  // namespace
}  // namespace tallowcrest
