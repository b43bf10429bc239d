#include "presentation/shell/status_item.h"

#include <QMenu>

#include "actions/actions.h"
#include "tests/presentation/window_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

class StatusItemTest : public WindowFixture {
protected:
    QSystemTrayIcon& iconOf(StatusItem& item) {
        return *item.findChild<QSystemTrayIcon*>(QString(), Qt::FindDirectChildrenOnly);
    }

    void takeFirstSample() {
        window().show();
        machine.finishSamples();
        settle();
    }
};

TEST_F(StatusItemTest, ShowsNoFiguresUntilTheFirstSample) {
    StatusItem item(machine.monitor(), window());
    EXPECT_EQ(iconOf(item).toolTip(), u"Tallowcrest"_s);
    EXPECT_FALSE(iconOf(item).icon().isNull());
    EXPECT_FALSE(machine.monitor().isStarted());
    takeFirstSample();
    EXPECT_EQ(iconOf(item).toolTip(), u"CPU 40% MEM 59%"_s);
}

TEST_F(StatusItemTest, TheNeedleMovesInVisibleSteps) {
    StatusItem item(machine.monitor(), window());
    takeFirstSample();
    const qint64 at40 = iconOf(item).icon().cacheKey();
    machine.metrics->processes[0].cpu = 134.0;
    tick();
    EXPECT_EQ(iconOf(item).icon().cacheKey(), at40);
    EXPECT_EQ(iconOf(item).toolTip(), u"CPU 41% MEM 59%"_s);
    machine.metrics->processes[0].cpu = 250.0;
    tick();
    EXPECT_NE(iconOf(item).icon().cacheKey(), at40);
}

TEST_F(StatusItemTest, TheIconFollowsTheAppearance) {
    const QPalette before = QApplication::palette();
    QApplication::setPalette(paletteFor(Appearance::light));
    StatusItem item(machine.monitor(), window());
    takeFirstSample();
    const qint64 light = iconOf(item).icon().cacheKey();
    QApplication::setPalette(paletteFor(Appearance::dark));
    tick();
    EXPECT_NE(iconOf(item).icon().cacheKey(), light);
    QApplication::setPalette(before);
}

TEST_F(StatusItemTest, ItsMenuOffersEveryCommandUnderItsCurrentTitle) {
    StatusItem item(machine.monitor(), window());
    QStringList identifiers;
    for (const QAction* action : iconOf(item).contextMenu()->actions()) {
        if (action->isVisible()) {
            identifiers.append(action->isSeparator() ? u"|"_s : action->objectName());
        }
    }
    EXPECT_EQ(identifiers.join(u' '),
              u"menubar.show-dashboard menubar.open-optimize menubar.analyze | "
              "menubar.auto-select "
              "menubar.settings menubar.refresh | menubar.copy-report menubar.export | "
              "menubar.purge menubar.quit-top-app | menubar.scan-remotes "
              "menubar.export-setup-script | menubar.launch-at-login menubar.setup-wizard | "
              "menubar.expand-sections "
              "menubar.collapse-sections | menubar.emergency-stop | menubar.quit"_s);
    const auto* entry = iconOf(item).contextMenu()->findChild<QAction*>(u"menubar.auto-select"_s);
    EXPECT_EQ(entry->text(), u"Disable Auto Select"_s);
    for (const bool isOn : {false, true}) {
        machine.monitor().actions().automation.set(AutomationSwitch::autoSelectTopOffender, isOn);
        settle();
        EXPECT_EQ(entry->text(), isOn ? u"Disable Auto Select"_s : u"Enable Auto Select"_s);
    }
}

TEST_F(StatusItemTest, WhileStoppedItsMenuOffersOnlyTheWayBack) {
    StatusItem item(machine.monitor(), window());
    const auto* stop = iconOf(item).contextMenu()->findChild<QAction*>(u"menubar.emergency-stop"_s);
    auto* resume = iconOf(item).contextMenu()->findChild<QAction*>(u"menubar.resume-manual-mode"_s);
    EXPECT_FALSE(resume->isVisible());
    machine.monitor().actions().automation.engageEmergencyStop();
    settle();
    EXPECT_FALSE(stop->isVisible());
    ASSERT_TRUE(resume->isVisible());
    resume->trigger();
    settle();
    EXPECT_TRUE(stop->isVisible());
    EXPECT_FALSE(machine.monitor().actions().automation.isStopEngaged());
}

TEST_F(StatusItemTest, ADoubleClickOpensThePanelAndLeavesItOpen) {
    StatusItem item(machine.monitor(), window());
    QSystemTrayIcon& icon = iconOf(item);
    emit icon.activated(QSystemTrayIcon::Trigger);
    emit icon.activated(QSystemTrayIcon::DoubleClick);
    settle();
    int panels = 0;
    for (const QWidget* widget : QApplication::topLevelWidgets()) {
        panels += widget->objectName() == u"menubar.panel"_s && widget->isVisible();
    }
    EXPECT_EQ(panels, 1);
}

TEST_F(StatusItemTest, OpensItsMenuItselfOnlyWhereTheDesktopDoesNot) {
    for (const auto& [opening, isOfItem] : {std::pair{StatusItem::ContextMenu::byDesktop, false},
                                            std::pair{StatusItem::ContextMenu::byItem, true}}) {
        StatusItem item(machine.monitor(), window(), opening);
        QSystemTrayIcon& icon = iconOf(item);
        EXPECT_EQ(icon.contextMenu() == nullptr, isOfItem);
        emit icon.activated(QSystemTrayIcon::Trigger);
        settle();
        EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
        emit icon.activated(QSystemTrayIcon::Context);
        settle();
        const QWidget* const menu = QApplication::activePopupWidget();
        ASSERT_EQ(menu != nullptr, isOfItem);
        if (isOfItem) {
            EXPECT_NE(menu->findChild<QAction*>(u"menubar.emergency-stop"_s), nullptr);
        }
    }
}

}  // namespace
}  // namespace tallowcrest
