#include "presentation/shell/status_item.h"

#include <QMenu>

#include "tests/presentation/window_fixture.h"

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
    EXPECT_EQ(iconOf(item).toolTip(), QStringLiteral("Tallowcrest"));
    EXPECT_FALSE(iconOf(item).icon().isNull());
    EXPECT_FALSE(machine.monitor().isStarted());
    window().show();
    machine.finishSamples();
    settle();
    EXPECT_EQ(iconOf(item).toolTip(), QStringLiteral("CPU 40% MEM 59%"));
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
    EXPECT_EQ(iconOf(item).toolTip(), QStringLiteral("CPU 41% MEM 59%"));
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
    EXPECT_EQ(
        identifiers,
        QStringList({QStringLiteral("menubar.show-dashboard"),
                     QStringLiteral("menubar.open-optimize"), QStringLiteral("menubar.auto-select"),
                     QStringLiteral("menubar.settings"), QStringLiteral("menubar.refresh"),
                     QStringLiteral("menubar.copy-report"), QStringLiteral("menubar.export"),
                     QStringLiteral("menubar.purge"), QStringLiteral("menubar.quit-top-app"),
                     QStringLiteral("menubar.expand-sections"),
                     QStringLiteral("menubar.collapse-sections"), QStringLiteral("menubar.quit")}));
}

TEST_F(StatusItemTest, ATitleOfItsMenuFollowsTheState) {
    StatusItem item(machine.monitor(), window());
    const QAction* entry = nullptr;
    for (const QAction* action : iconOf(item).contextMenu()->actions()) {
        if (action->objectName() == QStringLiteral("menubar.auto-select")) {
            entry = action;
        }
    }
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(entry->text(), QStringLiteral("Disable Auto Select"));
    for (const bool isOn : {false, true}) {
        machine.monitor().automation().set(AutomationSwitch::autoSelectTopOffender, isOn);
        settle();
        EXPECT_EQ(entry->text(), isOn ? QStringLiteral("Disable Auto Select")
                                      : QStringLiteral("Enable Auto Select"));
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
        panels += widget->objectName() == QStringLiteral("menubar.panel") && widget->isVisible();
    }
    EXPECT_EQ(panels, 1);
}

}  // namespace
}  // namespace tallowcrest
