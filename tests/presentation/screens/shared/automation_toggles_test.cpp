#include "presentation/screens/shared/automation_toggles.h"

#include <QAccessible>
#include <QApplication>
#include <QTest>
#include <gmock/gmock.h>

#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/icon.h"
#include "presentation/widgets/theme.h"
#include "presentation/widgets/toggle_switch.h"
#include "tests/presentation/widget_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

struct Rule {
    AutomationSwitch which;
    const char* identifier;
};

constexpr Rule rules[] = {
    {AutomationSwitch::autoSelectTopOffender, "probe.auto-select"},
    {AutomationSwitch::autoPurgeSustainedMemory, "probe.auto-purge"},
    {AutomationSwitch::autoScanRemoteMacs, "probe.auto-scan"},
};

class AutomationTogglesTest : public WidgetFixture {
protected:
    AutomationTogglesTest() {
        toggles.resize(480, 320);
        toggles.setVisible(true);
        QObject::connect(&toggles, &AutomationToggles::wanted,
                         [this](AutomationSwitch which, bool on) {
                             asked.emplace_back(which, on);
                             if (which == AutomationSwitch::autoPurgeSustainedMemory && grants) {
                                 settings.autoPurgeSustainedMemory = on;
                                 show();
                             }
                         });
        show();
    }

    QWidget& root() override { return toggles; }
    void show() { toggles.show({settings, dates, {}, snapshot}); }

    ToggleSwitch& toggle(const char* identifier) {
        return *toggles.findChild<ToggleSwitch*>(QString::fromLatin1(identifier));
    }
    ElidedLabel& label(const char* identifier, const char* part) {
        return *toggles.findChild<ElidedLabel*>(QString::fromLatin1(identifier) +
                                                QString::fromLatin1(part));
    }
    QString word(const char* identifier, const char* part) {
        return textOf((std::string(identifier) + part).c_str());
    }
    /// The requests since the last call.
    std::vector<std::pair<AutomationSwitch, bool>> takeAsked() { return std::exchange(asked, {}); }

    Settings settings;
    AutomationDates dates;
    std::optional<SystemSnapshot> snapshot;
    bool grants = true;  ///< whether a request to change the auto-purge is carried out
    std::vector<std::pair<AutomationSwitch, bool>> asked;
    AutomationToggles toggles{u"probe"_s};
};

TEST_F(AutomationTogglesTest, EachSwitchShowsItsSettingAndEmitsTheOpposite) {
    settings.autoSelectTopOffender = true;
    settings.autoScanRemoteMacs = true;
    for (const bool purges : {false, true}) {
        settings.autoPurgeSustainedMemory = purges;
        grants = false;
        show();
        for (const Rule& rule : rules) {
            const bool before = isOn(settings, rule.which);
            EXPECT_EQ(toggle(rule.identifier).isChecked(), before) << rule.identifier;
            QTest::mouseClick(&toggle(rule.identifier), Qt::LeftButton);
            EXPECT_THAT(takeAsked(), ElementsAre(Pair(rule.which, !before)));
        }
    }
}

TEST_F(AutomationTogglesTest, AClickOnTheTextsIsAClickOnTheSwitch) {
    for (const char* part : {".title", ".explanation", ".last-acted", ".state"}) {
        const bool before = settings.autoPurgeSustainedMemory;
        QTest::mouseClick(&label("probe.auto-purge", part), Qt::LeftButton);
        EXPECT_THAT(takeAsked(),
                    ElementsAre(Pair(AutomationSwitch::autoPurgeSustainedMemory, !before)))
            << part;
        QTest::mouseClick(&label("probe.auto-purge", part), Qt::RightButton);
        EXPECT_THAT(takeAsked(), IsEmpty()) << part;
    }
}

TEST_F(AutomationTogglesTest, ARefusedSwitchMovesBack) {
    grants = false;
    settings.autoSelectTopOffender = false;
    show();
    for (const Rule& rule : rules) {
        QTest::mouseClick(&toggle(rule.identifier), Qt::LeftButton);
        EXPECT_THAT(takeAsked(), SizeIs(1));
        EXPECT_FALSE(toggle(rule.identifier).isChecked()) << rule.identifier;
        show();
        EXPECT_FALSE(toggle(rule.identifier).isChecked()) << rule.identifier;
    }
}

TEST_F(AutomationTogglesTest, TheStateHasAWordAndAnIcon) {
    const auto icon = [this] {
        return toggle("probe.auto-purge").parentWidget()->findChild<IconView*>()->icon();
    };
    EXPECT_EQ(word("probe.auto-purge", ".state"), u"Off"_s);
    EXPECT_EQ(icon(), u"circle"_s);
    toggle("probe.auto-purge").click();
    EXPECT_EQ(word("probe.auto-purge", ".state"), u"On"_s);
    EXPECT_EQ(icon(), u"checkmark.circle"_s);
    settings.automationEmergencyStopEngaged = true;
    show();
    EXPECT_EQ(word("probe.auto-purge", ".state"), u"Stopped"_s);
    EXPECT_EQ(icon(), u"exclamationmark.triangle"_s);
}

TEST_F(AutomationTogglesTest, ARuleThatHasActedSaysWhen) {
    dates.lastAutoSelectDate = Date{1000.0};
    show();
    EXPECT_TRUE(word("probe.auto-select", ".last-acted").startsWith(u"Last acted "_s))
        << word("probe.auto-select", ".last-acted").toStdString();
    EXPECT_EQ(word("probe.auto-purge", ".last-acted"), u"No recent action"_s);
}

TEST_F(AutomationTogglesTest, EachSwitchCanBeReachedAndToggledByKeyboard) {
    toggles.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&toggles));
    toggle("probe.auto-select").setFocus(Qt::TabFocusReason);
    for (const Rule& rule : rules) {
        ASSERT_EQ(QApplication::focusWidget(), &toggle(rule.identifier));
        for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter}) {
            const bool before = isOn(settings, rule.which);
            QTest::keyClick(QApplication::focusWidget(), key);
            EXPECT_THAT(takeAsked(), ElementsAre(Pair(rule.which, !before)))
                << rule.identifier << ' ' << key;
        }
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
}

TEST_F(AutomationTogglesTest, IsAnAccessibleCheckBoxWithNameAndDescription) {
    settings.autoPurgeSustainedMemory = true;
    show();
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
    EXPECT_THAT(takeAsked(), ElementsAre(Pair(AutomationSwitch::autoPurgeSustainedMemory, false)));
    EXPECT_FALSE(found->state().checked);
}

TEST_F(AutomationTogglesTest, ARefusedAccessibleActionMovesBackToo) {
    QAccessibleInterface* found = QAccessible::queryAccessibleInterface(&toggle("probe.auto-scan"));
    found->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    EXPECT_THAT(takeAsked(), ElementsAre(Pair(AutomationSwitch::autoScanRemoteMacs, true)));
    EXPECT_FALSE(found->state().checked);
}

TEST_F(AutomationTogglesTest, TheSwitchStandsOutFromItsCardInBothAppearances) {
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
