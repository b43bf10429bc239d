#include "presentation/shell/settings/settings_sheet.h"

#include <map>
#include <utility>

#include <QAction>
#include <QPushButton>

#include "actions/actions.h"
#include "presentation/shell/confirmation_dialog.h"
#include "presentation/shell/settings/settings_tab.h"
#include "presentation/widgets/step_slider.h"
#include "presentation/widgets/theme.h"
#include "tests/presentation/is_ringed.h"
#include "tests/presentation/shell/settings/settings_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

constexpr SettingsTabKind tabKinds[] = {SettingsTabKind::ai, SettingsTabKind::remote,
                                        SettingsTabKind::localMac, SettingsTabKind::automation,
                                        SettingsTabKind::safety};

class SettingsSheetTest : public SettingsFixture {
protected:
    QStringList focusOrder() {
        strip().setFocus(Qt::TabFocusReason);
        QStringList order;
        do {
            order.append(QApplication::focusWidget()->objectName());
            press(Qt::Key_Tab);
        } while (!strip().isAncestorOf(QApplication::focusWidget()) && order.size() < 30);
        return order;
    }
};

TEST_F(SettingsSheetTest, SaysWhatItIsForWordForWord) {
    openSheet(SettingsTabKind::automation);
    EXPECT_EQ(textOf("settings.sheet.title"), u"Settings"_s);
    EXPECT_EQ(textOf("settings.sheet.line"),
              u"Configuration stays here; dashboard actions stay up front."_s);
    EXPECT_EQ(visible<QPushButton>("settings.sheet.done")->text(), u"Done"_s);
    QStringList words;
    for (const StripTab* tab : tabs()) {
        words.append(tab->text());
    }
    EXPECT_EQ(words.join(u'|'), u"AI|Remote|Local Mac|Automation|Safety"_s);
    EXPECT_EQ(strip().accessibleName(), u"Settings"_s);
    EXPECT_EQ(strip().accessibleDescription(), u"The parts of the settings"_s);
    EXPECT_EQ(sheet().windowModality(), Qt::WindowModal);
    EXPECT_EQ(sheet().accessibleName(), u"Settings"_s);
}

TEST_F(SettingsSheetTest, IsOpenWhileTheNavigationSaysSo) {
    navigation().setShowSettings(true);
    settle();
    EXPECT_FALSE(isOpen()) << "without its window";
    showWithSample();
    EXPECT_TRUE(isOpen());
    navigation().setShowSettings(false);
    settle();
    EXPECT_FALSE(isOpen());
}

TEST_F(SettingsSheetTest, DoneEscapeTheWindowFrameAndItsWindowCloseIt) {
    const auto closesBy = [this](auto way) {
        openSheet(SettingsTabKind::automation);
        way();
        settle();
        EXPECT_FALSE(isOpen());
        EXPECT_FALSE(navigation().showSettings());
    };
    closesBy([this] { click("settings.sheet.done"); });
    closesBy([this] { press(Qt::Key_Escape); });
    closesBy([this] { sheet().close(); });
    closesBy([this] { window().close(); });
    show();
    EXPECT_FALSE(isOpen());
}

TEST_F(SettingsSheetTest, TheShortcutOfItsMenuEntryOpensIt) {
    showWithSample();
    auto* entry = window().findChild<QAction*>(u"menu.settings"_s);
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(entry->text(), u"Settings..."_s);
    EXPECT_EQ(entry->menuRole(), QAction::PreferencesRole);
    press(Qt::Key_Comma, Qt::ControlModifier);
    EXPECT_TRUE(isOpen());
    EXPECT_EQ(route(), AppRoute::overview) << "the route stays";
}

TEST_F(SettingsSheetTest, AConfirmationOpensAboveItAndIsAnsweredFirst) {
    const auto ask = [this] {
        machine.monitor().actions().local.requestPurge();
        settle();
    };
    const auto answer = [this] {
        machine.monitor().confirmations().cancelPending();
        settle();
    };
    openSheet(SettingsTabKind::automation);
    ask();
    const auto* question = window().findChild<ConfirmationDialog*>();
    ASSERT_NE(question, nullptr);
    EXPECT_TRUE(question->isVisible());
    EXPECT_TRUE(isOpen());
    EXPECT_EQ(QApplication::activeModalWidget(), question);
    answer();
    EXPECT_TRUE(isOpen());
    EXPECT_EQ(QApplication::activeModalWidget(), &sheet());
    click("settings.sheet.done");
    ask();
    navigation().setShowSettings(true);
    settle();
    EXPECT_FALSE(isOpen());
    answer();
    EXPECT_TRUE(isOpen());
}

TEST_F(SettingsSheetTest, TheTabIsThatOfTheNavigation) {
    openSheet(SettingsTabKind::safety);
    EXPECT_EQ(currentTab().text(), u"Safety"_s);
    strip().setFocus();
    press(Qt::Key_Left);
    EXPECT_EQ(navigation().settingsTab(), SettingsTabKind::automation);
    EXPECT_NE(visible("settings.disk-maximum"), nullptr);
    click("settings.tab.remote");
    EXPECT_EQ(navigation().settingsTab(), SettingsTabKind::remote);
    EXPECT_NE(visible("settings.ssh-user"), nullptr);
    EXPECT_EQ(visible("settings.disk-maximum"), nullptr);
    click("settings.sheet.done");
    openSheet(navigation().settingsTab());
    EXPECT_NE(visible("settings.ssh-user"), nullptr) << "the tab is kept while the sheet is closed";
}

TEST_F(SettingsSheetTest, ShowsItsFirstTabAtFirst) {
    const SettingsTabKind tab = navigation().settingsTab();
    openSheet(tab);
    EXPECT_EQ(strip().currentIndex(), 0);
    EXPECT_EQ(navigation().settingsTab(), tab) << "showing it changes nothing";
}

TEST_F(SettingsSheetTest, ARefusalIsShownInTheSheet) {
    machine.monitor().actions().automation.engageEmergencyStop();
    openSheet(SettingsTabKind::automation);
    click("settings.auto-purge");
    EXPECT_EQ(textOf("settings.sheet.last-action"),
              u"Auto-purge remains off while Emergency Stop is engaged."_s);
}

// The keyboard -----------------------------------------------------------------------------------

TEST_F(SettingsSheetTest, TabFollowsTheVisualOrderOnEachTab) {
    machine.store.write("Tallowcrest.protectedApps", SettingsTextList{"Docker", "Mail"});
    for (const auto& [tab, controls] :
         {std::pair{SettingsTabKind::ai,
                    "settings.tab.ai settings.ai-key.remove settings.ai-key settings.ai-key.save "
                    "settings.ai-model settings.ai-endpoint settings.ai-safe-actions "
                    "settings.ai-redact settings.ai-preview settings.ai-copy-payload "
                    "settings.autonomy.apprentice"},
          {SettingsTabKind::remote,
           "settings.tab.remote settings.ssh-user settings.copy-public-key"},
          {SettingsTabKind::localMac,
           "settings.tab.local-mac settings.notification-actions settings.install "
           "settings.enable-launch-at-login settings.disable-launch-at-login "
           "settings.check-for-updates settings.setup-wizard settings.expand-sections "
           "settings.collapse-sections"},
          {SettingsTabKind::automation,
           "settings.tab.automation settings.warning-threshold settings.auto-select "
           "settings.auto-purge settings.auto-scan settings.include-linux settings.disk-autopilot "
           "settings.disk-minimum-free settings.disk-cache-age settings.disk-maximum "
           "settings.review-cache-files"},
          {SettingsTabKind::safety,
           "settings.tab.safety settings.emergency-stop.engage "
           "settings.never-quit.remove.Docker settings.never-quit.remove.Mail"}}) {
        openSheet(tab);
        EXPECT_EQ(QApplication::focusWidget(), &currentTab());
        EXPECT_EQ(focusOrder().join(u' '), QLatin1String(controls) + u" settings.sheet.done"_s);
        click("settings.sheet.done");
    }
}

TEST_F(SettingsSheetTest, ReturnClosesItOnlyOnDone) {
    machine.store.write("Tallowcrest.protectedApps", SettingsTextList{"Docker"});
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
        for (const auto& [tab, identifier] :
             {std::pair{SettingsTabKind::automation, "settings.tab.automation"},
              {SettingsTabKind::automation, "settings.warning-threshold"},
              {SettingsTabKind::remote, "settings.ssh-user"},
              {SettingsTabKind::safety, "settings.never-quit.remove.Docker"},
              {SettingsTabKind::safety, "settings.emergency-stop.engage"}}) {
            openSheet(tab);
            machine.monitor().actions().automation.resumeFromEmergencyStop();
            settle();
            visible(identifier)->setFocus();
            press(key);
            ASSERT_TRUE(isOpen()) << identifier;
        }
        visible("settings.sheet.done")->setFocus();
        press(key);
        EXPECT_FALSE(isOpen());
    }
}

TEST_F(SettingsSheetTest, TheFocusRingFollowsKeysButNotClicks) {
    showWithSample();
    goTo(AppRoute::settings);
    click("settings.hub.auto-select");
    QWidget& clicked = *visible("settings.hub.auto-select");
    ASSERT_TRUE(clicked.hasFocus());
    EXPECT_FALSE(isRinged(clicked, CrestTheme::current().text));

    press(Qt::Key_Comma, Qt::ControlModifier);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&sheet()));
    press(Qt::Key_Right);
    EXPECT_EQ(QApplication::focusWidget(), &currentTab());
    EXPECT_TRUE(isRinged(currentTab(), CrestTheme::current().accentText));
    click("settings.tab.safety");
    EXPECT_EQ(QApplication::focusWidget(), &currentTab());
    EXPECT_FALSE(isRinged(currentTab(), CrestTheme::current().accentText));

    press(Qt::Key_Escape);
    window().activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));
    ASSERT_TRUE(clicked.hasFocus());
    EXPECT_FALSE(isRinged(clicked, CrestTheme::current().text)) << "the window gave it back";
    press(Qt::Key_Tab);
    press(Qt::Key_Backtab, Qt::ShiftModifier);
    ASSERT_TRUE(clicked.hasFocus());
    EXPECT_TRUE(isRinged(clicked, CrestTheme::current().text));
}

TEST_F(SettingsSheetTest, AFocusedControlIsScrolledIntoView) {
    window().resize(640, 480);
    openSheet(SettingsTabKind::automation);
    strip().setFocus();
    do {
        press(Qt::Key_Tab);
    } while (QApplication::focusWidget()->objectName() != u"settings.disk-maximum"_s);
    const QWidget* slider = QApplication::focusWidget();
    EXPECT_FALSE(slider->visibleRegion().isEmpty());
    EXPECT_EQ(slider->visibleRegion().boundingRect().height(), slider->height());
}

TEST_F(SettingsSheetTest, EachControlHasANameAndAUniqueIdentifier) {
    std::map<QString, const QWidget*> controls;
    for (const SettingsTabKind tab : tabKinds) {
        openSheet(tab);
        for (const QWidget* each : sheet().findChildren<QWidget*>()) {
            const bool isControl = qobject_cast<const QAbstractButton*>(each) != nullptr ||
                                   qobject_cast<const QAbstractSlider*>(each) != nullptr ||
                                   each->focusPolicy() != Qt::NoFocus;
            if (!each->isVisible() || !isControl || each->inherits("QScrollBar")) {
                continue;
            }
            EXPECT_FALSE(each->accessibleName().isEmpty()) << each->objectName().toStdString();
            EXPECT_FALSE(each->accessibleDescription().isEmpty())
                << each->objectName().toStdString();
            EXPECT_EQ(controls.emplace(each->objectName(), each).first->second, each)
                << each->objectName().toStdString();
        }
    }
    EXPECT_EQ(controls.size(), 39U);
}

// Sizes ------------------------------------------------------------------------------------------

TEST_F(SettingsSheetTest, NothingIsCutOffAtAnyWindowSize) {
    machine.store.write("Tallowcrest.protectedApps",
                        SettingsTextList{"Docker", std::string(300, 'W')});
    for (const QSize& size : {QSize(640, 480), QSize(900, 600), QSize(1080, 720)}) {
        for (const SettingsTabKind tab : tabKinds) {
            window().resize(size);
            openSheet(tab);
            SCOPED_TRACE(currentTab().text().toStdString() + " at " + std::to_string(size.width()));
            EXPECT_LE(sheet().width(), size.width());
            EXPECT_LE(sheet().height(), size.height());
            for (const QWidget* each : sheet().findChildren<QWidget*>()) {
                const bool isScrolled =
                    each->parentWidget()->objectName() == u"qt_scrollarea_viewport"_s;
                if (!each->isVisible() || each->inherits("QScrollBar")) {
                    continue;
                }
                const QRect room = each->parentWidget()->rect();
                EXPECT_TRUE(isScrolled ? each->width() <= room.width()
                                       : room.contains(each->geometry()))
                    << each->metaObject()->className() << ' ' << each->objectName().toStdString();
                EXPECT_GE(each->width(), each->minimumSizeHint().width())
                    << each->metaObject()->className() << ' ' << each->objectName().toStdString();
                const auto* label = qobject_cast<const ElidedLabel*>(each);
                if (label != nullptr && !label->text().isEmpty() &&
                    !label->text().contains(u"WWWW"_s)) {
                    EXPECT_FALSE(label->shownLines().join(u' ').contains(u'…'))
                        << label->text().toStdString();
                }
            }
            click("settings.sheet.done");
        }
    }
}

TEST_F(SettingsSheetTest, TabsAreReadableInBothAppearances) {
    const QPalette before = QApplication::palette();
    for (const Appearance appearance : {Appearance::light, Appearance::dark}) {
        QApplication::setPalette(paletteFor(appearance));
        openSheet(SettingsTabKind::safety);
        const CrestTheme& theme = CrestTheme::current();
        const QImage image = strip().grab().toImage();
        const auto ground = [&](const StripTab& tab) {
            // Within the tab, beside its text.
            return image.pixelColor(tab.x() + 6, image.height() / 2);
        };
        EXPECT_GE(contrastRatio(theme.text, ground(currentTab())), 4.5);
        EXPECT_GE(contrastRatio(theme.secondaryText, ground(*tabs().front())), 4.5);
        EXPECT_NE(ground(currentTab()), ground(*tabs().front()));
        click("settings.sheet.done");
    }
    QApplication::setPalette(before);
}

}  // namespace
}  // namespace tallowcrest
