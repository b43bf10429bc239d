#include "presentation/widgets/button.h"

#include <QKeyEvent>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

#include "presentation/widgets/text_button.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

void expectReturnClicksOnce(QAbstractButton& button) {
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space}) {
        const QSignalSpy clicks(&button, &QAbstractButton::clicked);
        QTest::keyPress(&button, key);
        QKeyEvent held(QEvent::KeyPress, key, Qt::NoModifier, QString(), true);
        QApplication::sendEvent(&button, &held);
        QTest::keyRelease(&button, key);
        EXPECT_EQ(clicks.count(), 1) << key;
    }
}

TEST(ButtonTest, ReturnClicksItOnceHoweverLongItIsHeldDown) {
    QWidget window;
    expectReturnClicksOnce(*makeButton(u"Go"_s, QString(), u"go"_s, u"Goes"_s, &window));
}

TEST(ButtonTest, ReturnClicksATextButtonToo) {
    TextButton button(u"order"_s, &CrestTheme::text);
    expectReturnClicksOnce(button);
}

TEST(ButtonTest, ReturnLeavesADisabledButtonAlone) {
    QWidget window;
    QPushButton* button = makeButton(u"Go"_s, QString(), u"go"_s, u"Goes"_s, &window);
    button->setEnabled(false);
    const QSignalSpy clicks(button, &QAbstractButton::clicked);
    QTest::keyClick(button, Qt::Key_Return);
    EXPECT_EQ(clicks.count(), 0);
}

class DisabledButtonTest : public testing::Test {
protected:
    DisabledButtonTest() { window_.show(); }

    QPushButton* add(const QString& name) {
        return makeButton(name, QString(), name, name, &window_);
    }
    static void disable(QPushButton* button) { setButtonEnabled(*button, false); }
    static void enable(QPushButton* button) { setButtonEnabled(*button, true); }
    QWidget* focus() { return window_.focusWidget(); }

    QWidget window_;
    QPushButton* first_ = add(u"first"_s);
    QPushButton* second_ = add(u"second"_s);
};

TEST_F(DisabledButtonTest, GetsTheFocusBackThatItHad) {
    second_->setFocus();
    disable(second_);
    EXPECT_EQ(focus(), nullptr);
    disable(second_);
    enable(first_);
    EXPECT_EQ(focus(), nullptr) << "still under way";
    enable(second_);
    EXPECT_EQ(focus(), second_);
    disable(first_);
    enable(first_);
    EXPECT_EQ(focus(), second_);
}

TEST_F(DisabledButtonTest, LeavesTheFocusWhereItsOwnerMovedIt) {
    second_->setFocus();
    disable(second_);
    first_->setFocus();
    enable(second_);
    EXPECT_EQ(focus(), first_);
    first_->clearFocus();
    enable(second_);
    EXPECT_EQ(focus(), nullptr) << "the wait has ended";
}

TEST_F(DisabledButtonTest, OfTwoTheLatestGetsTheFocusWhicheverIsEnabledFirst) {
    for (const auto& order : {std::pair(first_, second_), std::pair(second_, first_)}) {
        first_->setFocus();
        disable(first_);
        second_->setFocus();
        disable(second_);
        enable(order.first);
        enable(order.second);
        EXPECT_EQ(focus(), second_);
    }
}

TEST_F(DisabledButtonTest, OneThatIsHiddenMeanwhileGetsNoFocusAndPassesNoneOn) {
    first_->setFocus();
    disable(first_);
    second_->setFocus();
    disable(second_);
    second_->hide();
    enable(second_);
    enable(first_);
    EXPECT_EQ(focus(), nullptr) << "a key for the second must not press the first";
    second_->show();
    enable(second_);
    EXPECT_EQ(focus(), nullptr);
}

}  // namespace
}  // namespace tallowcrest
