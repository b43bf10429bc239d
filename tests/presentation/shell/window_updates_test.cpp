#include <array>
#include <functional>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <QPointer>
#include <QScrollBar>
#include <gmock/gmock.h>

#include "actions/actions.h"
#include "actions/automation.h"
#include "actions/local_actions.h"
#include "actions/review_target.h"
#include "advisor/advisor.h"
#include "core/activity_kinds.h"
#include "core/confirmation_desk.h"
#include "core/observable.h"
#include "core/settings/settings_owner.h"
#include "disk/disk.h"
#include "integration/integration.h"
#include "presentation/screens/history/activity_log_card.h"
#include "presentation/screens/shared/screen.h"
#include "presentation/shell/confirmation_dialog.h"
#include "presentation/shell/operation_target_bar.h"
#include "presentation/shell/settings/settings_sheet.h"
#include "presentation/shell/setup_wizard.h"
#include "presentation/shell/status_strip.h"
#include "presentation/shell/update_bar.h"
#include "presentation/shell/window_menus.h"
#include "presentation/widgets/capsule.h"
#include "remote/remote.h"
#include "sampling/process_details.h"
#include "tests/presentation/remote_fleet.h"
#include "tests/presentation/window_fixture.h"

namespace tallowcrest {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

/// What the parts of the window may observe.
enum class Source {
    sample,
    processDetails,
    log,
    settings,
    rules,
    automation,
    review,
    actions,
    desk,
    navigation,
    tailnet,
    remoteScan,
    remoteProfiles,
    remoteActions,
    provider,
    suggestions,
    trust,
    diskAutopilot,
    storageScan,
    personalFiles,
    drafts,
    chat,
    install,
    login,
    updates,
};

using Sources = std::set<Source>;

constexpr std::array allSources{
    Source::sample,         Source::processDetails, Source::log,      Source::settings,
    Source::rules,          Source::automation,     Source::review,   Source::actions,
    Source::desk,           Source::navigation,     Source::tailnet,  Source::remoteScan,
    Source::remoteProfiles, Source::remoteActions,  Source::provider, Source::suggestions,
    Source::trust,          Source::drafts,         Source::chat,     Source::diskAutopilot,
    Source::storageScan,    Source::personalFiles,  Source::install,  Source::login,
    Source::updates};

Sources sourcesOfPage(AppRoute route) {
    using enum Source;
    switch (route) {
        case AppRoute::overview:
            return {sample,   log,   settings,      automation, remoteScan,
                    provider, trust, diskAutopilot, storageScan};
        case AppRoute::load:
            return {sample, processDetails, review, settings, navigation};
        case AppRoute::optimize:
            return {sample,     processDetails, review,        settings,    actions,
                    automation, trust,          diskAutopilot, storageScan, log};
        case AppRoute::optimizationSuggestions:
            return {sample, log,           settings,    automation,   provider,
                    trust,  diskAutopilot, storageScan, personalFiles};
        case AppRoute::aiAdvisor:
            return {sample, settings, provider, suggestions, trust, drafts};
        case AppRoute::chat:
            return {sample, settings, provider, chat};
        case AppRoute::remoteMacs:
            return {tailnet, remoteScan, remoteProfiles, remoteActions, settings, navigation};
        case AppRoute::history:
            return {sample, log, settings, rules, remoteScan, remoteProfiles};
        case AppRoute::settings:
            return {sample, log, settings, rules, install};
        default:
            return {sample};
    }
}

/// Which part of the window follows which component. Refreshes are counted and not paintings, as a
/// refresh that changes nothing paints nothing.
class WindowUpdatesTest : public WindowFixture {
protected:
    /// How often each part was refreshed.
    using Refreshes = std::map<std::string, int>;

    Refreshes refreshesBy(const std::function<void()>& change) {
        Refreshes refreshes;
        const auto connection =
            QObject::connect(&window(), &DashboardWindow::refreshed, [&](QObject* part) {
                ++refreshes[qobject_cast<Screen*>(part) != nullptr               ? "page"
                            : qobject_cast<StatusStrip*>(part) != nullptr        ? "strip"
                            : qobject_cast<OperationTargetBar*>(part) != nullptr ? "target"
                            : qobject_cast<WindowMenus*>(part) != nullptr        ? "menus"
                            : qobject_cast<UpdateBar*>(part) != nullptr          ? "update bar"
                            : qobject_cast<SettingsSheet*>(part) != nullptr      ? "settings"
                            : qobject_cast<SetupWizard*>(part) != nullptr        ? "setup"
                            : qobject_cast<ConfirmationDialog*>(part) != nullptr ? "question"
                                                                                 : "unknown"];
            });
        change();
        settle();
        QObject::disconnect(connection);
        return refreshes;
    }

    Observable& observable(Source source) {
        SystemMonitor& monitor = machine.monitor();
        switch (source) {
            case Source::sample:
                return monitor.sample().observable();
            case Source::processDetails:
                return monitor.processDetails().observable();
            case Source::log:
                return monitor.log().observable();
            case Source::settings:
                return monitor.settingsOwner().observable();
            case Source::rules:
                return monitor.autoRules().observable();
            case Source::automation:
                return monitor.actions().automation.observable();
            case Source::review:
                return monitor.actions().review.observable();
            case Source::actions:
                return monitor.actions().local.observable();
            case Source::desk:
                return monitor.confirmations().observable();
            case Source::navigation:
                return window().state().navigation.observable();
            case Source::tailnet:
                return monitor.remote().tailnet.observable();
            case Source::remoteScan:
                return monitor.remote().scan.observable();
            case Source::remoteProfiles:
                return monitor.remote().profiles.observable();
            case Source::remoteActions:
                return monitor.remote().actions.observable();
            case Source::provider:
                return monitor.advisor().provider.observable();
            case Source::suggestions:
                return monitor.advisor().suggestions.observable();
            case Source::trust:
                return monitor.advisor().trust.observable();
            case Source::drafts:
                return monitor.advisor().drafts.observable();
            case Source::chat:
                return monitor.advisor().chat.observable();
            case Source::diskAutopilot:
                return monitor.disk().autopilot.observable();
            case Source::storageScan:
                return monitor.disk().storage.observable();
            case Source::personalFiles:
                return monitor.disk().files.observable();
            case Source::install:
                return monitor.integration().install.observable();
            case Source::login:
                return monitor.integration().login.observable();
            case Source::updates:
                return monitor.integration().updates.observable();
        }
        throw std::logic_error("no such source");
    }

    /// Each part is refreshed once by a turn that changes what it shows, however often, and by
    /// nothing else.
    void expectToFollow(std::map<std::string, Sources> parts) {
        using enum Source;
        parts["strip"] = {sample, log, settings, rules, updates};
        parts["update bar"] = {updates};
        parts["target"] = {sample, review, settings};
        parts["menus"] = {settings};
        for (const Source source : allSources) {
            Refreshes expected;
            for (const auto& [part, sources] : parts) {
                if (sources.contains(source)) {
                    expected[part] = 1;
                }
            }
            EXPECT_EQ(refreshesBy([&] {
                          for (int i = 0; i < 100; ++i) {
                              observable(source).changed();
                          }
                      }),
                      expected)
                << "source " << static_cast<int>(source);
        }
    }

    void openSettings(SettingsTabKind tab) {
        window().state().navigation.setSettingsTab(tab);
        window().state().navigation.setShowSettings(true);
        settle();
    }
};

TEST_F(WindowUpdatesTest, EachPartFollowsExactlyWhatItShowsOnEveryRoute) {
    showWithSample();
    for (const AppRoute route : allAppRoutes) {
        goTo(route);
        SCOPED_TRACE(std::string(title(route)));
        expectToFollow({{"page", sourcesOfPage(route)}});
    }
}

TEST_F(WindowUpdatesTest, EachOpenSheetFollowsExactlyWhatItShows) {
    using enum Source;
    showWithSample();
    openSettings(SettingsTabKind::automation);
    window().state().navigation.setShowSetupWizard(true);
    goTo(AppRoute::chat);
    std::map<std::string, Sources> parts{
        {"page", sourcesOfPage(AppRoute::chat)},
        {"setup", {navigation, settings, log, login, updates}},
        {"settings",
         {sample, log, settings, rules, navigation, provider, install, login, updates}}};
    expectToFollow(parts);
    machine.monitor().actions().local.requestPurge();
    settle();
    parts["question"] = {desk, sample, settings, log, provider, suggestions, trust, remoteScan};
    expectToFollow(parts);
}

TEST_F(WindowUpdatesTest, ABurstOfTheLogRefreshesNeitherTheProcessesNorTheTarget) {
    showProcesses();
    const Refreshes refreshes = refreshesBy([this] {
        for (int i = 0; i < 100; ++i) {
            machine.monitor().log().recordMessage("Event " + std::to_string(i));
            settle();
        }
    });
    EXPECT_THAT(refreshes, ElementsAre(Pair("strip", 100)));
    EXPECT_EQ(textOf("status.last-action"), u"Event 99"_s);
}

TEST_F(WindowUpdatesTest, ABurstOfTheReviewRefreshesOnlyTheTargetOnAPageThatDoesNotShowIt) {
    showWithSample();
    for (const AppRoute route : {AppRoute::overview, AppRoute::history}) {
        goTo(route);
        const Refreshes refreshes = refreshesBy([this] {
            for (int i = 0; i < 100; ++i) {
                machine.monitor().actions().review.setTarget(i % 2 == 0 ? 700 : 800, "editor");
                settle();
            }
        });
        EXPECT_THAT(refreshes, ElementsAre(Pair("target", 100))) << title(route);
    }
}

TEST_F(WindowUpdatesTest, ACheckByDiskAutopilotIsShownBeforeTheNextSample) {
    showWithSample();
    openSettings(SettingsTabKind::automation);
    const auto strip = [this] { return visible<Capsule>("status.automation")->toolTip(); };
    const auto* checked = window().findChild<ElidedLabel*>(u"settings.disk-autopilot.last-acted"_s);
    ASSERT_NE(checked, nullptr);
    EXPECT_EQ(checked->text(), u"No recent check"_s);
    EXPECT_FALSE(strip().contains(u"Last checked "_s));
    machine.monitor().autoRules().setLastDiskAutopilotCheckDate(machine.clock.now());
    settle();
    EXPECT_TRUE(checked->text().startsWith(u"Last checked "_s)) << checked->text().toStdString();
    EXPECT_TRUE(strip().contains(u"Last checked "_s));
}

TEST_F(WindowUpdatesTest, AnotherRouteRefreshesItsPageOnce) {
    showWithSample();
    for (const AppRoute route : {AppRoute::load, AppRoute::overview, AppRoute::history}) {
        EXPECT_THAT(refreshesBy([&] { window().state().navigation.setSelectedRoute(route); }),
                    Contains(Pair("page", 1)))
            << title(route);
    }
}

TEST_F(WindowUpdatesTest, NothingOfAMinimisedWindowIsRefreshedUntilItIsSeenAgain) {
    showWithSample();
    openSettings(SettingsTabKind::automation);
    window().showMinimized();
    settle();
    EXPECT_THAT(refreshesBy([this] { tick(); }), IsEmpty());
    EXPECT_THAT(refreshesBy([this] { window().showNormal(); }),
                testing::IsSupersetOf({Pair(std::string("settings"), testing::Ge(1)),
                                       Pair(std::string("strip"), testing::Ge(1)),
                                       Pair(std::string("page"), testing::Ge(1))}));
}

/// Where in its window each widget was whenever it was painted.
class PaintedPlaces : public QObject {
public:
    PaintedPlaces() { qApp->installEventFilter(this); }
    ~PaintedPlaces() override { qApp->removeEventFilter(this); }

    static QRect placeOf(const QWidget& widget) {
        return {widget.mapTo(widget.window(), QPoint()), widget.size()};
    }

    bool eventFilter(QObject* object, QEvent* event) override {
        const auto* painted = qobject_cast<QWidget*>(object);
        if (event->type() == QEvent::Paint && painted != nullptr) {
            places.emplace_back(painted, placeOf(*painted));
        }
        return false;
    }

    std::vector<std::pair<QPointer<const QWidget>, QRect>> places;
};

TEST_F(WindowUpdatesTest, OnlyTheFinishedArrangementIsPainted) {
    showWithSample();
    goTo(AppRoute::history);
    machine.monitor().log().recordEvent(ActivityKind::action, "An earlier event.");
    settle();
    QScrollBar* bar =
        scrollAreaAround(*visible<QWidget>("history.activity-log")).verticalScrollBar();
    bar->setValue(bar->maximum());
    settle();
    const PaintedPlaces painted;
    machine.monitor().log().recordEvent(ActivityKind::warning, std::string(600, 'W'));
    settle();
    settle();
    std::size_t compared = 0;
    std::size_t entries = 0;
    for (const auto& [widget, place] : painted.places) {
        if (widget != nullptr && widget->isVisible()) {
            EXPECT_EQ(place, PaintedPlaces::placeOf(*widget))
                << widget->metaObject()->className() << ' ' << widget->objectName().toStdString();
            ++compared;
            if (qobject_cast<const ActivityEntry*>(widget.data()) != nullptr) {
                ++entries;
            }
        }
    }
    EXPECT_GT(compared, 10U);
    EXPECT_GE(entries, 1U);
}

TEST_F(WindowUpdatesTest, TheMachinesOfTheNextScanArePaintedInTheirPlaces) {
    showWithSample();
    goTo(AppRoute::remoteMacs);
    const auto scan = [this](std::size_t machines, std::size_t troubled) {
        machine.monitor().remote().scan.finishRemoteScan(
            fleetHealth(machines, troubled, machine.clock.now()));
        settle();
        settle();
    };
    scan(8, 2);
    const QWidget* machines = visible("remote.health");
    QScrollBar* bar = scrollAreaAround(*machines).verticalScrollBar();
    bar->setValue(bar->maximum());
    settle();
    const PaintedPlaces painted;
    scan(12, 1);
    std::size_t compared = 0;
    for (const auto& [widget, place] : painted.places) {
        if (widget != nullptr && widget->isVisible() && widget != machines &&
            machines->isAncestorOf(widget)) {
            EXPECT_EQ(place, PaintedPlaces::placeOf(*widget))
                << widget->metaObject()->className() << ' ' << widget->objectName().toStdString();
            ++compared;
        }
    }
    EXPECT_GT(compared, 10U);
}

}  // namespace
}  // namespace tallowcrest
