#include "presentation/screens/automation/automation_toggles.h"

#include <QAccessible>

#include "core/settings_keys.h"
#include "presentation/widgets/icon_view.h"
#include "presentation/widgets/theme.h"
#include "presentation/widgets/toggle_switch.h"
#include "tests/presentation/window_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

struct Rule {
    AutomationSwitch which;
    const char* identifier;
    std::string_view key;
};

constexpr Rule rules[] = {
    {AutomationSwitch::autoSelectTopOffender, "probe.auto-select", settings_keys::autoSelectKey},
    {AutomationSwitch::autoPurgeSustainedMemory, "probe.auto-purge", settings_keys::autoPurgeKey},
    {AutomationSwitch::autoScanRemoteMacs, "probe.auto-scan", settings_keys::autoRemoteScanKey},
};

class AutomationTogglesTest : public WindowFixture {
protected:
    AutomationToggles& toggles() {
        if (toggles_ == nullptr) {
            toggles_ = std::make_unique<AutomationToggles>(machine.monitor(), u"probe"_s);
            toggles_->resize(480, 320);
            toggles_->show();
            toggles_->activateWindow();
            settle();
            EXPECT_TRUE(QTest::qWaitForWindowActive(toggles_.get()));
        }
        return *toggles_;
    }
    ToggleSwitch& toggle(const char* identifier) {
        return *toggles().findChild<ToggleSwitch*>(QString::fromLatin1(identifier));
    }
    QString word(const char* identifier, const char* part) {
        const auto* label = toggles().findChild<ElidedLabel*>(QString::fromLatin1(identifier) +
                                                              QString::fromLatin1(part));
        return label->isVisible() ? label->text() : u"(not shown)"_s;
    }
    bool isOn(AutomationSwitch which) { return machine.monitor().automation().isOn(which); }

    std::unique_ptr<AutomationToggles> toggles_;
};

TEST_F(AutomationTogglesTest, EachSwitchSetsItsFieldAndStoresIt) {
    for (const Rule& rule : rules) {
        const bool before = isOn(rule.which);
        EXPECT_EQ(toggle(rule.identifier).isChecked(), before);
        QTest::mouseClick(&toggle(rule.identifier), Qt::LeftButton);
        EXPECT_EQ(isOn(rule.which), !before) << rule.identifier;
        EXPECT_EQ(toggle(rule.identifier).isChecked(), !before);
        EXPECT_EQ(machine.store.read(rule.key), SettingsValue(!before));
        QTest::mouseClick(&toggle(rule.identifier), Qt::LeftButton);
        EXPECT_EQ(isOn(rule.which), before);
        EXPECT_EQ(machine.store.read(rule.key), SettingsValue(before));
    }
}

TEST_F(AutomationTogglesTest, AClickOnTheWordsIsOneOnTheSwitch) {
    for (const char* part : {".title", ".explanation", ".last-acted", ".state"}) {
        const bool before = isOn(AutomationSwitch::autoPurgeSustainedMemory);
        auto* label =
            toggles().findChild<ElidedLabel*>(u"probe.auto-purge"_s + QString::fromLatin1(part));
        QTest::mouseClick(label, Qt::LeftButton);
        EXPECT_EQ(isOn(AutomationSwitch::autoPurgeSustainedMemory), !before) << part;
        QTest::mouseClick(label, Qt::RightButton);
        EXPECT_EQ(isOn(AutomationSwitch::autoPurgeSustainedMemory), !before) << part;
    }
}

TEST_F(AutomationTogglesTest, ARefusedSwitchStaysWithItsField) {
    machine.monitor().automation().engageEmergencyStop();
    toggles();
    for (const Rule& rule : rules) {
        QTest::mouseClick(&toggle(rule.identifier), Qt::LeftButton);
        EXPECT_FALSE(toggle(rule.identifier).isChecked()) << rule.identifier;
        EXPECT_FALSE(isOn(rule.which));
        EXPECT_NE(lastAction().find("remains off while Emergency Stop is engaged."),
                  std::string::npos);
        settle();
        toggles().refresh();
        EXPECT_FALSE(toggle(rule.identifier).isChecked());
    }
}

TEST_F(AutomationTogglesTest, WordAndIconTellTheStateBesideItsColour) {
    const auto icon = [this] {
        return toggle("probe.auto-purge").parentWidget()->findChild<IconView*>()->icon();
    };
    toggles();
    EXPECT_EQ(word("probe.auto-purge", ".state"), u"Off"_s);
    EXPECT_EQ(icon(), u"circle"_s);
    toggle("probe.auto-purge").click();
    EXPECT_EQ(word("probe.auto-purge", ".state"), u"On"_s);
    EXPECT_EQ(icon(), u"checkmark.circle"_s);
    machine.monitor().automation().engageEmergencyStop();
    toggles().refresh();
    EXPECT_EQ(word("probe.auto-purge", ".state"), u"Stopped"_s);
    EXPECT_EQ(icon(), u"exclamationmark.triangle"_s);
}

TEST_F(AutomationTogglesTest, ARuleThatActsSaysWhen) {
    machine.metrics->memory.pressure = 90.0;
    showWithSample();
    EXPECT_TRUE(word("probe.auto-select", ".last-acted").startsWith(u"Last acted "_s))
        << word("probe.auto-select", ".last-acted").toStdString();
    EXPECT_EQ(word("probe.auto-purge", ".last-acted"), u"No recent action"_s);
}

TEST_F(AutomationTogglesTest, TheKeyboardReachesAndThrowsEachSwitch) {
    toggle("probe.auto-select").setFocus(Qt::TabFocusReason);
    for (const Rule& rule : rules) {
        ASSERT_EQ(QApplication::focusWidget(), &toggle(rule.identifier));
        for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter}) {
            const bool before = isOn(rule.which);
            press(key);
            EXPECT_EQ(isOn(rule.which), !before) << rule.identifier << ' ' << key;
        }
        press(Qt::Key_Tab);
    }
}

TEST_F(AutomationTogglesTest, AssistiveTechnologyHearsACheckBoxWithAllItsWords) {
    machine.monitor().automation().set(AutomationSwitch::autoPurgeSustainedMemory, true);
    toggles();
    QAccessibleInterface* found =
        QAccessible::queryAccessibleInterface(&toggle("probe.auto-purge"));
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->role(), QAccessible::CheckBox);
    EXPECT_TRUE(found->state().checked);
    EXPECT_EQ(found->text(QAccessible::Name), u"Auto-purge after sustained high memory"_s);
    EXPECT_EQ(found->text(QAccessible::Description),
              u"On. Purges reclaimable file caches only after memory pressure stays "
              "high, with a 15-minute cooldown. No recent action"_s);
    found->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    EXPECT_FALSE(isOn(AutomationSwitch::autoPurgeSustainedMemory));
    EXPECT_FALSE(found->state().checked);
}

TEST_F(AutomationTogglesTest, AssistiveTechnologyIsRefusedAsTheOwnerIs) {
    machine.monitor().automation().engageEmergencyStop();
    QAccessibleInterface* found = QAccessible::queryAccessibleInterface(&toggle("probe.auto-scan"));
    found->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    EXPECT_FALSE(isOn(AutomationSwitch::autoScanRemoteMacs));
    EXPECT_FALSE(found->state().checked);
    EXPECT_EQ(lastAction(), "Remote auto-scan remains off while Emergency Stop is engaged.");
}

TEST_F(AutomationTogglesTest, TheSwitchCanBeToldFromItsCardInBothAppearances) {
    const QPalette before = QApplication::palette();
    for (const Appearance appearance : {Appearance::light, Appearance::dark}) {
        QApplication::setPalette(paletteFor(appearance));
        const CrestTheme& theme = CrestTheme::current();
        for (const char* identifier : {"probe.auto-select", "probe.auto-purge"}) {
            ToggleSwitch& shown = toggle(identifier);
            const QImage image = shown.grab().toImage();
            const auto pixel = [&](int x) { return image.pixelColor(x, image.height() / 2); };
            const int knob = shown.isChecked() ? image.width() - 12 : 12;
            const int other = image.width() - knob;
            EXPECT_GE(contrastRatio(pixel(knob), pixel(other)), 4.5) << identifier;
            EXPECT_EQ(pixel(shown.isChecked() ? knob : other).name(), theme.cardBackground.name())
                << identifier;
        }
    }
    QApplication::setPalette(before);
}

}  // namespace
}  // namespace tallowcrest
