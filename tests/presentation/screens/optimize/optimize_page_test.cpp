#include "presentation/screens/optimize/optimize_page.h"

#include <set>

#include <QPushButton>

#include "actions/actions.h"
#include "tests/presentation/window_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

class OptimizePageTest : public WindowFixture {
protected:
    void showCleanup() {
        window().state().navigation.setSelectedRoute(AppRoute::optimize);
        showWithSample();
    }

    const std::optional<ConfirmationRequest>& pending() {
        return machine.monitor().confirmations().pendingConfirmation();
    }

    QPushButton& purge() { return *visible<QPushButton>("cleanup.purge-caches"); }

    QString explanation() { return textOf("cleanup.explanation"); }
};

TEST_F(OptimizePageTest, SaysWhatTheStepIsAboutWordForWord) {
    showCleanup();
    EXPECT_EQ(visible("cleanup.flow")->accessibleName(), u"Local Cleanup Flow"_s);
    EXPECT_EQ(textOf("cleanup.step"),
              u"1. Select an offender to review. No optimization has run yet."_s);
    EXPECT_EQ(textOf("cleanup.hint"),
              u"Need the full sortable list? Open Processes in the sidebar. This "
              "workspace stays focused on the selected target and the next safe "
              "action."_s);
    EXPECT_EQ(textOf("cleanup.promise"),
              u"Selecting marks a target for review. Purge, Quit Process, and Quit "
              "App Group all ask for confirmation before changing anything."_s);
    QStringList titles;
    for (const char* identifier : {"cleanup.suggest-safe-target", "cleanup.select-top-app",
                                   "cleanup.purge-caches", "cleanup.activity-monitor"}) {
        titles.append(visible<QPushButton>(identifier)->text());
    }
    EXPECT_EQ(titles.join(u'|'),
              u"Suggest Safe Target|Select Top App|Purge Caches|Activity Monitor"_s);
    EXPECT_EQ(visible("cleanup.offender")->accessibleName(), u"Selected Offender"_s);
    EXPECT_EQ(explanation(), u"Select an app or process to see why it matters."_s);
}

TEST_F(OptimizePageTest, TheWorkspaceBarIsInViewAtOnce) {
    window().resize(640, 440);
    showCleanup();
    const QWidget* bar = visible("optimize.workspace");
    const QRect place(bar->mapTo(&window(), QPoint()), bar->size());
    EXPECT_TRUE(window().rect().contains(place));
}

TEST_F(OptimizePageTest, SaysThatItSamplesUntilTheFirstSample) {
    window().state().navigation.setSelectedRoute(AppRoute::optimize);
    show();
    EXPECT_EQ(explanation(), u"Sampling this Mac..."_s);
    click("cleanup.suggest-safe-target");
    EXPECT_EQ(lastAction(), "No sample is available yet.");
    click("cleanup.select-top-app");
    EXPECT_EQ(lastAction(), "No app impact sample is available yet.");
    EXPECT_EQ(selectedPID(), std::nullopt);
    machine.finishSamples();
    settle();
    EXPECT_EQ(explanation(), u"Select an app or process to see why it matters."_s);
}

// The actions ------------------------------------------------------------------------------------

TEST_F(OptimizePageTest, SuggestSafeTargetSelectsAndKeepsTheStep) {
    showCleanup();
    click("cleanup.suggest-safe-target");
    EXPECT_EQ(selectedPID(), 800);
    EXPECT_EQ(lastAction(),
              "Optimize Safely selected photo-indexer. Review it before quitting anything.");
    EXPECT_EQ(pending(), std::nullopt);
    EXPECT_EQ(textOf("cleanup.step"),
              u"1. Select an offender to review. No optimization has run yet."_s);
    EXPECT_TRUE(explanation().startsWith(u"photo-indexer is using 130.0% CPU"_s));
}

TEST_F(OptimizePageTest, SuggestSafeTargetUnderPressureAsksForAPurge) {
    machine.metrics->memory.pressure = 82.0;
    showCleanup();
    click("cleanup.suggest-safe-target");
    ASSERT_TRUE(pending().has_value());
    EXPECT_EQ(pending()->title, "Purge file caches?");
    EXPECT_EQ(textOf("cleanup.step"), u"3. Confirm cache purge, or cancel and keep reviewing."_s);
    EXPECT_EQ(machine.actions.cachePurge->count, 0);
    machine.monitor().confirmations().cancelPending();
    settle();
}

TEST_F(OptimizePageTest, SelectTopAppSelectsAndUpdatesTheStep) {
    showCleanup();
    for (const bool byKey : {false, true}) {
        machine.monitor().actions().review.clearOperationTarget();
        if (byKey) {
            visible("cleanup.select-top-app")->setFocus(Qt::TabFocusReason);
            press(Qt::Key_Space);
        } else {
            click("cleanup.select-top-app");
        }
        EXPECT_EQ(selectedPID(), 800);
        EXPECT_EQ(lastAction(), "Selected the heaviest process inside photo-indexer.");
        EXPECT_EQ(textOf("cleanup.step"),
                  u"2. photo-indexer is selected for review. Nothing has been quit or "
                  "purged yet."_s);
    }
}

TEST_F(OptimizePageTest, PurgeCachesAsksForConfirmationFirst) {
    showCleanup();
    click("cleanup.purge-caches");
    ASSERT_TRUE(pending().has_value());
    EXPECT_EQ(pending()->kind, "local_purge");
    EXPECT_EQ(textOf("cleanup.step"), u"3. Confirm cache purge, or cancel and keep reviewing."_s);
    machine.monitor().confirmations().cancelPending();
    machine.finishSamples();
    settle();
    EXPECT_EQ(machine.actions.cachePurge->count, 0);
    EXPECT_TRUE(purge().isEnabled());
}

TEST_F(OptimizePageTest, ARunningPurgeIsShownAndDisablesItsButton) {
    showCleanup();
    const QRect place = purge().geometry();
    for (const PurgeResult& result : {PurgeResult{PurgeResult::Kind::purged, {}},
                                      PurgeResult{PurgeResult::Kind::failed, "no such tool"}}) {
        machine.actions.cachePurge->result = result;
        machine.monitor().actions().local.requestPurge();
        machine.monitor().confirmations().confirmPending();
        settle();
        EXPECT_EQ(purge().text(), u"Purging…"_s);
        EXPECT_EQ(purge().accessibleName(), u"Purging…"_s);
        EXPECT_FALSE(purge().isEnabled());
        EXPECT_EQ(purge().geometry(), place) << "the buttons beside it stay where they are";
        machine.finishSamples();
        settle();
        EXPECT_EQ(purge().text(), u"Purge Caches"_s);
        EXPECT_EQ(purge().accessibleName(), u"Purge Caches"_s);
        EXPECT_TRUE(purge().isEnabled());
        EXPECT_EQ(purge().geometry(), place);
    }
    EXPECT_EQ(machine.actions.cachePurge->count, 2);
    EXPECT_EQ(lastAction(), "Could not run purge: no such tool");
}

TEST_F(OptimizePageTest, TheCardAsksWhetherToQuitTheTargetOrItsGroup) {
    machine.addProcess(901, "/opt/chrome", 50.0, 500.0);
    machine.addProcess(902, "/opt/chrome helper", 25.0, 250.0);
    showCleanup();
    machine.monitor().actions().review.setTarget(901, "Google Chrome");
    settle();
    click("cleanup.quit-process");
    EXPECT_EQ(textOf("confirmation.title"), u"Quit chrome?"_s);
    EXPECT_EQ(pending()->kind, "local_quit_process");
    EXPECT_EQ(pending()->pid, 901);
    click("confirmation.cancel");
    click("cleanup.quit-app");
    EXPECT_EQ(textOf("confirmation.title"), u"Quit Google Chrome?"_s);
    EXPECT_EQ(pending()->kind, "local_quit_app");
    EXPECT_EQ(textOf("confirmation.processes"), u"2 processes: 901, 902"_s);
    click("confirmation.cancel");
    machine.finishSamples();
    EXPECT_TRUE(machine.actions.processes->signalled.empty());
}

TEST_F(OptimizePageTest, TheCardDoesNotAskAboutAProtectedTarget) {
    showCleanup();
    const auto expectQuittable = [this](bool process, bool app) {
        settle();
        EXPECT_EQ(visible("cleanup.quit-process")->isEnabled(), process);
        EXPECT_EQ(visible("cleanup.quit-app")->isEnabled(), app);
    };
    expectQuittable(false, false);
    machine.monitor().actions().review.selectProcess(machine.metrics->processes[2]);
    expectQuittable(false, false);
    EXPECT_EQ(visible("cleanup.quit-process")->accessibleDescription(),
              u"systemd is protected from quit actions"_s);
    machine.monitor().actions().review.selectProcess(machine.metrics->processes[0]);
    expectQuittable(true, true);
    click("cleanup.never-quit");
    expectQuittable(false, false);
}

TEST_F(OptimizePageTest, TheTargetIsBesideTheFlowWhereThereIsRoom) {
    showCleanup();
    machine.monitor().actions().review.selectTopApp();
    for (const int width : {1600, 1080}) {
        window().resize(width, 900);
        settle();
        const QPoint flow = visible("cleanup.flow")->mapTo(&window(), QPoint());
        const QPoint offender = visible("cleanup.offender")->mapTo(&window(), QPoint());
        const QPoint disk = visible("cleanup.disk-autopilot")->mapTo(&window(), QPoint());
        EXPECT_GT(disk.y(), flow.y()) << width;
        if (width == 1600) {
            EXPECT_EQ(offender.y(), flow.y());
            EXPECT_GT(offender.x(), flow.x());
        } else {
            EXPECT_GT(offender.y(), disk.y());
        }
    }
}

TEST_F(OptimizePageTest, ActivityMonitorOpensIt) {
    int opened = 0;
    machine.openActivityMonitor = [&opened] {
        ++opened;
        return true;
    };
    showCleanup();
    click("cleanup.activity-monitor");
    EXPECT_EQ(opened, 1);
}

// The keyboard and sizes -------------------------------------------------------------------------

TEST_F(OptimizePageTest, TabFollowsTheVisualOrder) {
    showCleanup();
    machine.monitor().actions().review.selectTopApp();
    settle();
    visible("optimize.cleanup")->setFocus(Qt::TabFocusReason);
    EXPECT_EQ(tabOrder(13),
              u"optimize.cleanup cleanup.suggest-safe-target cleanup.select-top-app "
              "cleanup.purge-caches cleanup.activity-monitor "
              "section.autoRules cleanup.review-disk-cleanup cleanup.find-offenders "
              "cleanup.emergency-stop cleanup.quit-process "
              "cleanup.quit-app cleanup.never-quit cleanup.helpers"_s);
}

class OptimizePageAtWidth : public OptimizePageTest, public testing::WithParamInterface<int> {};

TEST_P(OptimizePageAtWidth, NoWordIsCutAndNothingOverlaps) {
    window().resize(GetParam(), 600);
    showCleanup();
    machine.monitor().actions().review.selectTopApp();
    settle();
    ASSERT_EQ(window().width(), GetParam());
    const QWidget* page = visible("optimize.workspace")->parentWidget();
    for (const ElidedLabel* label : page->findChildren<ElidedLabel*>()) {
        if (label->isVisible() && !label->text().isEmpty()) {
            ASSERT_FALSE(label->shownLines().isEmpty());
            EXPECT_FALSE(label->shownLines().last().endsWith(u'…')) << label->text().toStdString();
            EXPECT_GE(label->height(), label->minimumSizeHint().height());
        }
    }
    for (const QPushButton* button : page->findChildren<QPushButton*>()) {
        if (button->isVisible()) {
            EXPECT_GE(button->width(), button->sizeHint().width()) << button->text().toStdString();
            EXPECT_TRUE(button->parentWidget()->rect().contains(button->geometry()))
                << button->text().toStdString();
        }
    }
    // No widget overlaps a sibling.
    for (const QWidget* parent : page->findChildren<QWidget*>()) {
        std::vector<const QWidget*> shown;
        for (const QObject* child : parent->children()) {
            const auto* widget = qobject_cast<const QWidget*>(child);
            if (widget != nullptr && widget->isVisible()) {
                shown.push_back(widget);
            }
        }
        const bool isTable = qobject_cast<const QAbstractScrollArea*>(parent) != nullptr;
        for (std::size_t i = 0; !isTable && i < shown.size(); ++i) {
            for (std::size_t j = i + 1; j < shown.size(); ++j) {
                EXPECT_FALSE(shown[i]->geometry().intersects(shown[j]->geometry()))
                    << shown[i]->objectName().toStdString() << " and "
                    << shown[j]->objectName().toStdString() << " in "
                    << parent->objectName().toStdString();
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Widths, OptimizePageAtWidth,
                         testing::Values(640, 700, 860, 900, 1080, 1256, 1600),
                         testing::PrintToStringParamName());

TEST_F(OptimizePageTest, EveryControlHasANameADescriptionAndAnIdentifier) {
    showCleanup();
    machine.monitor().actions().review.selectTopApp();
    settle();
    const QWidget* page = visible("optimize.workspace")->parentWidget();
    std::set<QString> identifiers;
    int controls = 0;
    for (const QAbstractButton* button : page->findChildren<QAbstractButton*>()) {
        if (!button->isVisible()) {
            continue;
        }
        ++controls;
        EXPECT_FALSE(button->accessibleName().isEmpty()) << button->objectName().toStdString();
        EXPECT_FALSE(button->accessibleDescription().isEmpty())
            << button->objectName().toStdString();
        EXPECT_TRUE(identifiers.insert(button->objectName()).second)
            << button->objectName().toStdString();
    }
    EXPECT_EQ(controls, 15)
        << "four steps, four actions, the section, its two, the stop, two that quit and "
           "Never Quit";
}

}  // namespace
}  // namespace tallowcrest
