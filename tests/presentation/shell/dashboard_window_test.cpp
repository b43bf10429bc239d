#include "presentation/shell/dashboard_window.h"

#include <utility>

#include <QAccessible>
#include <QMenuBar>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalSpy>

#include "actions/actions.h"
#include "core/settings/settings_owner.h"
#include "presentation/screens/load/load_page.h"
#include "presentation/screens/overview/overview_page.h"
#include "presentation/shell/sidebar.h"
#include "presentation/shell/window_return.h"
#include "presentation/widgets/capsule.h"
#include "presentation/widgets/theme.h"
#include "tests/presentation/is_ringed.h"
#include "tests/presentation/widgets/paint_count.h"
#include "tests/presentation/window_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::SizeIs;

QString qString(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

class DashboardWindowTest : public WindowFixture {
protected:
    /// The class name of the visible screen, without its namespace.
    QString shownScreen() {
        for (const auto* screen : window().findChildren<Screen*>()) {
            if (screen->isVisible()) {
                return QString::fromLatin1(screen->metaObject()->className()).section(u':', -1);
            }
        }
        return {};
    }
};

// The shell --------------------------------------------------------------------------------------

TEST_F(DashboardWindowTest, HasItsTitleAndIdentifier) {
    EXPECT_EQ(window().windowTitle(), u"Tallowcrest"_s);
    EXPECT_EQ(window().objectName(), u"tallowcrest.main"_s);
    EXPECT_FALSE(machine.monitor().isStarted()) << "only showing the window starts it";
}

TEST_F(DashboardWindowTest, MonitoringStartsOnceWhenFirstShown) {
    show();
    EXPECT_TRUE(machine.monitor().isStarted());
    EXPECT_EQ(machine.workQueue.pendingCount(), 1U);
    EXPECT_THAT(machine.mainQueue.timerIntervals(), SizeIs(1));
    window().close();
    window().show();
    settle();
    EXPECT_EQ(machine.workQueue.pendingCount(), 1U);
    EXPECT_THAT(machine.mainQueue.timerIntervals(), SizeIs(1));
}

TEST_F(DashboardWindowTest, SaysThatItSamplesUntilTheFirstSample) {
    show();
    EXPECT_EQ(textOf("status.session"), u"Sampling this Mac..."_s);
    machine.finishSamples();
    settle();
    EXPECT_EQ(textOf("status.session"), u"Current session · last 4 seconds"_s);
    tick();
    EXPECT_EQ(textOf("status.session"), u"Current session · last 8 seconds"_s);
}

TEST_F(DashboardWindowTest, StripShowsThresholdAndLastAction) {
    show();
    EXPECT_EQ(visible("status.threshold")->accessibleName(), u"Warn at 82%"_s);
    EXPECT_EQ(textOf("status.last-action"), u"Monitoring started."_s);
    machine.monitor().log().setLastAction("<b>Something</b> happened.");
    settle();
    EXPECT_EQ(textOf("status.last-action"), u"<b>Something</b> happened."_s);
}

TEST_F(DashboardWindowTest, StripTellsAsLongAsSettingsCannotBeSaved) {
    showWithSample();
    const auto* mark = window().findChild<Capsule*>(u"status.not-saved"_s);
    EXPECT_FALSE(mark->isVisible());
    machine.monitor().settingsOwner().setSavingProblem("No room left, /home/x.");
    machine.monitor().log().recordMessage("Something else happened.");
    settle();
    EXPECT_TRUE(mark->isVisible());
    EXPECT_EQ(mark->accessibleName(), u"Not Saved"_s);
    EXPECT_EQ(mark->accessibleDescription(), u"No room left, /home/x."_s);
    machine.monitor().settingsOwner().setSavingProblem("");
    settle();
    EXPECT_FALSE(mark->isVisible());
}

TEST_F(DashboardWindowTest, EmitsFirstSampleShownOnceAndClosed) {
    const QSignalSpy shown(&window(), &DashboardWindow::firstSampleShown);
    const QSignalSpy closed(&window(), &DashboardWindow::closed);
    show();
    EXPECT_EQ(shown.count(), 0);
    machine.finishSamples();
    settle();
    EXPECT_EQ(shown.count(), 1);
    tick();
    EXPECT_EQ(shown.count(), 1);
    window().close();
    EXPECT_EQ(closed.count(), 1);
}

// Routes -----------------------------------------------------------------------------------------

TEST_F(DashboardWindowTest, SidebarListsEveryRouteInOrder) {
    show();
    QStringList identifiers;
    QStringList titles;
    for (const SidebarRow* row : window().findChildren<SidebarRow*>()) {
        identifiers.append(row->objectName());
        titles.append(row->text());
    }
    EXPECT_EQ(identifiers.join(u' '),
              u"sidebar.overview sidebar.load sidebar.optimize "
              "sidebar.optimizationSuggestions sidebar.aiAdvisor sidebar.chat "
              "sidebar.remoteMacs sidebar.history sidebar.settings"_s);
    EXPECT_EQ(titles.join(u'|'),
              u"Overview|Processes|Optimize|Suggestions|AI Advisor|Chat|Remote "
              "Macs|History|Settings"_s);
    int above = -1;
    for (const SidebarRow* row : window().findChildren<SidebarRow*>()) {
        EXPECT_GT(row->y(), above);
        above = row->y();
    }
}

TEST_F(DashboardWindowTest, EachRouteHasItsTitleSubtitleAndScreen) {
    showWithSample();
    for (const AppRoute each : allAppRoutes) {
        goTo(each);
        EXPECT_EQ(textOf("page.title"), qString(title(each)));
        EXPECT_EQ(textOf("page.subtitle"), qString(subtitle(each)));
        EXPECT_EQ(shownScreen(), each == AppRoute::overview     ? u"OverviewPage"_s
                                 : each == AppRoute::load       ? u"LoadPage"_s
                                 : each == AppRoute::optimize   ? u"OptimizePage"_s
                                 : each == AppRoute::aiAdvisor  ? u"AdvisorPage"_s
                                 : each == AppRoute::remoteMacs ? u"RemoteMacsPage"_s
                                 : each == AppRoute::history    ? u"HistoryPage"_s
                                 : each == AppRoute::settings   ? u"SettingsPage"_s
                                 : each == AppRoute::chat       ? u"ChatPage"_s
                                                                : u"OptimizationSuggestionsPage"_s);
        const auto identifier = u"sidebar."_s + qString(rawValue(each));
        EXPECT_TRUE(visible<SidebarRow>(identifier.toLatin1().constData())->isChecked());
    }
}

TEST_F(DashboardWindowTest, TheSidebarIsAnAccessibleGroup) {
    showWithSample();
    QAccessibleInterface* spoken =
        QAccessible::queryAccessibleInterface(window().findChild<Sidebar*>());
    ASSERT_NE(spoken, nullptr);
    EXPECT_EQ(spoken->role(), QAccessible::Grouping);
    EXPECT_EQ(spoken->text(QAccessible::Name), u"Routes"_s);
    EXPECT_EQ(spoken->childCount(), static_cast<int>(allAppRoutes.size()));
}

TEST_F(DashboardWindowTest, AClickOnASidebarRowSelectsItsRoute) {
    showWithSample();
    for (int i = 0; i < 2; ++i) {
        click("sidebar.chat");
        EXPECT_EQ(route(), AppRoute::chat);
        EXPECT_EQ(textOf("page.title"), u"Chat"_s);
    }
}

TEST_F(DashboardWindowTest, ArrowKeysMoveThroughTheSidebar) {
    showWithSample();
    visible("sidebar.overview")->setFocus(Qt::TabFocusReason);
    for (const auto& [key, expected] : {std::pair{Qt::Key_Down, AppRoute::load},
                                        {Qt::Key_Down, AppRoute::optimize},
                                        {Qt::Key_Up, AppRoute::load}}) {
        press(key);
        EXPECT_EQ(route(), expected);
    }
    EXPECT_EQ(QApplication::focusWidget(), visible("sidebar.load"));
    press(Qt::Key_5, Qt::ControlModifier);
    EXPECT_EQ(route(), AppRoute::aiAdvisor);
    press(Qt::Key_Down);
    EXPECT_EQ(route(), AppRoute::chat) << "continues from the route selected by the shortcut";
}

TEST_F(DashboardWindowTest, TheFocusFollowsARouteThatAnotherWindowOpened) {
    showWithSample();
    for (const bool byKeyboard : {true, false}) {
        goTo(AppRoute::overview);
        QWidget& before = *visible("sidebar.overview");
        before.clearFocus();
        before.setFocus(byKeyboard ? Qt::TabFocusReason : Qt::MouseFocusReason);
        ASSERT_EQ(isRinged(before, CrestTheme::current().accentText), byKeyboard);
        QWidget notification;
        notification.show();
        notification.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&notification));
        window().openRoute(AppRoute::optimize);
        settle();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));
        QWidget& row = *visible("sidebar.optimize");
        EXPECT_EQ(QApplication::focusWidget(), &row);
        EXPECT_EQ(isRinged(row, CrestTheme::current().accentText), byKeyboard);
    }
}

TEST_F(DashboardWindowTest, ControlAndADigitSelectARoute) {
    showWithSample();
    int key = Qt::Key_9;
    for (auto each = allAppRoutes.rbegin(); each != allAppRoutes.rend(); ++each) {
        press(static_cast<Qt::Key>(key--), Qt::ControlModifier);
        EXPECT_EQ(route(), *each);
        EXPECT_EQ(textOf("page.title"), qString(title(*each)));
    }
}

TEST_F(DashboardWindowTest, OpeningARouteRestoresTheWindow) {
    showWithSample();
    const auto opens = [this](AppRoute route, const char* title) {
        settle();
        window().openRoute(route);
        settle();
        EXPECT_TRUE(window().isVisible());
        EXPECT_FALSE(window().isMinimized());
        EXPECT_EQ(textOf("page.title"), QLatin1String(title));
    };
    window().close();
    ASSERT_FALSE(window().isVisible());
    opens(AppRoute::optimize, "Optimize");
    window().showMinimized();
    opens(AppRoute::history, "History");
    window().showMaximized();
    settle();
    window().close();
    opens(AppRoute::load, "Processes");
    EXPECT_TRUE(window().isMaximized());
    window().setWindowState(Qt::WindowMaximized | Qt::WindowMinimized);
    opens(AppRoute::chat, "Chat");
    EXPECT_TRUE(window().isMaximized());
}

TEST_F(DashboardWindowTest, ComesBackWithTheProgramUnlessAnotherWindowIsShown) {
    showWithSample();
    const auto isShownWhen = [this](Qt::ApplicationState state) {
        window().close();
        emit qApp->applicationStateChanged(state);
        settle();
        return window().isVisible();
    };
    EXPECT_FALSE(isShownWhen(Qt::ApplicationActive));
    returnWhenActivated(window());
    EXPECT_FALSE(isShownWhen(Qt::ApplicationInactive));
    EXPECT_TRUE(isShownWhen(Qt::ApplicationActive));
    QWidget other;
    other.show();
    EXPECT_FALSE(isShownWhen(Qt::ApplicationActive));
}

TEST_F(DashboardWindowTest, AMinimisedStateThatIsReportedLateIsLeftAgain) {
    showWithSample();
    window().bringToFront();
    window().setWindowState(Qt::WindowMinimized);
    settle();
    EXPECT_FALSE(window().isMinimized());
}

// Refresh ----------------------------------------------------------------------------------------

TEST_F(DashboardWindowTest, RefreshTakesASample) {
    showWithSample();
    ASSERT_EQ(machine.workQueue.pendingCount(), 0U);
    click("page.refresh");
    EXPECT_EQ(machine.workQueue.pendingCount(), 1U);
    press(Qt::Key_R, Qt::ControlModifier);
    EXPECT_EQ(machine.workQueue.pendingCount(), 2U);
}

// Work -------------------------------------------------------------------------------------------

TEST_F(DashboardWindowTest, AScreenOfAnotherRouteDoesNoWork) {
    showWithSample();
    goTo(AppRoute::load);
    const QSignalSpy changes(&model(), &QAbstractItemModel::dataChanged);
    machine.metrics->processes[0].cpu += 1.0;
    tick();
    EXPECT_EQ(changes.count(), 1) << "the visible screen is updated";
    goTo(AppRoute::overview);
    machine.addProcess(900, "/usr/bin/newcomer", 200.0, 10.0);
    tick();
    tick();
    EXPECT_EQ(changes.count(), 1);
    EXPECT_EQ(model().rowCount(), 3);
    goTo(AppRoute::load);
    EXPECT_EQ(model().rowCount(), 4) << "and is updated when it becomes visible";
}

TEST_F(DashboardWindowTest, AClosedOrMinimisedWindowDoesNoWork) {
    showWithSample();
    goTo(AppRoute::load);
    const QSignalSpy changes(&model(), &QAbstractItemModel::dataChanged);
    PaintCount paints(window());
    const auto staysIdleWhile = [&](auto hide, auto showAgain) {
        hide();
        settle();
        const auto expected = changes.count();
        static_cast<void>(paints.take());
        machine.metrics->processes[0].cpu += 1.0;
        tick();
        tick();
        EXPECT_EQ(changes.count(), expected);
        EXPECT_EQ(paints.take(), 0);
        showAgain();
        settle();
        EXPECT_EQ(changes.count(), expected + 1);
    };
    staysIdleWhile([this] { window().close(); }, [this] { window().show(); });
    EXPECT_EQ(textOf("status.session"), u"Current session · last 12 seconds"_s);
    staysIdleWhile([this] { window().showMinimized(); }, [this] { window().showNormal(); });
    window().close();
    goTo(AppRoute::chat);
    window().show();
    settle();
    EXPECT_EQ(textOf("page.title"), u"Chat"_s) << "the route selected while it was closed";
}

TEST_F(DashboardWindowTest, AChangedLastActionPaintsLittle) {
    showWithSample();
    goTo(AppRoute::chat);
    tick();
    PaintCount paints(window());
    machine.monitor().actions().review.clearOperationTarget();
    settle();
    // The changed line of the strip and the widgets behind it, but not the whole window.
    const int count = paints.take();
    EXPECT_GT(count, 0);
    EXPECT_LT(count, 12);
}

TEST_F(DashboardWindowTest, ChangingTheRouteDoesNotMoveTheStatusStrip) {
    showWithSample();
    for (const int width : {700, 900, 1080, 1600}) {
        window().resize(width, 700);
        settle();
        goTo(AppRoute::overview);
        const QWidget* strip = visible("status.session");
        ASSERT_NE(strip, nullptr);
        const QPoint before = strip->mapTo(&window(), QPoint());
        for (const AppRoute other : allAppRoutes) {
            goTo(other);
            EXPECT_EQ(strip->mapTo(&window(), QPoint()), before) << width << rawValue(other);
        }
    }
}

TEST_F(DashboardWindowTest, ALongMessageIsShownWholeInAUsualWindow) {
    showWithSample();
    window().resize(1080, 600);
    settle();
    machine.monitor().log().setLastAction(
        "Selected gnome-system-monitor from CPU + Memory Processes. No action has run yet.");
    settle();
    const auto* label = visible<ElidedLabel>("status.last-action");
    ASSERT_NE(label, nullptr);
    EXPECT_TRUE(label->shownLines().last().endsWith(u"run yet."_s))
        << label->shownLines().join(u'|').toStdString();
}

TEST_F(DashboardWindowTest, TheOverviewScrollsByKey) {
    showWithSample();
    window().resize(900, 500);
    settle();
    auto* area = window().findChild<QScrollArea*>();
    ASSERT_NE(area, nullptr);
    ASSERT_GT(area->verticalScrollBar()->maximum(), 0);
    press(Qt::Key_End);
    EXPECT_EQ(area->verticalScrollBar()->value(), area->verticalScrollBar()->maximum());
    press(Qt::Key_Home);
    EXPECT_EQ(area->verticalScrollBar()->value(), 0);
}

}  // namespace
}  // namespace tallowcrest
