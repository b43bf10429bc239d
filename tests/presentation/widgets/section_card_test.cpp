#include "presentation/widgets/section_card.h"

#include <QAccessible>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>
#include <gmock/gmock.h>

#include "presentation/widgets/card_grid.h"
#include "presentation/widgets/elided_label.h"
#include "tests/presentation/shell/announcements.h"
#include "tests/presentation/widgets/paint_count.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

class SectionCardTest : public testing::Test {
protected:
    SectionCardTest() {
        content = new ElidedLabel(u"Content"_s, onCard(&CrestFonts::body));
        content->setFixedHeight(100);
        card.bodyLayout()->addWidget(content);
        card.resize(300, 200);
        showUnseen(card);
    }

    QAccessible::State spokenState() {
        return QAccessible::queryAccessibleInterface(card.header())->state();
    }

    SectionCard card{u"clock"_s, u"Title"_s};
    ElidedLabel* content = nullptr;
};

TEST_F(SectionCardTest, IsExpandedAtFirstAndCollapsedShowsOnlyHeaderAndCaption) {
    EXPECT_FALSE(card.isCollapsed());
    EXPECT_TRUE(content->isVisible());
    EXPECT_EQ(card.accessibleName(), u"Title"_s);
    card.setSectionCaption(u"Caption"_s);
    const int open = card.sizeHint().height();
    card.setCollapsed(true);
    QCoreApplication::processEvents();
    EXPECT_FALSE(content->isVisible());
    EXPECT_TRUE(card.header()->isVisible());
    bool hasCaption = false;
    for (const ElidedLabel* label : card.findChildren<ElidedLabel*>()) {
        hasCaption = hasCaption || (label->isVisible() && label->text() == u"Caption"_s);
    }
    EXPECT_TRUE(hasCaption);
    const int withCaption = card.sizeHint().height();
    EXPECT_LT(withCaption, open - 100);
    card.setSectionCaption(QString());
    QCoreApplication::processEvents();
    EXPECT_LT(card.sizeHint().height(), withCaption);
    EXPECT_EQ(card.sizeHint().height(), card.header()->height());
    card.setCollapsed(false);
    EXPECT_TRUE(content->isVisible());
}

TEST_F(SectionCardTest, AClickOnlyRequestsTheChange) {
    const QSignalSpy wanted(card.header(), &SectionHeader::collapseWanted);
    QTest::mouseClick(card.header(), Qt::LeftButton, {}, {250, 20});
    ASSERT_EQ(wanted.count(), 1);
    EXPECT_TRUE(wanted.at(0).at(0).toBool());
    EXPECT_FALSE(card.isCollapsed());
}

TEST_F(SectionCardTest, KeysCollapseAndExpand) {
    QObject::connect(card.header(), &SectionHeader::collapseWanted, &card,
                     &SectionCard::setCollapsed);
    for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter}) {
        QTest::keyClick(card.header(), key);
        EXPECT_TRUE(card.isCollapsed()) << key;
        QTest::keyClick(card.header(), key);
        EXPECT_FALSE(card.isCollapsed()) << key;
    }
    QTest::keyClick(card.header(), Qt::Key_Right);
    EXPECT_FALSE(card.isCollapsed());
    QTest::keyClick(card.header(), Qt::Key_Left);
    EXPECT_TRUE(card.isCollapsed());
    QTest::keyClick(card.header(), Qt::Key_Left);
    EXPECT_TRUE(card.isCollapsed());
    QTest::keyClick(card.header(), Qt::Key_Right);
    EXPECT_FALSE(card.isCollapsed());
}

TEST_F(SectionCardTest, AFocusedHeaderSaysItsNewState) {
    const Announcements heard;
    card.setCollapsed(true);
    EXPECT_THAT(heard.said(), testing::IsEmpty()) << "collapsed together with all others";
    SectionHeader header(u"clock"_s, u"Title"_s);
    header.show();
    header.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&header));
    header.setFocus();
    header.setExpanded(false);
    header.setExpanded(false);
    header.setExpanded(true);
    EXPECT_THAT(heard.said(), testing::ElementsAre("Collapsed", "Expanded"));
}

TEST_F(SectionCardTest, TheHeaderHasAnAccessibleStateAndAction) {
    QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(card.header());
    ASSERT_NE(spoken, nullptr);
    EXPECT_EQ(spoken->role(), QAccessible::Button);
    EXPECT_EQ(spoken->text(QAccessible::Name), u"Title"_s);
    EXPECT_TRUE(spokenState().expandable);
    EXPECT_TRUE(spokenState().expanded);
    EXPECT_FALSE(spokenState().collapsed);
    const QString whenOpen = spoken->text(QAccessible::Description);

    card.setCollapsed(true);
    EXPECT_TRUE(spokenState().expandable);
    EXPECT_FALSE(spokenState().expanded);
    EXPECT_TRUE(spokenState().collapsed);
    EXPECT_NE(spoken->text(QAccessible::Description), whenOpen);
    card.header()->setNote(u"2 more"_s);
    EXPECT_TRUE(spoken->text(QAccessible::Description).startsWith(u"2 more. "_s));
    card.header()->setNote(u"Urgent · Heat"_s);
    EXPECT_TRUE(spoken->text(QAccessible::Description).startsWith(u"Urgent, Heat. "_s));

    const QSignalSpy wanted(card.header(), &SectionHeader::collapseWanted);
    ASSERT_NE(spoken->actionInterface(), nullptr);
    EXPECT_TRUE(spoken->actionInterface()->actionNames().contains(
        QAccessibleActionInterface::pressAction()));
    spoken->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    ASSERT_EQ(wanted.count(), 1);
    EXPECT_FALSE(wanted.at(0).at(0).toBool());
}

TEST_F(SectionCardTest, IsAnAccessibleGroupInVisualOrder) {
    card.setSectionCaption(u"Caption"_s);
    QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(&card);
    ASSERT_NE(spoken, nullptr);
    EXPECT_EQ(spoken->role(), QAccessible::Grouping);
    EXPECT_EQ(spoken->text(QAccessible::Name), u"Title"_s);
    ASSERT_EQ(spoken->childCount(), 3);
    EXPECT_EQ(spoken->child(0)->text(QAccessible::Name), u"Title"_s);
    EXPECT_EQ(spoken->child(1)->text(QAccessible::Name), u"Caption"_s);
    EXPECT_EQ(spoken->child(2)->object(), card.body());
}

TEST_F(SectionCardTest, CollapsedContentIsNotPainted) {
    PaintCount paints(*content);
    content->setText(u"Other content"_s);
    EXPECT_GT(paints.take(), 0);
    card.setCollapsed(true);
    static_cast<void>(paints.take());
    content->setText(u"Yet other content"_s);
    content->update();
    EXPECT_EQ(paints.take(), 0);
}

TEST(CardGrid, FillsItsRowsEvenly) {
    struct Case {
        int count;
        int width;
        int columns;
    };
    // Cards of 200 with a gap of 16.
    for (const Case& each : {Case{4, 1000, 4}, Case{4, 848, 4}, Case{4, 847, 2}, Case{4, 632, 2},
                             Case{5, 700, 3}, Case{5, 500, 2}, Case{3, 1000, 3}, Case{1, 1000, 1},
                             Case{4, 100, 1}, Case{0, 500, 1}, Case{2, 0, 1}}) {
        EXPECT_EQ(CardGrid::columnsFor(each.count, each.width, 200), each.columns)
            << each.count << " in " << each.width;
    }
}

TEST(CardGrid, ShowsOnlyTheFirstCards) {
    CardGrid grid(100);
    std::vector<QWidget*> cards;
    for (int i = 0; i < 3; ++i) {
        cards.push_back(new QWidget);
        grid.addCard(cards.back());
    }
    grid.setAttribute(Qt::WA_DontShowOnScreen);
    grid.resize(400, 100);
    grid.setShownCount(2);
    grid.show();
    EXPECT_TRUE(cards[0]->isVisible());
    EXPECT_TRUE(cards[1]->isVisible());
    EXPECT_FALSE(cards[2]->isVisible());
    grid.setShownCount(3);
    EXPECT_TRUE(cards[2]->isVisible());
    grid.setShownCount(1);
    EXPECT_FALSE(cards[1]->isVisible());
}

}  // namespace
}  // namespace tallowcrest
