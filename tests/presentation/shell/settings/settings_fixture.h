#pragma once

#include "presentation/shell/settings/settings_sheet.h"
#include "presentation/widgets/tab_strip.h"
#include "tests/presentation/window_fixture.h"

namespace tallowcrest {

/// A window, and its settings sheet.
class SettingsFixture : public WindowFixture {
protected:
    Navigation& navigation() { return window().state().navigation; }
    const Settings& settings() { return machine.monitor().settings(); }

    bool isOpen() {
        const auto* found = window().findChild<SettingsSheet*>();
        return found != nullptr && found->isVisible();
    }
    SettingsSheet& sheet() { return *window().findChild<SettingsSheet*>(); }
    TabStrip& strip() { return *sheet().findChild<TabStrip*>(); }
    QList<StripTab*> tabs() { return strip().findChildren<StripTab*>(); }
    StripTab& currentTab() { return *tabs().at(strip().currentIndex()); }

    void openSheet(SettingsTabKind tab) {
        if (!window().isVisible()) {
            showWithSample();
        }
        navigation().setSettingsTab(tab);
        navigation().setShowSettings(true);
        settle();
        ASSERT_TRUE(isOpen());
        ASSERT_TRUE(QTest::qWaitForWindowActive(&sheet()));
    }
};

}  // namespace tallowcrest
