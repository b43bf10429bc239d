#include "presentation/screens/settings/settings_page.h"

#include <QPushButton>

#include "core/settings/settings.h"
#include "presentation/shell/menu_bar_entries.h"
#include "tests/presentation/shell/settings/settings_fixture.h"
#include "tests/presentation/shown_texts.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

class SettingsPageTest : public SettingsFixture {
protected:
    void showPage() {
        navigation().setSelectedRoute(AppRoute::settings);
        showWithSample();
    }
};

TEST_F(SettingsPageTest, TheHubWordForWord) {
    showPage();
    EXPECT_EQ(visible("settings.hub")->accessibleName(), u"Configuration Hub"_s);
    EXPECT_EQ(textOf("settings.hub.words"),
              u"Most configuration still lives in the native Settings sheet so it "
              "can also be opened from Tallowcrest > Settings."_s);
    EXPECT_EQ(visible<QPushButton>("settings.open")->text(), u"Open Settings"_s);
    EXPECT_EQ(visible<QPushButton>("settings.hub.setup-wizard")->text(), u"Setup Wizard"_s);
    EXPECT_EQ(visible<QPushButton>("settings.hub.install")->text(), u"Install"_s);
    EXPECT_EQ(textOf("settings.hub.auto-select.title"), u"Auto-select safest top offender"_s);
    EXPECT_EQ(textOf("settings.hub.auto-purge.title"), u"Auto-purge after sustained high memory"_s);
    EXPECT_EQ(textOf("settings.hub.auto-scan.title"), u"Auto-scan Tailscale Macs"_s);
}

TEST_F(SettingsPageTest, TheHubHasItsPartsInTheirOrder) {
    showPage();
    int below = -1;
    for (const char* each :
         {"settings.hub", "settings.hub.words", "settings.open", "settings.hub.auto-select",
          "settings.hub.auto-purge", "settings.hub.auto-scan", "settings.connection",
          "settings.connection.copy-public-key"}) {
        ASSERT_NE(visible(each), nullptr) << each;
        const int top = visible(each)->mapTo(&window(), QPoint()).y();
        EXPECT_GT(top, below) << each;
        below = top;
    }
}

TEST_F(SettingsPageTest, ConnectionSetupCopiesTheKeyAndExportsTheScript) {
    std::vector<std::string> copied;
    machine.storeOnPasteboard = [&copied](const std::string& text) { copied.push_back(text); };
    showPage();
    const QWidget* card = visible("settings.connection");
    EXPECT_EQ(card->accessibleName(), u"Connection Setup"_s);
    EXPECT_THAT(shownTexts(*card),
                testing::Contains("Remote Mac access uses Tailscale plus SSH. Keep the SSH user "
                                  "and public key setup in Settings, then verify each Mac in "
                                  "Remote Macs."));
    click("settings.connection.copy-public-key");
    EXPECT_EQ(copied.size(), 1U);
    EXPECT_EQ(lastAction(), "Copied SSH key generation command.") << "there is no key";
    click("settings.connection.export-script");
    machine.finishSamples();
    settle();
    EXPECT_EQ(machine.reportFolder->scripts.size(), 1U);
    EXPECT_EQ(lastAction(), "Exported remote SSH setup script.");
}

TEST_F(SettingsPageTest, SaysThatItSamplesUntilTheFirstSample) {
    navigation().setSelectedRoute(AppRoute::settings);
    show();
    EXPECT_EQ(textOf("settings.hub.words"), u"Sampling this Mac..."_s);
}

TEST_F(SettingsPageTest, BothButtonsOpenTheSheet) {
    showPage();
    for (const char* identifier : {"settings.open", "settings.open-sheet"}) {
        click(identifier);
        EXPECT_TRUE(isOpen()) << identifier;
        click("settings.sheet.done");
        EXPECT_FALSE(isOpen());
    }
    EXPECT_EQ(visible<QPushButton>("settings.open-sheet")->text(), u"Open Settings Sheet"_s);
}

TEST_F(SettingsPageTest, PageAndSheetShareTheirSwitches) {
    showPage();
    click("settings.hub.auto-purge");
    EXPECT_TRUE(settings().autoPurgeSustainedMemory);
    EXPECT_EQ(machine.store.read(settings_keys::autoPurgeKey), SettingsValue(true));
    openSheet(SettingsTabKind::automation);
    EXPECT_TRUE(visible<QAbstractButton>("settings.auto-purge")->isChecked());
    click("settings.auto-purge");
    EXPECT_FALSE(visible<QAbstractButton>("settings.hub.auto-purge")->isChecked());
}

TEST_F(SettingsPageTest, TheStatusItemOpensTheWindowWithTheSheet) {
    for (const auto& group : menuBarEntries(machine.monitor(), window())) {
        for (const MenuBarEntry& entry : group) {
            if (entry.title() == u"Settings"_s) {
                entry.run();
            }
        }
    }
    EXPECT_TRUE(window().isVisible());
    settle();
    EXPECT_TRUE(isOpen());
    EXPECT_EQ(QApplication::activeModalWidget(), &sheet());
}

}  // namespace
}  // namespace tallowcrest
