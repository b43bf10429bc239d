#include "presentation/shell/status_item.h"

#include <QMenu>

#include "tests/presentation/window_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

class StatusItemTest : public WindowFixture {
protected:
    QSystemTrayIcon& iconOf(StatusItem& item) {
        return *item.findChild<QSystemTrayIcon*>(QString(), Qt::FindDirectChildrenOnly);
    }
};

TEST_F(StatusItemTest, ShowsNoFiguresUntilTheFirstSample) {
    StatusItem item(machine.monitor(), window());
    EXPECT_EQ(iconOf(item).toolTip(), u"Tallowcrest"_s);
    EXPECT_FALSE(iconOf(item).icon().isNull());
    EXPECT_FALSE(machine.monitor().isStarted());
    window().show();
    machine.finishSamples();
    settle();
    EXPECT_EQ(iconOf(item).toolTip(), u"CPU 40% MEM 59%"_s);
}

TEST_F(StatusItemTest, TheNeedleMovesInStepsThatCanBeSeen) {
    StatusItem item(machine.monitor(), window());
    window().show();
    machine.finishSamples();
    settle();
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
    window().show();
    machine.finishSamples();
    settle();
    const qint64 light = iconOf(item).icon().cacheKey();
    QApplication::setPalette(paletteFor(Appearance::dark));
    tick();
    EXPECT_NE(iconOf(item).icon().cacheKey(), light);
    QApplication::setPalette(before);
}

TEST_F(StatusItemTest, ItsMenuOffersEveryCommand) {
    StatusItem item(machine.monitor(), window());
    QStringList identifiers;
    for (const QAction* action : iconOf(item).contextMenu()->actions()) {
        identifiers.append(action->objectName());
    }
    EXPECT_EQ(identifiers,
              QStringList({u"menubar.show-dashboard"_s, u"menubar.open-optimize"_s,
                           u"menubar.auto-select"_s, u"menubar.settings"_s, u"menubar.refresh"_s,
                           u"menubar.copy-report"_s, u"menubar.export"_s, u"menubar.purge"_s,
                           u"menubar.quit-top-app"_s, u"menubar.expand-sections"_s,
                           u"menubar.collapse-sections"_s, u"menubar.quit"_s}));
}

TEST_F(StatusItemTest, ATitleOfItsMenuFollowsTheState) {
    StatusItem item(machine.monitor(), window());
    const QAction* entry = nullptr;
    for (const QAction* action : iconOf(item).contextMenu()->actions()) {
        if (action->objectName() == u"menubar.auto-select"_s) {
            entry = action;
        }
    }
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(entry->text(), u"Disable Auto Select"_s);
    for (const bool isOn : {false, true}) {
        machine.monitor().automation().set(AutomationSwitch::autoSelectTopOffender, isOn);
        settle();
        EXPECT_EQ(entry->text(), isOn ? u"Disable Auto Select"_s : u"Enable Auto Select"_s);
    }
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

}  // namespace
}  // namespace tallowcrest
