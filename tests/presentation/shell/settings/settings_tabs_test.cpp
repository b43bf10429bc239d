#include <utility>

#include <QAccessible>
#include <QLineEdit>
#include <QPushButton>

#include "presentation/shell/settings/automation_tab.h"
#include "presentation/shell/settings/remote_tab.h"
#include "presentation/shell/settings/safety_tab.h"
#include "presentation/shell/settings/stored_field.h"
#include "presentation/widgets/step_slider.h"
#include "tests/presentation/shell/announcements.h"
#include "tests/presentation/shell/settings/tab_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Remote -----------------------------------------------------------------------------------------

class RemoteTabTest : public TabFixture<RemoteTab> {
protected:
    RemoteTabTest() {
        tab.show(u"owner"_s, u"A key."_s);
        QObject::connect(&tab.user(), &StoredField::entered, &listener,
                         [this](const QString& typed) { entered.append(typed); });
    }

    QLineEdit& user() { return *visible<QLineEdit>("settings.ssh-user"); }
    QString refusal() { return textOf("settings.ssh-user.refusal"); }
    void type(const char* text) {
        user().setFocus();
        user().selectAll();
        QTest::keyClicks(&user(), QString::fromLatin1(text));
    }

    QStringList entered;
    QObject listener;  ///< ends before the tab, which reports a typed text when it ends
};

TEST_F(RemoteTabTest, ShowsTheUserAndTheKey) {
    EXPECT_EQ(headings().join(u'|'), u"Remote Access"_s);
    EXPECT_EQ(user().text(), u"owner"_s);
    EXPECT_EQ(user().placeholderText(), u"remote username"_s);
    EXPECT_EQ(user().accessibleName(), u"SSH User"_s);
    EXPECT_EQ(textOf("settings.public-key-status"), u"A key."_s);
}

TEST_F(RemoteTabTest, ANameIsEnteredByReturnAndByLeavingTheField) {
    type("  build.bot-2 ");
    EXPECT_THAT(entered, IsEmpty()) << "not while it is being typed";
    press(Qt::Key_Return);
    EXPECT_THAT(entered, ElementsAre(u"  build.bot-2 "_s));
    tab.user().setStored(u"build.bot-2"_s);
    EXPECT_EQ(user().text(), u"build.bot-2"_s);
    type("someone");
    user().clearFocus();
    EXPECT_THAT(entered, ElementsAre(u"  build.bot-2 "_s, u"someone"_s));
}

TEST_F(RemoteTabTest, ARefusedNameStaysInTheFieldToBeCorrected) {
    type("two words");
    press(Qt::Key_Return);
    EXPECT_EQ(refusal(), u"(not shown)"_s);
    tab.user().showRefusal(u"No."_s);
    EXPECT_EQ(refusal(), u"No."_s);
    EXPECT_EQ(user().accessibleDescription(), u"No."_s);
    {
        const Announcements announcements;
        press(Qt::Key_Return);
        EXPECT_THAT(announcements.said(), ElementsAre("No."));
    }
    user().clearFocus();
    EXPECT_THAT(entered, ElementsAre(u"two words"_s)) << "the same text is not entered twice";
    tab.show(u"owner"_s, {});
    EXPECT_EQ(user().text(), u"two words"_s) << "a sample does not replace it";
    user().setFocus();
    QTest::keyClick(&user(), Qt::Key_Backspace);
    EXPECT_EQ(refusal(), u"(not shown)"_s);
    press(Qt::Key_Return);
    EXPECT_THAT(entered, ElementsAre(u"two words"_s, u"two word"_s));
    tab.user().showRefusal(u"No."_s);
    EXPECT_EQ(refusal(), u"No."_s);
    tab.user().setStored(u"owner"_s);
    EXPECT_EQ(user().text(), u"owner"_s);
    EXPECT_EQ(refusal(), u"(not shown)"_s);
}

TEST_F(RemoteTabTest, ANameThatAssistiveTechnologySetsIsEnteredToo) {
    const auto set = [this](const QString& name) {
        QAccessible::queryAccessibleInterface(&user())->editableTextInterface()->replaceText(
            0, static_cast<int>(user().text().size()), name);
    };
    set(u"two words"_s);
    tab.show(u"owner"_s, {});
    EXPECT_EQ(user().text(), u"two words"_s) << "a sample does not replace it";
    user().setFocus();
    user().clearFocus();
    EXPECT_THAT(entered, ElementsAre(u"two words"_s));
    tab.user().showRefusal(u"No."_s);
    set(u"someone"_s);
    EXPECT_EQ(refusal(), u"(not shown)"_s);
    tab.hide();
    EXPECT_THAT(entered, ElementsAre(u"two words"_s, u"someone"_s)) << "without having the focus";
}

TEST_F(RemoteTabTest, AnotherStoredNameReplacesOneThatWasLeftAlone) {
    tab.show(u"someone"_s, {});
    EXPECT_EQ(user().text(), u"someone"_s);
    user().setFocus();
    user().clearFocus();
    EXPECT_THAT(entered, IsEmpty());
}

// Automation -------------------------------------------------------------------------------------

class AutomationTabTest : public TabFixture<AutomationTab> {
protected:
    AutomationTabTest() : TabFixture(new QWidget, new QWidget) {
        tab.show(settings);
        QObject::connect(&tab, &AutomationTab::limitMoved,
                         [this](AutomationTab::Limit limit, double value) {
                             ++moves;
                             settings.*limit = value;
                             tab.show(settings);
                         });
    }

    StepSlider& slider(const char* identifier) { return *visible<StepSlider>(identifier); }
    double valueOf(const char* identifier) {
        return slider(identifier).scale().valueAt(slider(identifier).value());
    }
    QString wordsOf(const char* identifier) {
        return textOf((std::string(identifier) + ".value").c_str());
    }
    void moveTo(const char* identifier, double value) {
        slider(identifier).setValue(slider(identifier).scale().nearestStep(value));
        settle();
    }

    Settings settings;
    int moves = 0;
};

TEST_F(AutomationTabTest, EachLimitHasItsScaleAndEmitsItsNewValue) {
    EXPECT_EQ(headings().join(u'|'), u"Auto Rules|AI Disk Autopilot"_s);
    struct Case {
        const char* identifier;
        const char* title;
        AutomationTab::Limit limit;
        double minimum, maximum, step;
        const char* words;
        double other;
        const char* otherWords;
    };
    for (const Case& each :
         {Case{"settings.warning-threshold", "Warn at, percent", &Settings::warningThreshold, 65,
               95, 1, "82%", 70, "70%"},
          Case{"settings.disk-minimum-free", "Act below, GB free", &Settings::diskMinimumFreeGB, 5,
               100, 5, "20 GB free", 100, "100 GB free"},
          Case{"settings.disk-cache-age", "Minimum cache age, days", &Settings::diskCleanupAgeDays,
               7, 90, 1, "30 days", 7, "7 days"},
          Case{"settings.disk-maximum", "Maximum per run, GB", &Settings::diskMaxCleanupGB, 0.5, 10,
               0.5, "2.0 GB", 1.5, "1.5 GB"}}) {
        SCOPED_TRACE(each.identifier);
        const StepSlider& shown = slider(each.identifier);
        EXPECT_EQ(shown.accessibleName(), QString::fromLatin1(each.title));
        EXPECT_EQ(shown.scale().minimum, each.minimum);
        EXPECT_EQ(shown.scale().maximum, each.maximum);
        EXPECT_EQ(shown.scale().step, each.step);
        EXPECT_EQ(wordsOf(each.identifier), QString::fromLatin1(each.words));
        EXPECT_DOUBLE_EQ(valueOf(each.identifier), settings.*each.limit);
        moveTo(each.identifier, each.other);
        EXPECT_EQ(settings.*each.limit, each.other);
        EXPECT_EQ(wordsOf(each.identifier), QString::fromLatin1(each.otherWords));
    }
}

TEST_F(AutomationTabTest, ALimitOffItsScaleIsShownUnchanged) {
    settings.diskMinimumFreeGB = 12.5;
    settings.diskCleanupAgeDays = 200.0;
    settings.warningThreshold = 90.0;
    tab.show(settings);
    EXPECT_EQ(wordsOf("settings.disk-minimum-free"), u"12.5 GB free"_s);
    EXPECT_EQ(wordsOf("settings.disk-cache-age"), u"200 days"_s);
    EXPECT_EQ(slider("settings.disk-cache-age").value(),
              slider("settings.disk-cache-age").maximum());
    EXPECT_EQ(wordsOf("settings.warning-threshold"), u"90%"_s);
    EXPECT_EQ(slider("settings.warning-threshold").value(), 25);
    EXPECT_EQ(moves, 0) << "showing it changes nothing";
}

// Safety -----------------------------------------------------------------------------------------

class SafetyTabTest : public TabFixture<SafetyTab> {
protected:
    SafetyTabTest() {
        show();
        QObject::connect(&tab, &SafetyTab::removalWanted, [this](const std::string& name) {
            names.erase(name);
            show();
        });
        QObject::connect(&tab, &SafetyTab::stopWanted, [this] { setStopped(true); });
        QObject::connect(&tab, &SafetyTab::resumeWanted, [this] { setStopped(false); });
    }

    void show() { tab.show(names, isStopped); }
    void setStopped(bool stopped) {
        isStopped = stopped;
        show();
    }
    void protect(ProtectedAppNames given) {
        names = std::move(given);
        show();
        settle();
    }

    QPushButton* engage() { return visible<QPushButton>("settings.emergency-stop.engage"); }
    QPushButton* resume() { return visible<QPushButton>("settings.emergency-stop.resume"); }
    void expectFocusOn(const char* name) {
        ASSERT_NE(QApplication::focusWidget(), nullptr);
        EXPECT_EQ(QApplication::focusWidget()->accessibleName(), QString::fromLatin1(name));
    }

    ProtectedAppNames names;
    bool isStopped = false;
};

TEST_F(SafetyTabTest, SaysThatNothingIsProtectedYet) {
    EXPECT_EQ(textOf("settings.never-quit.none"), u"No custom app groups are protected yet."_s);
    protect({"Docker"});
    EXPECT_EQ(textOf("settings.never-quit.none"), u"(not shown)"_s);
    EXPECT_NE(visible("settings.never-quit.remove.Docker"), nullptr);
}

TEST_F(SafetyTabTest, RemovesNamesFromTheList) {
    protect({"Docker", "Logic Pro", "Mail"});
    EXPECT_EQ(visible("settings.never-quit.remove.Logic Pro")->accessibleName(),
              u"Remove Logic Pro"_s);
    click("settings.never-quit.remove.Logic Pro");
    EXPECT_THAT(names, ElementsAre("Docker", "Mail"));
    EXPECT_EQ(visible("settings.never-quit.remove.Logic Pro"), nullptr);
    expectFocusOn("Remove Mail");
    press(Qt::Key_Space);
    expectFocusOn("Remove Docker");
    press(Qt::Key_Space);
    EXPECT_THAT(names, IsEmpty());
    EXPECT_NE(textOf("settings.never-quit.none"), u"(not shown)"_s);
    expectFocusOn("Never Quit And Guardrails");
}

TEST_F(SafetyTabTest, AHostileNameIsShownOnOneLineAndCanBeRemoved) {
    protect({"two\nlines\u202e"});
    QAbstractButton* removal = nullptr;
    for (auto* button : tab.findChildren<QAbstractButton*>()) {
        if (button->accessibleName() == u"Remove two\uFFFDlines\uFFFD"_s) {
            removal = button;
        }
    }
    ASSERT_NE(removal, nullptr);
    QTest::mouseClick(removal, Qt::LeftButton);
    EXPECT_THAT(names, IsEmpty());
}

TEST_F(SafetyTabTest, ReturnStopsAndDoesNotRemoveProtection) {
    protect({"Docker", "Mail"});
    auto* removal = visible<QPushButton>("settings.never-quit.remove.Docker");
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
        removal->setFocus();
        press(key);
        EXPECT_THAT(names, testing::SizeIs(2));
    }
    engage()->setFocus();
    press(Qt::Key_Return);
    EXPECT_TRUE(isStopped);
}

TEST_F(SafetyTabTest, TheStopInBothStatesWordForWord) {
    EXPECT_EQ(visible("settings.emergency-stop")->accessibleName(), u"Automation Emergency Stop"_s);
    EXPECT_EQ(textOf("settings.emergency-stop.words"),
              u"Immediately disables automatic cleanup, purge, remote scans, and AI "
              "autonomous execution."_s);
    EXPECT_EQ(engage()->text(), u"Emergency Stop"_s);
    EXPECT_EQ(resume(), nullptr);

    click("settings.emergency-stop.engage");
    EXPECT_TRUE(isStopped);
    EXPECT_EQ(visible("settings.emergency-stop")->accessibleName(), u"Emergency Stop Engaged"_s);
    EXPECT_EQ(textOf("settings.emergency-stop.words"),
              u"All automatic actions are off. Resume returns to manual Apprentice "
              "mode and leaves every automation disabled."_s);
    EXPECT_EQ(engage(), nullptr) << "while the stop is engaged, only Resume is shown";
    EXPECT_EQ(resume()->text(), u"Resume Manual Mode"_s);
}

TEST_F(SafetyTabTest, ADoubleClickOnTheStopDoesNotResume) {
    click("settings.emergency-stop.engage");
    EXPECT_FALSE(resume()->isEnabled());
    QTest::mouseClick(resume(), Qt::LeftButton);
    press(Qt::Key_Space);
    press(Qt::Key_Return);
    EXPECT_TRUE(isStopped);
}

TEST_F(SafetyTabTest, AStopFromElsewhereCannotBeResumedAtOnce) {
    engage()->setFocus();
    setStopped(true);
    EXPECT_EQ(engage(), nullptr);
    ASSERT_NE(resume(), nullptr);
    EXPECT_FALSE(resume()->isEnabled());
    expectFocusOn("Emergency Stop Engaged");
    press(Qt::Key_Space);
    EXPECT_TRUE(isStopped);
}

TEST_F(SafetyTabTest, ResumeIsEnabledAfterTheSettlingTime) {
    setSettlingTime(tab, std::chrono::milliseconds(0));
    engage()->setFocus();
    press(Qt::Key_Space);
    expectFocusOn("Emergency Stop Engaged");
    ASSERT_TRUE(QTest::qWaitFor([this] { return resume()->isEnabled(); }));
    click("settings.emergency-stop.resume");
    EXPECT_FALSE(isStopped);
    expectFocusOn("Automation Emergency Stop");
}

TEST_F(SafetyTabTest, TheStopOfAnEarlierRunCanBeResumedAtOnce) {
    SafetyTab other;
    other.show({}, true);
    const auto* way = other.findChild<QPushButton*>(u"settings.emergency-stop.resume"_s);
    EXPECT_TRUE(way->isVisibleTo(&other) && way->isEnabled());
}

}  // namespace
}  // namespace tallowcrest
