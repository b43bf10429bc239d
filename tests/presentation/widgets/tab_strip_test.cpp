#include "presentation/widgets/tab_strip.h"

#include "presentation/widgets/theme.h"
#include "tests/presentation/is_ringed.h"
#include "tests/presentation/widget_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class TabStripTest : public WidgetFixture {
protected:
    TabStripTest() {
        for (const QString& title : {u"One"_s, u"Two"_s, u"Three"_s}) {
            strip.addTab(title, title.toLower(), u"About "_s + title);
        }
        strip.setCurrentIndex(1);
        QObject::connect(&strip, &TabStrip::chosen, [this](int index, Qt::FocusReason reason) {
            chosen.push_back(index);
            strip.setCurrentIndex(index);
            strip.setFocus(reason);
        });
        strip.show();
        strip.activateWindow();
    }
    void SetUp() override { ASSERT_TRUE(QTest::qWaitForWindowActive(&strip)); }

    QWidget& root() override { return strip; }
    StripTab& tab(int index) { return *strip.findChildren<StripTab*>().at(index); }
    bool isRinged(int index) {
        return tallowcrest::isRinged(tab(index), CrestTheme::current().accentText);
    }

    TabStrip strip{u"Parts"_s};
    std::vector<int> chosen;
};

TEST_F(TabStripTest, TabReachesOnlyTheSelectedTab) {
    strip.setFocus(Qt::TabFocusReason);
    EXPECT_EQ(QApplication::focusWidget(), &tab(1));
    for (const int index : {0, 1, 2}) {
        EXPECT_EQ(tab(index).isChecked(), index == 1);
        EXPECT_EQ((tab(index).focusPolicy() & Qt::TabFocus) != 0, index == 1);
    }
}

TEST_F(TabStripTest, ArrowKeysGoThroughTheTabsAndStopAtTheEnds) {
    strip.setFocus(Qt::TabFocusReason);
    for (const Qt::Key key :
         {Qt::Key_Left, Qt::Key_Left, Qt::Key_Right, Qt::Key_Right, Qt::Key_Right, Qt::Key_Left}) {
        press(key);
        EXPECT_EQ(QApplication::focusWidget(), &tab(strip.currentIndex()));
    }
    EXPECT_THAT(chosen, ElementsAre(0, 1, 2, 1));
}

TEST_F(TabStripTest, UpAndDownStayInTheStrip) {
    strip.setFocus(Qt::TabFocusReason);
    for (const Qt::Key key : {Qt::Key_Up, Qt::Key_Down}) {
        QKeyEvent pressed(QEvent::KeyPress, key, Qt::NoModifier);
        QApplication::sendEvent(&tab(1), &pressed);
        EXPECT_EQ(QApplication::focusWidget(), &tab(1));
        EXPECT_FALSE(pressed.isAccepted()) << "left to a page that scrolls";
    }
    EXPECT_THAT(chosen, IsEmpty());
}

TEST_F(TabStripTest, AClickSelectsOnlyAnotherTab) {
    click("two");
    EXPECT_THAT(chosen, IsEmpty());
    EXPECT_TRUE(tab(1).isChecked());
    click("three");
    EXPECT_THAT(chosen, ElementsAre(2));
}

TEST_F(TabStripTest, TheFocusRingFollowsKeysButNotClicks) {
    strip.setFocus(Qt::MouseFocusReason);
    EXPECT_FALSE(isRinged(1));
    press(Qt::Key_Right);
    EXPECT_TRUE(isRinged(2));
    click("one");
    EXPECT_EQ(QApplication::focusWidget(), &tab(0));
    EXPECT_FALSE(isRinged(0));
}

TEST_F(TabStripTest, TabsAreAccessibleAndOneIsSelected) {
    QAccessibleInterface* list = QAccessible::queryAccessibleInterface(&strip);
    EXPECT_EQ(list->role(), QAccessible::PageTabList);
    EXPECT_EQ(list->text(QAccessible::Name), u"Parts"_s);
    ASSERT_EQ(list->childCount(), 3);
    for (int place = 0; place < 3; ++place) {
        QAccessibleInterface* each = list->child(place);
        EXPECT_EQ(each->role(), QAccessible::PageTab);
        EXPECT_TRUE(each->state().selectable);
        EXPECT_EQ(each->state().selected, place == 1);
        EXPECT_EQ(each->text(QAccessible::Name), tab(place).text());
        EXPECT_EQ(each->text(QAccessible::Description),
                  u"%1 of 3. About %2"_s.arg(QString::number(place + 1), tab(place).text()));
    }
    list->child(2)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_THAT(chosen, ElementsAre(2));
}

TEST_F(TabStripTest, TheValuesOfASettingAreRadioButtons) {
    TabStrip choices(u"Mode"_s, nullptr, StripKind::choices);
    choices.addTab(u"One"_s, u"one"_s, u"About one"_s);
    choices.addTab(u"Two"_s, u"two"_s, u"About two"_s);
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&choices)->role(), QAccessible::Grouping);
    const auto spoken = [&choices](int index) {
        return QAccessible::queryAccessibleInterface(choices.findChildren<StripTab*>().at(index));
    };
    EXPECT_EQ(spoken(0)->role(), QAccessible::RadioButton);
    EXPECT_TRUE(spoken(0)->state().checked);
    EXPECT_FALSE(spoken(1)->state().checked);
    EXPECT_FALSE(spoken(0)->state().selectable);
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&tab(1))->role(), QAccessible::PageTab);
}

}  // namespace
}  // namespace tallowcrest
