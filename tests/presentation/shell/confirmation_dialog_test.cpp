#include "presentation/shell/confirmation_dialog.h"

#include <chrono>
#include <functional>

#include "actions/actions.h"
#include "tests/presentation/shell/confirmation_fixture.h"
#include "tests/presentation/widgets/paint_count.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

class ConfirmationDialogTest : public ConfirmationFixture {};

// Canceling --------------------------------------------------------------------------------------

TEST_F(ConfirmationDialogTest, CancelIsTheDefaultAndHasTheFocus) {
    showAndAsk();
    EXPECT_EQ(QApplication::focusWidget(), &cancel());
    EXPECT_TRUE(cancel().isDefault());
    EXPECT_FALSE(confirm().isDefault());
    EXPECT_FALSE(confirm().autoDefault());
    press(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), &confirm());
    EXPECT_FALSE(confirm().isDefault());
    press(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), &cancel());
}

TEST_F(ConfirmationDialogTest, EveryDismissalCancelsOnce) {
    showWithSample();
    const std::vector<std::pair<const char*, std::function<void()>>> ways{
        {"Cancel", [this] { QTest::mouseClick(&cancel(), Qt::LeftButton); }},
        {"Escape", [this] { QTest::keyClick(&cancel(), Qt::Key_Escape); }},
        {"Escape on the other button", [this] { QTest::keyClick(&confirm(), Qt::Key_Escape); }},
        {"Space on Cancel", [this] { QTest::keyClick(&cancel(), Qt::Key_Space); }},
        {"closing the dialog", [this] { dialog().close(); }},
        {"ending the dialog", [this] { dialog().reject(); }},
    };
    for (const auto& [name, dismiss] : ways) {
        canceled.clear();
        ask(probe(name));
        setSettlingTime(0ms);
        dismiss();
        settle();
        EXPECT_FALSE(isOpen()) << name;
        EXPECT_THAT(canceled, ElementsAre(name));
        EXPECT_EQ(lastAction(), std::string("Canceled: ") + name + ".");
    }
    EXPECT_THAT(confirmed, IsEmpty());
}

TEST_F(ConfirmationDialogTest, ReturnNeverConfirms) {
    showWithSample();
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
        for (const char* focused : {"confirmation.cancel", "confirmation.confirm"}) {
            ask(probe(focused));
            setSettlingTime(0ms);
            visible(focused)->setFocus();
            ASSERT_EQ(QApplication::focusWidget(), visible(focused));
            press(key);
            EXPECT_THAT(confirmed, IsEmpty()) << focused;
            EXPECT_FALSE(isOpen()) << "it presses the default button, also from " << focused;
            EXPECT_FALSE(desk().pendingConfirmation());
        }
    }
    EXPECT_EQ(canceled.size(), 4U);
}

TEST_F(ConfirmationDialogTest, ClosingTheWindowOrAllWindowsCancels) {
    for (const bool endsApplication : {false, true}) {
        canceled.clear();
        showAndAsk();
        if (endsApplication) {
            QApplication::closeAllWindows();
        } else {
            window().close();
        }
        settle();
        EXPECT_FALSE(isOpen());
        EXPECT_FALSE(window().isVisible());
        EXPECT_THAT(canceled, ElementsAre("Go on?"));
        window().show();
        settle();
        EXPECT_FALSE(isOpen());
    }
}

TEST_F(ConfirmationDialogTest, IsDestroyedWithItsWindow) {
    showWithSample();
    {
        DashboardWindow passing(machine.monitor());
        passing.show();
        settle();
        desk().requestConfirmation(probe());
        settle();
        ASSERT_TRUE(passing.findChild<ConfirmationDialog*>()->isVisible());
        window().hide();
        desk().requestConfirmation(probe("Another?"));
        settle();
    }
    EXPECT_TRUE(desk().pendingConfirmation());
    settle();
}

// Confirming -------------------------------------------------------------------------------------

TEST_F(ConfirmationDialogTest, AClickOrSpaceConfirmsOnce) {
    showWithSample();
    const std::vector<std::pair<const char*, std::function<void()>>> ways{
        {"click", [this] { QTest::mouseClick(&confirm(), Qt::LeftButton); }},
        {"double click",
         [this] {
             QPushButton& button = confirm();
             QTest::mouseClick(&button, Qt::LeftButton);
             QTest::mouseDClick(&button, Qt::LeftButton);
         }},
        {"Space", [this] { QTest::keyClick(&confirm(), Qt::Key_Space); }},
        {"Space twice",
         [this] {
             QPushButton& button = confirm();
             QTest::keyClick(&button, Qt::Key_Space);
             QTest::keyClick(&button, Qt::Key_Space);
         }},
    };
    for (const auto& [name, press] : ways) {
        confirmed.clear();
        ask(probe(name));
        setSettlingTime(0ms);
        press();
        settle();
        EXPECT_FALSE(isOpen()) << name;
        EXPECT_FALSE(desk().pendingConfirmation()) << name;
        EXPECT_THAT(confirmed, ElementsAre(name));
    }
    EXPECT_THAT(canceled, IsEmpty());
}

TEST_F(ConfirmationDialogTest, ConfirmingSignalsTheProcess) {
    showWithSample();
    machine.monitor().actions().review.selectProcess(machine.metrics->processes[0]);
    machine.monitor().actions().local.requestQuitSelectedProcess();
    settle();
    click("confirmation.cancel");
    EXPECT_THAT(machine.actions.processes->signalled, IsEmpty());
    EXPECT_EQ(lastAction(), "Canceled: Quit photo-indexer?.");
    setSettlingTime(0ms);
    machine.monitor().actions().local.requestQuitSelectedProcess();
    settle();
    click("confirmation.confirm");
    EXPECT_THAT(machine.actions.processes->signalled,
                ElementsAre(FakeProcessControl::Signalled{800, FakeMachine::firstStartTime}));
    EXPECT_EQ(lastAction(), "Asked process 800 to quit.");
}

// Other requests ---------------------------------------------------------------------------------

TEST_F(ConfirmationDialogTest, ClosesWhenTheRequestIsAnsweredElsewhere) {
    showAndAsk();
    desk().confirmPending();
    settle();
    EXPECT_FALSE(isOpen());
    EXPECT_THAT(confirmed, ElementsAre("Go on?"));
    EXPECT_THAT(canceled, IsEmpty());
    ask(probe("Again?"));
    desk().cancelPending();
    settle();
    EXPECT_FALSE(isOpen());
    EXPECT_THAT(canceled, ElementsAre("Again?"));
}

TEST_F(ConfirmationDialogTest, DismissingAnAnsweredRequestCancelsNothing) {
    showAndAsk();
    desk().confirmPending();
    dialog().reject();
    EXPECT_FALSE(isOpen());
    settle();
    EXPECT_THAT(canceled, IsEmpty());
    EXPECT_THAT(confirmed, ElementsAre("Go on?"));
}

TEST_F(ConfirmationDialogTest, ASecondRequestReplacesTheFirstAndCannotBeConfirmedAtOnce) {
    showAndAsk("First?");
    setSettlingTime(1h);
    confirm().setFocus();
    ask(probe("Second?"));
    EXPECT_EQ(textOf("confirmation.title"), u"Second?"_s);
    EXPECT_EQ(QApplication::focusWidget(), &cancel());
    ASSERT_FALSE(confirm().isEnabled());
    QTest::mouseClick(&confirm(), Qt::LeftButton);
    QTest::keyClick(&confirm(), Qt::Key_Space);
    settle();
    EXPECT_TRUE(isOpen());
    EXPECT_THAT(confirmed, IsEmpty());
    EXPECT_THAT(canceled, IsEmpty());
}

TEST_F(ConfirmationDialogTest, CanBeConfirmedAfterTheSettlingTime) {
    showAndAsk("First?");
    setSettlingTime(0ms);
    desk().requestConfirmation(probe("Second?"));
    // Without processing Qt events, which would end the settling time.
    machine.mainQueue.drain();
    EXPECT_EQ(textOf("confirmation.title"), u"Second?"_s);
    EXPECT_FALSE(confirm().isEnabled());
    settle();
    EXPECT_TRUE(confirm().isEnabled());
    click("confirmation.confirm");
    EXPECT_THAT(confirmed, ElementsAre("Second?"));
    EXPECT_THAT(canceled, IsEmpty());
}

TEST_F(ConfirmationDialogTest, APressOnTheOldRequestDoesNotConfirmTheNewOne) {
    showAndAsk("First?");
    setSettlingTime(0ms);
    confirm().setFocus();
    QTest::keyPress(&confirm(), Qt::Key_Space);
    ask(probe("Second?"));
    QTest::keyRelease(&confirm(), Qt::Key_Space);
    settle();
    EXPECT_THAT(confirmed, IsEmpty());
    EXPECT_TRUE(isOpen());
}

TEST_F(ConfirmationDialogTest, AnAnswerToAReplacedRequestAnswersNone) {
    for (const char* identifier : {"confirmation.confirm", "confirmation.cancel"}) {
        showAndAsk("First?");
        setSettlingTime(0ms);
        settle();
        desk().requestConfirmation(probe("Second?"));
        // Before the dialog is notified.
        QTest::mouseClick(visible<QPushButton>(identifier), Qt::LeftButton);
        EXPECT_TRUE(isOpen());
        EXPECT_EQ(textOf("confirmation.title"), u"Second?"_s);
        EXPECT_TRUE(desk().pendingConfirmation());
        EXPECT_THAT(confirmed, IsEmpty());
        EXPECT_THAT(canceled, IsEmpty());
        desk().confirmPending();
        settle();
        confirmed.clear();
    }
}

TEST_F(ConfirmationDialogTest, ARequestAfterAnAnswerCannotBeConfirmedAtOnce) {
    showAndAsk("First?");
    setSettlingTime(1h);
    click("confirmation.confirm");
    ask(probe("Second?"));
    EXPECT_FALSE(confirm().isEnabled());
}

TEST_F(ConfirmationDialogTest, TheSecondClickOfADoubleClickDoesNotConfirm) {
    showAndAsk("First?");
    click("confirmation.cancel");
    setSettlingTime(1h);
    ask(probe("Second?"));
    QTest::mouseClick(&confirm(), Qt::LeftButton);
    settle();
    EXPECT_TRUE(isOpen());
    EXPECT_FALSE(confirm().isEnabled());
    EXPECT_THAT(confirmed, IsEmpty());
    EXPECT_GE(SettlingButton::settlingTime.count(), QApplication::doubleClickInterval());
}

TEST_F(ConfirmationDialogTest, CannotBeConfirmedAtOnceAfterActivation) {
    showAndAsk();
    EXPECT_TRUE(confirm().isEnabled());
    setSettlingTime(1h);
    QEvent activation(QEvent::WindowActivate);
    QApplication::sendEvent(&dialog(), &activation);
    EXPECT_FALSE(confirm().isEnabled());
}

// While it is open -------------------------------------------------------------------------------

TEST_F(ConfirmationDialogTest, ASampleChangesNothing) {
    showAndAsk();
    confirm().setFocus();
    settle();
    const QRect before = dialog().geometry();
    PaintCount paints(dialog());
    for (int i = 0; i < 3; ++i) {
        machine.metrics->processes[0].cpu += 40.0;
        tick();
    }
    EXPECT_EQ(paints.take(), 0);
    EXPECT_EQ(QApplication::focusWidget(), &confirm());
    EXPECT_EQ(dialog().geometry(), before);
    EXPECT_TRUE(confirm().isEnabled());
    EXPECT_THAT(canceled, IsEmpty());
}

TEST_F(ConfirmationDialogTest, SurvivesAChangeOfRoute) {
    showAndAsk();
    for (const AppRoute each : allAppRoutes) {
        goTo(each);
        EXPECT_TRUE(isOpen()) << rawValue(each);
        EXPECT_EQ(textOf("confirmation.title"), u"Go on?"_s);
    }
    EXPECT_THAT(canceled, IsEmpty());
    click("confirmation.confirm");
    EXPECT_THAT(confirmed, ElementsAre("Go on?"));
}

TEST_F(ConfirmationDialogTest, WaitsForAClosedWindow) {
    showWithSample();
    window().close();
    desk().requestConfirmation(probe());
    settle();
    EXPECT_FALSE(isOpen());
    EXPECT_TRUE(desk().pendingConfirmation());
    window().bringToFront();
    settle();
    EXPECT_TRUE(isOpen());
    EXPECT_THAT(canceled, IsEmpty());
}

TEST_F(ConfirmationDialogTest, ARequestMadeWhileTheWindowClosesWaitsForIt) {
    showAndAsk();
    desk().requestConfirmation(probe("Second?"));
    window().close();
    settle();
    EXPECT_FALSE(isOpen());
    ASSERT_TRUE(desk().pendingConfirmation());
    EXPECT_EQ(desk().pendingConfirmation()->title, "Second?");
    window().bringToFront();
    settle();
    EXPECT_TRUE(isOpen());
    EXPECT_EQ(textOf("confirmation.title"), u"Second?"_s);
    EXPECT_THAT(canceled, IsEmpty());
}

TEST_F(ConfirmationDialogTest, AMinimisedWindowKeepsTheRequestPending) {
    showAndAsk();
    window().showMinimized();
    settle();
    tick();
    EXPECT_TRUE(desk().pendingConfirmation());
    EXPECT_THAT(canceled, IsEmpty());
    window().bringToFront();
    settle();
    EXPECT_TRUE(isOpen());
    EXPECT_FALSE(window().isMinimized());
    desk().cancelPending();
    settle();
    window().showMinimized();
    settle();
    desk().requestConfirmation(probe("Later?"));
    settle();
    EXPECT_FALSE(isOpen());
    window().bringToFront();
    settle();
    EXPECT_TRUE(isOpen());
}

TEST_F(ConfirmationDialogTest, BringingTheWindowToTheFrontKeepsTheFocusInTheDialog) {
    showAndAsk();
    window().bringToFront();
    settle();
    EXPECT_EQ(QApplication::activeWindow(), &dialog());
    EXPECT_EQ(QApplication::focusWidget(), &cancel());
}

}  // namespace
}  // namespace tallowcrest
