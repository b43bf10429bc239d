#include "presentation/shell/settings/settings_sheet.h"

#include <map>

#include <QAccessible>
#include <QAction>
#include <QPushButton>
#include <QScrollArea>

#include "presentation/shell/confirmation_dialog.h"
#include "presentation/shell/settings/settings_tab.h"
#include "presentation/widgets/step_slider.h"
#include "presentation/widgets/theme.h"
#include "tests/presentation/shell/settings/settings_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

constexpr const char* tabs[] = {settings_tabs::remote, settings_tabs::localMac,
                                settings_tabs::automation, settings_tabs::safety};

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
    openSheet("Automation");
    EXPECT_EQ(textOf("settings.sheet.title"), u"Settings"_s);
    EXPECT_EQ(textOf("settings.sheet.line"),
              u"Configuration stays here; dashboard actions stay up front."_s);
    EXPECT_EQ(visible<QPushButton>("settings.sheet.done")->text(), u"Done"_s);
    QStringList words;
    for (const StripTab* tab : strip().tabs()) {
        words.append(tab->text());
    }
    EXPECT_EQ(words.join(u'|'), u"Remote|Local Mac|Automation|Safety"_s);
    EXPECT_EQ(sheet().windowModality(), Qt::WindowModal);
    EXPECT_EQ(sheet().accessibleName(), u"Settings"_s);
}

TEST_F(SettingsSheetTest, IsThereWhileTheNavigationSaysSo) {
    showWithSample();
    EXPECT_FALSE(isOpen());
    navigation().setShowSettings(true);
    settle();
    EXPECT_TRUE(isOpen());
    navigation().setShowSettings(false);
    settle();
    EXPECT_FALSE(isOpen());
}

TEST_F(SettingsSheetTest, DoneEscapeAndItsFrameCloseIt) {
    const auto closesBy = [this](auto way) {
        openSheet("Automation");
        way();
        settle();
        EXPECT_FALSE(isOpen());
        EXPECT_FALSE(navigation().showSettings());
    };
    closesBy([this] { click("settings.sheet.done"); });
    closesBy([this] { press(Qt::Key_Escape); });
    closesBy([this] { sheet().close(); });
}

TEST_F(SettingsSheetTest, TheMenuAndItsKeysOpenIt) {
    showWithSample();
    auto* entry = window().findChild<QAction*>(u"menu.settings"_s);
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(entry->text(), u"Settings..."_s);
    EXPECT_EQ(entry->menuRole(), QAction::PreferencesRole);
    press(Qt::Key_Comma, Qt::ControlModifier);
    EXPECT_TRUE(isOpen());
    EXPECT_EQ(route(), AppRoute::overview) << "the sheet floats over every route";
}

TEST_F(SettingsSheetTest, WaitsForItsWindow) {
    navigation().setShowSettings(true);
    settle();
    EXPECT_FALSE(isOpen());
    show();
    settle();
    EXPECT_TRUE(isOpen());
}

TEST_F(SettingsSheetTest, GoesWithItsWindow) {
    openSheet("Automation");
    window().close();
    settle();
    EXPECT_FALSE(isOpen());
    EXPECT_FALSE(navigation().showSettings());
    show();
    EXPECT_FALSE(isOpen());
}

TEST_F(SettingsSheetTest, AQuestionComesAboveItAndLocksIt) {
    openSheet("Automation");
    machine.monitor().localActions().requestPurge();
    settle();
    auto* question = window().findChild<ConfirmationDialog*>();
    ASSERT_NE(question, nullptr);
    EXPECT_TRUE(question->isVisible());
    EXPECT_TRUE(isOpen());
    EXPECT_EQ(QApplication::activeModalWidget(), question);
    machine.monitor().confirmations().cancelPending();
    settle();
    EXPECT_TRUE(isOpen());
    EXPECT_EQ(QApplication::activeModalWidget(), &sheet());
}

TEST_F(SettingsSheetTest, WaitsUntilAQuestionIsAnswered) {
    showWithSample();
    machine.monitor().localActions().requestPurge();
    settle();
    navigation().setShowSettings(true);
    settle();
    EXPECT_FALSE(isOpen());
    machine.monitor().confirmations().cancelPending();
    settle();
    EXPECT_TRUE(isOpen());
}

TEST_F(SettingsSheetTest, TheTabIsTheNavigations) {
    openSheet("Safety");
    EXPECT_EQ(currentTab().text(), u"Safety"_s);
    strip().setFocus();
    press(Qt::Key_Left);
    EXPECT_EQ(navigation().settingsTab(), "Automation");
    EXPECT_NE(visible("settings.disk-maximum"), nullptr);
    click("settings.tab.remote");
    EXPECT_EQ(navigation().settingsTab(), "Remote");
    EXPECT_NE(visible("settings.ssh-user"), nullptr);
    EXPECT_EQ(visible("settings.disk-maximum"), nullptr);
    click("settings.sheet.done");
    openSheet(navigation().settingsTab());
    EXPECT_NE(visible("settings.ssh-user"), nullptr) << "the tab outlives the sheet";
}

TEST_F(SettingsSheetTest, ATabThatIsNotThereStandsForTheFirst) {
    for (const char* tab : {"AI", "", "no such tab"}) {
        openSheet(tab);
        EXPECT_EQ(strip().currentIndex(), 0) << tab;
        EXPECT_EQ(navigation().settingsTab(), tab) << "showing it changes nothing";
        click("settings.sheet.done");
    }
}

TEST_F(SettingsSheetTest, ARefusalIsReadInTheSheet) {
    machine.monitor().automation().engageEmergencyStop();
    openSheet("Automation");
    click("settings.auto-purge");
    EXPECT_EQ(textOf("settings.sheet.last-action"),
              u"Auto-purge remains off while Emergency Stop is engaged."_s);
}

TEST_F(SettingsSheetTest, HiddenItDoesNoWork) {
    openSheet("Automation");
    click("settings.sheet.done");
    auto* label = sheet().findChild<ElidedLabel*>(u"settings.sheet.last-action"_s);
    const QString before = label->text();
    machine.monitor().log().recordMessage("Something else happened.");
    settle();
    EXPECT_EQ(label->text(), before);
    openSheet("Automation");
    EXPECT_EQ(label->text(), u"Something else happened."_s);
}

// The keyboard -----------------------------------------------------------------------------------

TEST_F(SettingsSheetTest, TabGoesThroughEachTabAsTheEyeDoes) {
    openSheet("Remote");
    EXPECT_EQ(QApplication::focusWidget(), &currentTab());
    EXPECT_EQ(focusOrder().join(u' '),
              u"settings.tab.remote settings.ssh-user settings.sheet.done"_s);
    openSheet("Local Mac");
    EXPECT_EQ(focusOrder().join(u' '),
              u"settings.tab.local-mac settings.notification-actions "
              "settings.expand-sections settings.collapse-sections "
              "settings.sheet.done"_s);
    openSheet("Automation");
    EXPECT_EQ(focusOrder().join(u' '),
              u"settings.tab.automation settings.warning-threshold "
              "settings.auto-select settings.auto-purge settings.auto-scan settings.disk-autopilot "
              "settings.disk-minimum-free settings.disk-cache-age "
              "settings.disk-maximum settings.sheet.done"_s);
    openSheet("Safety");
    EXPECT_EQ(focusOrder().join(u' '),
              u"settings.tab.safety settings.emergency-stop.engage "
              "settings.sheet.done"_s);
}

TEST_F(SettingsSheetTest, AssistiveTechnologySeesItsTabsAndWhatTheyAreFor) {
    openSheet("Automation");
    QAccessibleInterface* list = QAccessible::queryAccessibleInterface(&strip());
    EXPECT_EQ(list->role(), QAccessible::PageTabList);
    EXPECT_EQ(list->text(QAccessible::Name), u"Settings"_s);
    EXPECT_FALSE(list->text(QAccessible::Description).isEmpty());
    ASSERT_EQ(list->childCount(), 4);
    for (int place = 0; place < 4; ++place) {
        QAccessibleInterface* each = list->child(place);
        EXPECT_EQ(each->role(), QAccessible::PageTab);
        EXPECT_EQ(each->text(QAccessible::Name), QString::fromLatin1(tabs[place]));
        EXPECT_FALSE(each->text(QAccessible::Description).isEmpty());
        EXPECT_EQ(each->state().selected, place == 2);
    }
    list->child(3)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    settle();
    EXPECT_EQ(navigation().settingsTab(), "Safety");
}

TEST_F(SettingsSheetTest, ArrowKeysGoThroughTheTabsAndStopAtTheEnds) {
    openSheet("Local Mac");
    const auto expectAt = [this](const char* tab) {
        EXPECT_EQ(navigation().settingsTab(), tab);
        EXPECT_EQ(QApplication::focusWidget(), &currentTab());
        EXPECT_EQ(currentTab().text(), QString::fromLatin1(tab));
    };
    press(Qt::Key_Left);
    expectAt("Remote");
    press(Qt::Key_Left);
    expectAt("Remote");
    for (const char* tab : {"Local Mac", "Automation", "Safety", "Safety"}) {
        press(Qt::Key_Right);
        expectAt(tab);
    }
}

TEST_F(SettingsSheetTest, ReturnClosesItOnDoneAlone) {
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
        openSheet("Automation");
        for (const char* identifier : {"settings.tab.automation", "settings.warning-threshold"}) {
            visible(identifier)->setFocus();
            press(key);
            ASSERT_TRUE(isOpen()) << identifier;
        }
        visible("settings.sheet.done")->setFocus();
        press(key);
        EXPECT_FALSE(isOpen());
    }
}

TEST_F(SettingsSheetTest, TheRingFollowsTheKeyboardAndNoClick) {
    const auto isRinged = [](QWidget& widget, const QColor& ring) {
        return widget.grab().toImage().pixelColor(widget.width() / 2, 1) == ring;
    };
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

TEST_F(SettingsSheetTest, TheKeyboardBringsItsControlIntoView) {
    window().resize(640, 480);
    openSheet("Automation");
    strip().setFocus();
    do {
        press(Qt::Key_Tab);
    } while (QApplication::focusWidget()->objectName() != u"settings.disk-maximum"_s);
    const QWidget* slider = QApplication::focusWidget();
    EXPECT_FALSE(slider->visibleRegion().isEmpty());
    EXPECT_EQ(slider->visibleRegion().boundingRect().height(), slider->height());
}

TEST_F(SettingsSheetTest, EachControlHasANameAndAnIdentifierOfItsOwn) {
    std::map<QString, const QWidget*> controls;
    for (const char* tab : tabs) {
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
    EXPECT_EQ(controls.size(), 18U);
}

// Sizes ------------------------------------------------------------------------------------------

TEST_F(SettingsSheetTest, NothingIsCutAtAnyWindowsSize) {
    machine.store.write("Tallowcrest.protectedApps",
                        SettingsTextList{"Docker", std::string(300, 'W')});
    for (const QSize& size : {QSize(640, 480), QSize(900, 600), QSize(1080, 720)}) {
        for (const char* tab : tabs) {
            window().resize(size);
            openSheet(tab);
            SCOPED_TRACE(std::string(tab) + " at " + std::to_string(size.width()));
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

TEST_F(SettingsSheetTest, ItsWordsCanBeReadInBothAppearances) {
    const QPalette before = QApplication::palette();
    for (const Appearance appearance : {Appearance::light, Appearance::dark}) {
        QApplication::setPalette(paletteFor(appearance));
        openSheet("Safety");
        const CrestTheme& theme = CrestTheme::current();
        const QImage image = strip().grab().toImage();
        const auto ground = [&](const StripTab& tab) {
            // Beside the words, within the tab.
            return image.pixelColor(tab.x() + 6, image.height() / 2);
        };
        EXPECT_GE(contrastRatio(theme.text, ground(currentTab())), 4.5);
        EXPECT_GE(contrastRatio(theme.secondaryText, ground(*strip().tabs().front())), 4.5);
        EXPECT_NE(ground(currentTab()), ground(*strip().tabs().front()));
        click("settings.sheet.done");
    }
    QApplication::setPalette(before);
}

}  // namespace
}  // namespace tallowcrest
