#include <QLineEdit>
#include <QMessageBox>

#include "actions/actions.h"
#include "core/settings/settings.h"
#include "presentation/shell/settings/settings_sheet.h"
#include "presentation/widgets/capsule.h"
#include "tests/presentation/shell/confirmation_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

constexpr const char* stopped = "Emergency stop engaged. Automatic actions are disabled.";
constexpr const char* resumed = "Emergency stop cleared; automations remain off.";

class EmergencyStopTest : public ConfirmationFixture {
protected:
    Automation& automation() { return machine.monitor().actions().automation; }

    QAction& entry(const char* identifier) {
        return *window().findChild<QAction*>(QString::fromLatin1(identifier));
    }

    /// Resumes without the user interface.
    void resume() {
        automation().resumeFromEmergencyStop();
        settle();
    }

    /// Engages the stop by a key that the focused widget gets, and resumes.
    void expectKeyStops(Qt::Key key, Qt::KeyboardModifiers modifiers, const std::string& where) {
        ASSERT_FALSE(automation().isStopEngaged()) << where;
        press(key, modifiers);
        EXPECT_TRUE(automation().isStopEngaged()) << where;
        EXPECT_EQ(lastAction(), stopped) << where;
        resume();
    }

    void expectKeysStop(const std::string& where) {
        expectKeyStops(Qt::Key_Period, Qt::ControlModifier, where + ", Ctrl+.");
        expectKeyStops(Qt::Key_Escape, Qt::ShiftModifier, where + ", Shift+Esc");
    }

    /// Makes `widget` the active window, which gets the keys.
    void activate(QWidget& widget) {
        widget.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&widget));
    }

    QString capsule() {
        const auto* found = visible<Capsule>("status.automation");
        return found == nullptr ? u"(not shown)"_s : found->accessibleValue();
    }
};

// The card ---------------------------------------------------------------------------------------

TEST_F(EmergencyStopTest, TheDiskAutopilotCardStopsAtOnceAndResumes) {
    machine.store.write(settings_keys::autoPurgeKey, true);
    showWithSample();
    auto* stop = visible<QPushButton>("overview.emergency-stop");
    ASSERT_NE(stop, nullptr);
    EXPECT_EQ(stop->text(), u"Emergency Stop"_s);
    const QString effect =
        u"Immediately disables automatic cleanup, purge, remote scans, and AI "
        "autonomous execution."_s;
    EXPECT_EQ(stop->accessibleDescription(), effect);
    bool isRead = false;
    for (const auto* label : visible("overview.disk-autopilot")->findChildren<ElidedLabel*>()) {
        isRead = isRead || (label->isVisible() && label->text() == effect);
    }
    EXPECT_TRUE(isRead);
    EXPECT_EQ(visible("overview.resume-manual-mode"), nullptr);
    const int height = visible("overview.disk-autopilot")->height();
    const QRect place(stop->mapTo(&window(), QPoint()), stop->size());

    click("overview.emergency-stop");
    EXPECT_TRUE(automation().isStopEngaged());
    EXPECT_FALSE(automation().isOn(AutomationSwitch::autoPurgeSustainedMemory));
    EXPECT_FALSE(isOpen()) << "the stop needs no confirmation";
    EXPECT_EQ(textOf("overview.disk-autopilot-status"),
              u"Emergency stop is engaged. All automatic actions are off."_s);
    EXPECT_EQ(visible("overview.disk-autopilot")->height(), height);
    auto* resume = visible<QPushButton>("overview.resume-manual-mode");
    ASSERT_NE(resume, nullptr);
    EXPECT_EQ(resume->text(), u"Resume Manual Mode"_s);
    EXPECT_FALSE(place.intersects(QRect(resume->mapTo(&window(), QPoint()), resume->size())))
        << "the second press of a double click";

    resume->setFocus();
    press(Qt::Key_Space);
    EXPECT_FALSE(automation().isStopEngaged());
    EXPECT_EQ(lastAction(), resumed);
    EXPECT_FALSE(automation().isOn(AutomationSwitch::autoPurgeSustainedMemory));
    EXPECT_EQ(visible("overview.resume-manual-mode"), nullptr);
    EXPECT_EQ(QApplication::focusWidget(), stop);
}

// The key ----------------------------------------------------------------------------------------

TEST_F(EmergencyStopTest, TheKeyStopsOnEveryRoute) {
    showWithSample();
    for (const AppRoute each : allAppRoutes) {
        goTo(each);
        expectKeysStop(std::string(rawValue(each)));
    }
}

TEST_F(EmergencyStopTest, TheKeyStopsFromEveryFocusableControl) {
    showWithSample();
    machine.monitor().actions().review.selectProcess(machine.metrics->processes[0]);
    for (const AppRoute each : allAppRoutes) {
        goTo(each);
        // Collected first, because the events that the stop records replace widgets of the page.
        std::vector<QWidget*> controls;
        for (QWidget* widget : window().findChildren<QWidget*>()) {
            if (widget->isVisible() && widget->isEnabled() &&
                (widget->focusPolicy() & Qt::TabFocus) != 0) {
                controls.push_back(widget);
            }
        }
        for (QWidget* control : controls) {
            control->setFocus();
            ASSERT_FALSE(automation().isStopEngaged());
            press(Qt::Key_Period, Qt::ControlModifier);
            EXPECT_TRUE(automation().isStopEngaged())
                << rawValue(each) << ' ' << control->objectName().toStdString();
            resume();
        }
    }
}

TEST_F(EmergencyStopTest, TheKeyStopsFromATextFieldAndTheTable) {
    showWithSample();
    goTo(AppRoute::load);
    auto* field = visible<QLineEdit>("processes.filter");
    field->setFocus();
    field->setText(u"edit"_s);
    field->selectAll();
    expectKeysStop("the filter");
    EXPECT_EQ(field->text(), u"edit"_s);
    table().setFocus();
    expectKeysStop("the table");
}

TEST_F(EmergencyStopTest, TheKeyStopsInTheConfirmationDialogAndLeavesItOpen) {
    showAndAsk();
    QWidget* focus = QApplication::focusWidget();
    ASSERT_TRUE(dialog().isAncestorOf(focus));
    expectKeysStop("the dialog");
    EXPECT_TRUE(isOpen());
    press(Qt::Key_Period, Qt::ControlModifier);
    EXPECT_TRUE(desk().pendingConfirmation().has_value());
    EXPECT_TRUE(confirmed.empty());
    EXPECT_TRUE(canceled.empty());
    confirm().click();
    EXPECT_THAT(confirmed, testing::ElementsAre("Go on?")) << "it can still be confirmed";
}

TEST_F(EmergencyStopTest, TheKeyStopsInTheSettingsAndInADialogAboveThem) {
    showWithSample();
    window().state().navigation.setShowSettings(true);
    settle();
    auto* sheet = window().findChild<SettingsSheet*>();
    ASSERT_NE(sheet, nullptr);
    activate(*sheet);
    expectKeysStop("the settings");
    for (QWidget* control : sheet->findChildren<QWidget*>()) {
        if (control->isVisible() && control->isEnabled() &&
            (control->focusPolicy() & Qt::TabFocus) != 0) {
            control->setFocus();
            expectKeysStop(control->objectName().toStdString());
        }
    }
    ask(probe());
    expectKeysStop("the question above the settings");
}

TEST_F(EmergencyStopTest, TheKeyStopsWhileAboutIsShown) {
    showWithSample();
    entry("menu.about").trigger();
    settle();
    auto* about = window().findChild<QMessageBox*>(u"about"_s);
    ASSERT_NE(about, nullptr);
    activate(*about);
    expectKeysStop("About");
    about->close();
}

TEST_F(EmergencyStopTest, TheKeyNeverResumes) {
    showWithSample();
    press(Qt::Key_Period, Qt::ControlModifier);
    press(Qt::Key_Period, Qt::ControlModifier);
    EXPECT_TRUE(automation().isStopEngaged());
    EXPECT_TRUE(entry("menu.resume-manual-mode").shortcuts().isEmpty());
}

TEST_F(EmergencyStopTest, KeysThatAreHeldDownStopOnce) {
    showWithSample();
    const auto hold = [this](Qt::Key key) {
        QTest::simulateEvent(&window(), true, key, Qt::ControlModifier, QString(), true);
        settle();
    };
    press(Qt::Key_Period, Qt::ControlModifier);
    const std::size_t events = machine.monitor().log().activityLog().size();
    hold(Qt::Key_Period);
    EXPECT_EQ(machine.monitor().log().activityLog().size(), events);
    hold(Qt::Key_2);
    EXPECT_EQ(route(), AppRoute::load) << "repeated keys do arrive";
}

// The menu ---------------------------------------------------------------------------------------

TEST_F(EmergencyStopTest, ResumeInTheMenuIsEnabledOnlyWhileStopped) {
    showWithSample();
    EXPECT_TRUE(entry("menu.emergency-stop").isEnabled());
    EXPECT_FALSE(entry("menu.resume-manual-mode").isEnabled());
    entry("menu.emergency-stop").trigger();
    settle();
    EXPECT_TRUE(automation().isStopEngaged());
    EXPECT_TRUE(entry("menu.emergency-stop").isEnabled());
    ASSERT_TRUE(entry("menu.resume-manual-mode").isEnabled());
    entry("menu.resume-manual-mode").trigger();
    settle();
    EXPECT_FALSE(automation().isStopEngaged());
    EXPECT_FALSE(entry("menu.resume-manual-mode").isEnabled());
}

TEST_F(EmergencyStopTest, AStopOfAnEarlierRunCanBeResumedAtOnce) {
    machine.store.write(settings_keys::automationEmergencyStopKey, true);
    EXPECT_TRUE(entry("menu.resume-manual-mode").isEnabled());
    show();
    EXPECT_EQ(capsule(), u"Emergency Stop Engaged"_s);
    EXPECT_NE(visible("overview.resume-manual-mode"), nullptr);
}

// The status strip -------------------------------------------------------------------------------

TEST_F(EmergencyStopTest, TheStripShowsTheStopOnEveryRoute) {
    showWithSample();
    const auto inkOf = [this] {
        const QImage shot = visible("status.automation")->grab().toImage();
        return shot.pixelColor(shot.width() / 2, 0);
    };
    EXPECT_EQ(capsule(), u"1 automation on"_s);
    EXPECT_EQ(inkOf(), CrestTheme::current().hairline);
    automation().engageEmergencyStop();
    settle();
    for (const AppRoute each : allAppRoutes) {
        goTo(each);
        EXPECT_EQ(capsule(), u"Emergency Stop Engaged"_s) << rawValue(each);
        const QColor ink = inkOf();
        EXPECT_GT(ink.red(), ink.green() + 60) << rawValue(each);
        EXPECT_GT(ink.red(), ink.blue() + 60) << rawValue(each);
    }
    resume();
    EXPECT_EQ(capsule(), u"No automations on"_s);
    EXPECT_EQ(inkOf(), CrestTheme::current().hairline);
}

TEST_F(EmergencyStopTest, TheStripCountsTheEnabledAutomations) {
    showWithSample();
    EXPECT_EQ(capsule(), u"1 automation on"_s) << "auto-select, from the start";
    int count = 1;
    for (const AutomationSwitch which :
         {AutomationSwitch::autoPurgeSustainedMemory, AutomationSwitch::autoScanRemoteMacs,
          AutomationSwitch::diskAutopilotEnabled, AutomationSwitch::aiSafeActionsEnabled}) {
        automation().set(which, true);
        settle();
        EXPECT_EQ(capsule(), u"%1 automations on"_s.arg(++count));
    }
    automation().set(AutomationSwitch::notificationsIncludeActions, false);
    settle();
    EXPECT_EQ(capsule(), u"5 automations on"_s) << "it does not act automatically";
    for (const AutomationSwitch which : allAutomationSwitches) {
        automation().set(which, false);
    }
    settle();
    EXPECT_EQ(capsule(), u"No automations on"_s);
}

TEST_F(EmergencyStopTest, TheStripStopsAndThenOffersOnlyTheWayBack) {
    showWithSample();
    for (const AppRoute each : allAppRoutes) {
        goTo(each);
        SCOPED_TRACE(std::string(rawValue(each)));
        EXPECT_EQ(visible("status.resume-manual-mode"), nullptr);
        click("status.emergency-stop");
        EXPECT_TRUE(automation().isStopEngaged());
        EXPECT_EQ(lastAction(), stopped);
        EXPECT_EQ(visible("status.emergency-stop"), nullptr);
        ASSERT_NE(visible("status.resume-manual-mode"), nullptr);
        tallowcrest::setSettlingTime(*visible("status.resume-manual-mode"),
                                     std::chrono::milliseconds(0));
        settle();
        click("status.resume-manual-mode");
        EXPECT_FALSE(automation().isStopEngaged());
        EXPECT_EQ(lastAction(), resumed);
        tallowcrest::setSettlingTime(*visible("status.emergency-stop"),
                                     std::chrono::milliseconds(0));
        settle();
    }
}

TEST_F(EmergencyStopTest, ADoubleClickInTheStripNeitherResumesNorStopsAgain) {
    showWithSample();
    const auto isReady = [this](const char* button) { return visible(button)->isEnabled(); };
    EXPECT_TRUE(isReady("status.emergency-stop")) << "from the start";
    click("status.emergency-stop");
    click("status.resume-manual-mode");
    EXPECT_TRUE(automation().isStopEngaged());
    resume();
    EXPECT_FALSE(isReady("status.emergency-stop"));
    click("status.emergency-stop");
    EXPECT_FALSE(automation().isStopEngaged());
    expectKeyStops(Qt::Key_Period, Qt::ControlModifier, "while the button settles");
}

TEST_F(EmergencyStopTest, AKeyInTheStripStopsAndTabGoesOnToTheWayBack) {
    showWithSample();
    visible("status.emergency-stop")->setFocus(Qt::TabFocusReason);
    press(Qt::Key_Space);
    EXPECT_TRUE(automation().isStopEngaged());
    press(Qt::Key_Space);
    EXPECT_TRUE(automation().isStopEngaged()) << "the key that pressed the other button";
    tallowcrest::setSettlingTime(*visible("status.resume-manual-mode"),
                                 std::chrono::milliseconds(0));
    settle();
    press(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), visible("status.resume-manual-mode"));
}

TEST_F(EmergencyStopTest, OnlyTheTextsOfTheStripAreShortened) {
    showWithSample();
    machine.monitor().log().setLastAction(
        "Selected gnome-system-monitor from CPU + Memory Processes. No action has run yet.");
    int height = 0;
    for (const bool isEngaged : {false, true}) {
        if (isEngaged) {
            automation().engageEmergencyStop();
        }
        const char* const button =
            isEngaged ? "status.resume-manual-mode" : "status.emergency-stop";
        for (const int width : {640, 800, 859, 900, 1080, 1600}) {
            window().resize(width, 600);
            settle();
            SCOPED_TRACE(width);
            const QWidget* strip = visible(button)->parentWidget();
            height = height == 0 ? strip->height() : height;
            EXPECT_EQ(strip->height(), height);
            int end = 0;
            for (const char* part : {"status.automation", "status.threshold", button}) {
                EXPECT_EQ(visible(part)->size(), visible(part)->sizeHint()) << part;
                EXPECT_GE(visible(part)->x(), end) << part;
                end = visible(part)->geometry().right();
            }
            const QRect session = visible("status.session")->geometry();
            const QRect outcome = visible("status.last-action")->geometry();
            EXPECT_FALSE(session.intersects(outcome));
            EXPECT_LT(session.united(outcome).right(), visible("status.automation")->x());
            const auto* shown = visible<ElidedLabel>("status.session");
            EXPECT_EQ(shown->shownLines(), QStringList(shown->text()));
            EXPECT_EQ(shown->text() == u"Last 4 seconds"_s, width == 640);
            EXPECT_TRUE((shown->text() + shown->accessibleDescription())
                            .contains(u"Current session · last 4 seconds"_s));
            EXPECT_EQ(visible("status.last-action")->accessibleName().toStdString(), lastAction());
            EXPECT_EQ(visible("status.automation")->accessibleName(),
                      isEngaged ? u"Emergency Stop Engaged"_s : u"1 automation on"_s);
        }
    }
}

}  // namespace
}  // namespace tallowcrest
