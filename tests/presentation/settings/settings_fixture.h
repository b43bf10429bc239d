#pragma once

#include <string>

#include <QTabBar>

#include "presentation/settings/settings_sheet.h"
#include "tests/presentation/window_fixture.h"

namespace tallowcrest {

/// A window, and its settings sheet.
class SettingsFixture : public WindowFixture {
protected:
    Navigation& navigation() { return machine.monitor().navigation(); }
    const Settings& settings() { return machine.monitor().settings(); }

    bool isOpen() {
        const auto* found = window().findChild<SettingsSheet*>();
        return found != nullptr && found->isVisible();
    }
    SettingsSheet& sheet() { return *window().findChild<SettingsSheet*>(); }
    QTabBar& strip() { return *sheet().findChild<QTabBar*>(); }

    void openSheet(const std::string& tab) {
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
