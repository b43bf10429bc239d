#include "presentation/widgets/menu_button.h"

#include <QAccessible>
#include <QAction>
#include <QMenu>
#include <QTest>
#include <gmock/gmock.h>

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

class MenuButtonTest : public testing::Test {
protected:
    MenuButtonTest() {
        first = button.menu().addAction(u"First"_s);
        button.menu().addAction(u"Second"_s);
        button.show();
    }
    /// Whether the menu was open; closes it.
    bool takeOpen() {
        const bool isOpen = button.menu().isVisible();
        button.menu().close();
        return isOpen;
    }

    MenuButton button{u"More"_s, u"probe"_s, u"Opens more"_s};
    QAction* first = nullptr;
};

TEST_F(MenuButtonTest, AClickAndKeysOpenTheMenu) {
    EXPECT_FALSE(takeOpen());
    QTest::mouseClick(&button, Qt::LeftButton);
    EXPECT_TRUE(takeOpen());
    for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter, Qt::Key_Down}) {
        QTest::keyClick(&button, key);
        EXPECT_EQ(button.menu().activeAction(), first) << key;
        EXPECT_TRUE(takeOpen()) << key;
    }
    QTest::keyClick(&button, Qt::Key_Up);
    EXPECT_FALSE(takeOpen());
}

TEST_F(MenuButtonTest, AssistiveTechnologyFindsAButtonWithAMenu) {
    QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(&button);
    ASSERT_NE(spoken, nullptr);
    EXPECT_EQ(spoken->role(), QAccessible::ButtonMenu);
    EXPECT_TRUE(spoken->state().hasPopup);
    EXPECT_EQ(spoken->text(QAccessible::Name), u"More"_s);
    EXPECT_EQ(spoken->text(QAccessible::Description), u"Opens more"_s);
    spoken->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_TRUE(takeOpen());
}

}  // namespace
}  // namespace tallowcrest
