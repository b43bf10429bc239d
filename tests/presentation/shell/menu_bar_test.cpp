#include <utility>

#include <QAccessible>
#include <QPushButton>

#include "actions/actions.h"
#include "presentation/shell/confirmation_dialog.h"
#include "presentation/shell/menu_bar_entries.h"
#include "presentation/shell/menu_bar_panel.h"
#include "presentation/widgets/stable_line_graph.h"
#include "tests/presentation/window_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::SizeIs;

class MenuBarTest : public WindowFixture {
protected:
    MenuBarPanel& panel() {
        if (panel_ == nullptr) {
            panel_ = std::make_unique<MenuBarPanel>(machine.monitor(),
                                                    menuBarEntries(machine.monitor(), window()));
        }
        return *panel_;
    }

    void openPanel() {
        panel().toggleAt({10, 10});
        settle();
        ASSERT_TRUE(panel().isVisible());
    }

    /// The text of a line of the panel, or "(not shown)".
    QString line(const char* identifier) {
        const auto* label = panel().findChild<ElidedLabel*>(QString::fromLatin1(identifier));
        return label != nullptr && label->isVisible() ? label->text() : u"(not shown)"_s;
    }

    void choose(const char* identifier) {
        auto* button = panel().findChild<QPushButton*>(QString::fromLatin1(identifier));
        ASSERT_NE(button, nullptr) << identifier;
        QTest::mouseClick(button, Qt::LeftButton);
        settle();
    }

    void recommend(const std::string& title, Recommendation::Severity severity) {
        Recommendation recommendation;
        recommendation.title = title;
        recommendation.severity = severity;
        machine.recommendations = {recommendation};
    }

    std::unique_ptr<MenuBarPanel> panel_;
};

TEST_F(MenuBarTest, PanelSaysThatItSamplesUntilTheFirstSample) {
    openPanel();
    EXPECT_EQ(line("menubar.load"), u"Sampling..."_s);
    EXPECT_EQ(line("menubar.top-group"), u"(not shown)"_s);
    EXPECT_EQ(line("menubar.latest"), u"(not shown)"_s);
}

TEST_F(MenuBarTest, ShowingThePanelFirstStartsMonitoring) {
    panel();
    EXPECT_FALSE(machine.monitor().isStarted());
    openPanel();
    EXPECT_TRUE(machine.monitor().isStarted());
    EXPECT_EQ(machine.workQueue.pendingCount(), 1U);
    window().show();
    settle();
    EXPECT_EQ(machine.workQueue.pendingCount(), 1U);
    EXPECT_THAT(machine.mainQueue.timerIntervals(), SizeIs(1));
}

TEST_F(MenuBarTest, PanelShowsLoadTopGroupAndLatest) {
    recommend("Memory is tight", Recommendation::Severity::caution);
    openPanel();
    machine.finishSamples();
    settle();
    EXPECT_EQ(line("menubar.load"), u"CPU 40% · Memory 59%"_s);
    EXPECT_EQ(line("menubar.top-group"), u"Top: photo-indexer · 2.0 GB"_s);
    EXPECT_EQ(line("menubar.latest"), u"Memory is tight · Caution"_s);
    machine.metrics->processes[0].cpu = 10.0;
    tick();
    EXPECT_EQ(line("menubar.load"), u"CPU 10% · Memory 59%"_s);
    EXPECT_EQ(line("menubar.top-group"), u"Top: editor · 1.0 GB"_s);
}

TEST_F(MenuBarTest, LinesWithoutContentAreHidden) {
    machine.metrics->processes.clear();
    machine.recommendations.emplace();
    openPanel();
    machine.finishSamples();
    settle();
    EXPECT_EQ(line("menubar.load"), u"CPU 0% · Memory 59%"_s);
    EXPECT_EQ(line("menubar.top-group"), u"(not shown)"_s);
    EXPECT_EQ(line("menubar.latest"), u"(not shown)"_s);
}

TEST_F(MenuBarTest, AHiddenPanelDoesNoWorkAndIsUpToDateWhenItOpens) {
    openPanel();
    machine.finishSamples();
    settle();
    panel().toggleAt({10, 10});
    ASSERT_FALSE(panel().isVisible());
    machine.metrics->processes[0].cpu = 10.0;
    tick();
    EXPECT_EQ(panel().findChild<ElidedLabel*>(u"menubar.load"_s)->text(),
              u"CPU 40% · Memory 59%"_s);
    openPanel();
    EXPECT_EQ(line("menubar.load"), u"CPU 10% · Memory 59%"_s);
    QTest::keyClick(&panel(), Qt::Key_Escape);
    EXPECT_FALSE(panel().isVisible());
}

TEST_F(MenuBarTest, LosingTheFocusClosesThePanelAndTheSameClickDoesNotReopenIt) {
    show();
    openPanel();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&panel()));
    window().activateWindow();
    settle();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));
    EXPECT_FALSE(panel().isVisible());
    panel().toggleAt({10, 10});
    EXPECT_FALSE(panel().isVisible());
    openPanel();
}

TEST_F(MenuBarTest, ThePanelIsAccessible) {
    openPanel();
    QAccessibleInterface* application = QAccessible::queryAccessibleInterface(qApp);
    ASSERT_NE(application, nullptr);
    bool isThere = false;
    for (int i = 0; i < application->childCount(); ++i) {
        isThere = isThere || application->child(i)->object() == &panel();
    }
    EXPECT_TRUE(isThere);
}

TEST_F(MenuBarTest, PanelStaysOnItsScreen) {
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    for (const QPoint& anchor : {screen.topLeft(), screen.topRight(), screen.bottomLeft(),
                                 screen.bottomRight(), screen.center(), QPoint(-500, -500)}) {
        panel().toggleAt(anchor);
        settle();
        EXPECT_TRUE(screen.contains(panel().geometry()))
            << anchor.x() << ' ' << anchor.y() << " gave " << panel().x() << ' ' << panel().y();
        panel().hide();
        settle();
    }
}

TEST_F(MenuBarTest, APanelThatGrowsStaysOnItsScreen) {
    recommend("Memory is tight", Recommendation::Severity::urgent);
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    panel().toggleAt(screen.bottomRight());
    settle();
    const int before = panel().height();
    machine.finishSamples();
    settle();
    EXPECT_GT(panel().height(), before);
    EXPECT_TRUE(screen.contains(panel().geometry()));
}

TEST_F(MenuBarTest, ACommandOpensItsRouteInAClosedWindow) {
    showWithSample();
    for (const auto& [command, title] :
         {std::pair{"menubar.show-dashboard", "Overview"}, {"menubar.open-optimize", "Optimize"}}) {
        goTo(AppRoute::chat);
        window().close();
        openPanel();
        choose(command);
        EXPECT_TRUE(window().isVisible());
        EXPECT_EQ(textOf("page.title"), QLatin1String(title));
        EXPECT_FALSE(panel().isVisible());
    }
    window().close();
    openPanel();
    choose("menubar.settings");
    EXPECT_TRUE(window().isVisible());
    EXPECT_NE(visible("settings.sheet"), nullptr);
    EXPECT_FALSE(panel().isVisible());
}

TEST_F(MenuBarTest, RefreshTakesASample) {
    openPanel();
    machine.finishSamples();
    choose("menubar.refresh");
    EXPECT_EQ(machine.workQueue.pendingCount(), 1U);
}

TEST_F(MenuBarTest, PurgeShowsTheWindowAndAsksForConfirmation) {
    showWithSample();
    const auto purgeFromPanel = [this] {
        openPanel();
        choose("menubar.purge");
        EXPECT_TRUE(window().isVisible());
        EXPECT_FALSE(window().isMinimized());
        EXPECT_EQ(textOf("confirmation.title"), u"Purge file caches?"_s);
        click("confirmation.cancel");
        EXPECT_EQ(machine.actions.cachePurge->count, 0);
    };
    purgeFromPanel();
    window().showMinimized();
    settle();
    purgeFromPanel();
    window().close();
    settle();
    purgeFromPanel();
}

TEST_F(MenuBarTest, PurgePurgesOnceConfirmed) {
    showWithSample();
    openPanel();
    choose("menubar.purge");
    setSettlingTime(*window().findChild<ConfirmationDialog*>(), std::chrono::milliseconds(0));
    settle();
    click("confirmation.confirm");
    machine.finishSamples();
    EXPECT_EQ(machine.actions.cachePurge->count, 1);
}

TEST_F(MenuBarTest, QuitTopAppAsksForTheHeaviestGroupAndARefusalIsShownInTheWindow) {
    showWithSample();
    const auto quitTopApp = [this] {
        window().close();
        openPanel();
        choose("menubar.quit-top-app");
        EXPECT_TRUE(window().isVisible());
    };
    quitTopApp();
    EXPECT_EQ(textOf("confirmation.title"), u"Quit photo-indexer?"_s);
    click("confirmation.cancel");
    machine.metrics->processes.clear();
    tick();
    quitTopApp();
    EXPECT_EQ(textOf("status.last-action"), u"Select an app group first."_s);
    EXPECT_EQ(visible("confirmation.cancel"), nullptr);
}

TEST_F(MenuBarTest, AutoSelectIsToggledAndItsTitleFollows) {
    const auto title = [this] {
        const auto* row = panel().findChild<QPushButton*>(u"menubar.auto-select"_s);
        EXPECT_EQ(row->accessibleName(), row->text());
        return row->text();
    };
    const Automation& automation = machine.monitor().actions().automation;
    openPanel();
    EXPECT_EQ(title(), u"Disable Auto Select"_s);
    choose("menubar.auto-select");
    EXPECT_FALSE(automation.isOn(AutomationSwitch::autoSelectTopOffender));
    EXPECT_EQ(lastAction(), "Auto-select top offender disabled.");
    EXPECT_FALSE(window().isVisible()) << "there is nothing to read";
    openPanel();
    EXPECT_EQ(title(), u"Enable Auto Select"_s);
    machine.monitor().actions().automation.set(AutomationSwitch::autoSelectTopOffender, true);
    settle();
    EXPECT_EQ(title(), u"Disable Auto Select"_s) << "while the panel is open";
    machine.monitor().actions().automation.engageEmergencyStop();
    settle();
    EXPECT_EQ(title(), u"Enable Auto Select"_s);
    choose("menubar.auto-select");
    EXPECT_TRUE(window().isVisible()) << "the refusal is shown there";
    EXPECT_EQ(textOf("status.last-action"),
              u"Auto-select remains off while Emergency Stop is engaged."_s);
}

TEST_F(MenuBarTest, TheReportIsCopiedAndExportedFromThePanel) {
    std::vector<std::string> copied;
    machine.storeOnPasteboard = [&copied](const std::string& text) { copied.push_back(text); };
    openPanel();
    choose("menubar.copy-report");
    EXPECT_TRUE(copied.empty());
    EXPECT_EQ(lastAction(), "Monitoring started.");
    EXPECT_FALSE(window().isVisible());
    openPanel();
    choose("menubar.export");
    EXPECT_TRUE(window().isVisible()) << "the refusal is shown there";
    EXPECT_EQ(textOf("status.last-action"), u"No diagnostic sample is available yet."_s);
    machine.finishSamples();
    openPanel();
    choose("menubar.copy-report");
    EXPECT_EQ(copied.size(), 1U);
    EXPECT_EQ(lastAction(), "Copied a performance report to the clipboard.");
}

TEST_F(MenuBarTest, AnExportFromThePanelBringsUpTheWindowOnlyWhenItFails) {
    openPanel();
    machine.finishSamples();
    choose("menubar.export");
    machine.finishSamples();
    EXPECT_THAT(machine.reportFolder->revealed, SizeIs(1));
    EXPECT_FALSE(window().isVisible());
    machine.reportFolder->problem = "No space left on device";
    openPanel();
    choose("menubar.export");
    EXPECT_FALSE(window().isVisible()) << "it is still being written";
    machine.finishSamples();
    settle();
    EXPECT_TRUE(window().isVisible());
    EXPECT_EQ(textOf("status.last-action"),
              u"Could not export diagnostics: No space left on device"_s);
}

TEST_F(MenuBarTest, AScanThatIsRefusedAndAScriptThatCannotBeWrittenBringUpTheWindow) {
    openPanel();
    machine.finishSamples();
    choose("menubar.export-setup-script");
    machine.finishSamples();
    EXPECT_THAT(machine.reportFolder->scripts, SizeIs(1));
    EXPECT_FALSE(window().isVisible());
    machine.reportFolder->problem = "No space left on device";
    openPanel();
    choose("menubar.export-setup-script");
    machine.finishSamples();
    settle();
    EXPECT_TRUE(window().isVisible());
    EXPECT_EQ(textOf("status.last-action"),
              u"Could not export remote setup script: No space left on device"_s);
    window().close();
    openPanel();
    choose("menubar.scan-remotes");
    EXPECT_TRUE(window().isVisible());
    EXPECT_EQ(textOf("status.last-action"), u"No online Tailscale Macs are available to scan."_s);
}

TEST_F(MenuBarTest, TheStopIsOfferedUntilItIsEngagedAndThenTheWayBack) {
    const Automation& automation = machine.monitor().actions().automation;
    const auto isOffered = [this](const char* command) {
        return panel().findChild<QPushButton*>(QString::fromLatin1(command))->isVisible();
    };
    openPanel();
    const int height = panel().height();
    EXPECT_FALSE(isOffered("menubar.resume-manual-mode"));
    choose("menubar.emergency-stop");
    EXPECT_TRUE(automation.isStopEngaged());
    EXPECT_FALSE(panel().isVisible());
    openPanel();
    EXPECT_FALSE(isOffered("menubar.emergency-stop"));
    EXPECT_EQ(panel().height(), height);
    choose("menubar.resume-manual-mode");
    EXPECT_FALSE(automation.isStopEngaged());
    openPanel();
    EXPECT_TRUE(isOffered("menubar.emergency-stop"));
    EXPECT_FALSE(isOffered("menubar.resume-manual-mode"));
}

TEST_F(MenuBarTest, TheGraphShowsTheSessionWhileThePanelIsVisible) {
    openPanel();
    const auto* graph = panel().findChild<StableLineGraph*>(u"menubar.graph"_s);
    ASSERT_NE(graph, nullptr);
    EXPECT_FALSE(graph->isVisible()) << "before the first sample";
    machine.finishSamples();
    settle();
    EXPECT_TRUE(graph->isVisible());
    EXPECT_EQ(graph->accessibleValue(), u"CPU 40 percent, Memory 59 percent"_s);
    panel().toggleAt({10, 10});
    machine.metrics->processes[0].cpu = 10.0;
    tick();
    EXPECT_EQ(graph->accessibleValue(), u"CPU 40 percent, Memory 59 percent"_s);
    openPanel();
    EXPECT_EQ(graph->accessibleValue(), u"CPU 10 percent, Memory 59 percent"_s);
}

TEST_F(MenuBarTest, PanelAndContextMenuOfferTheSameCommands) {
    QStringList groups;
    QStringList titles;
    for (const std::vector<MenuBarEntry>& group : menuBarEntries(machine.monitor(), window())) {
        QStringList ofGroup;
        for (const MenuBarEntry& entry : group) {
            ofGroup.append(entry.title());
        }
        groups.append(ofGroup.join(u'|'));
        titles.append(ofGroup);
    }
    EXPECT_EQ(groups.join(u'\n').toStdString(),
              "Show Dashboard|Open Optimize|Local Analyze\n"
              "Disable Auto Select|Settings|Refresh\n"
              "Copy Report|Export Diagnostics\n"
              "Purge File Caches|Quit Top App\n"
              "Scan Remote Macs|Export Remote SSH Setup Script\n"
              "Enable Launch at Login|Setup Wizard\n"
              "Expand Dashboard Sections|Collapse Dashboard Sections\n"
              "Emergency Stop|Resume Manual Mode\n"
              "Quit Tallowcrest");
    QStringList onPanel;
    for (const QPushButton* button : panel().findChildren<QPushButton*>()) {
        onPanel.append(button->text());
        EXPECT_FALSE(button->objectName().isEmpty());
        EXPECT_EQ(button->accessibleName(), button->text());
    }
    EXPECT_EQ(onPanel, titles);
}

}  // namespace
}  // namespace tallowcrest
