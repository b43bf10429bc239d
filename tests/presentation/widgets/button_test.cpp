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

}  // namespace
}  // namespace tallowcrest
