#include <string>
#include <utility>

#include <QTimer>
#include <QTimerEvent>

#include "tests/presentation/screens/remote_macs/activate.h"
#include "tests/presentation/screens/remote_macs/remote_health_block_fixture.h"

namespace tallowcrest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class RemoteToolRowTest : public RemoteHealthBlockFixture {
protected:
    QTimer* moment(const char* identifier) {
        return button(identifier).findChild<QTimer*>(u"settling"_s);
    }
    void endTheMoment(const char* identifier) {
        ASSERT_TRUE(moment(identifier)->isActive()) << identifier;
        QTimerEvent end(moment(identifier)->timerId());
        QCoreApplication::sendEvent(moment(identifier), &end);
        EXPECT_TRUE(button(identifier).isEnabled());
    }
};

TEST_F(RemoteToolRowTest, EachToolIsAButtonOrInTheMenu) {
    showOpen();
    EXPECT_THAT(shownButtons(), ElementsAre("Remote Purge", "Remote Safe"));
    EXPECT_THAT(menuEntries(), ElementsAre("Copy Ping", "Copy Port Test", "Copy Test",
                                           "Copy Host Key Fix", "Copy Key Install", "Inspect"));
    machine.status = RemoteHealth::Status::hostKeyIssue;
    show();
    EXPECT_THAT(shownButtons(), ElementsAre("Copy Test", "Copy Host Key Fix"));
    EXPECT_THAT(menuEntries(), ElementsAre("Copy Ping", "Copy Port Test", "Copy Key Install",
                                           "Inspect", "Remote Purge", "Remote Safe"));
    machine.status = RemoteHealth::Status::unknown;
    show();
    QTest::keyClick(block.findChild<MenuButton*>(), Qt::Key_Down);
    ASSERT_NE(menu().activeAction(), nullptr) << "the first entry is hidden";
    EXPECT_EQ(menu().activeAction()->text(), u"Copy Port Test"_s);
    menu().close();
}

TEST_F(RemoteToolRowTest, AButtonThatTakesThePlaceOfAnotherWaitsForAMoment) {
    showOpen();
    EXPECT_TRUE(button("probe.remote-purge").isEnabled()) << "it took no other one's place";
    machine.status = RemoteHealth::Status::authNeeded;
    show();
    EXPECT_THAT(shownButtons(), ElementsAre("Copy Test", "Copy Key Install"));
    click("probe.copy-test");
    show();
    click("probe.copy-test");
    EXPECT_THAT(operations, IsEmpty());
    // From now on "Copy Test" stays where it is, and "Copy Key Install" makes room.
    endTheMoment("probe.copy-test");
    endTheMoment("probe.copy-key-install");
    machine.status = RemoteHealth::Status::hostKeyIssue;
    show();
    click("probe.copy-test");
    click("probe.copy-host-key-fix");
    EXPECT_THAT(operations, ElementsAre(RemoteOperation::copyTest));
    endTheMoment("probe.copy-host-key-fix");
    machine.status = RemoteHealth::Status::connectionBlocked;
    show();
    EXPECT_FALSE(button("probe.copy-test").isEnabled()) << "it is where another one was";
    machine.status = RemoteHealth::Status::hostKeyIssue;
    show();
    // Neither does the end of the moment enable what the machine cannot have.
    machine.address = "no address";
    show();
    EXPECT_FALSE(moment("probe.copy-host-key-fix")->isActive());
    EXPECT_FALSE(button("probe.copy-host-key-fix").isEnabled());
}

TEST_F(RemoteToolRowTest, AToolThatMovesGetsTheFocusBack) {
    ASSERT_NO_FATAL_FAILURE(activate(page));
    machine.status = RemoteHealth::Status::hostKeyIssue;
    showOpen();
    button("probe.copy-test").setFocus();
    machine.status = RemoteHealth::Status::connectionBlocked;
    show();
    EXPECT_EQ(page.focusWidget(), nullptr) << "a key does nothing";
    endTheMoment("probe.copy-test");
    EXPECT_TRUE(button("probe.copy-test").hasFocus());
    // Not from a control that the owner has gone to meanwhile.
    machine.status = RemoteHealth::Status::hostKeyIssue;
    show();
    visible("probe.head")->setFocus();
    endTheMoment("probe.copy-test");
    EXPECT_TRUE(visible("probe.head")->hasFocus());
    // One that goes into the menu leaves the focus to the menu's button.
    endTheMoment("probe.copy-host-key-fix");
    button("probe.copy-host-key-fix").setFocus();
    machine.status = RemoteHealth::Status::authNeeded;
    show();
    EXPECT_TRUE(visible("probe.more")->hasFocus());
}

TEST_F(RemoteToolRowTest, AnOpenMenuKeepsItsEntries) {
    showOpen();
    click("probe.more");
    ASSERT_TRUE(menu().isVisible());
    const std::vector<std::string> before = menuEntries();
    machine.status = RemoteHealth::Status::hostKeyIssue;
    machine.address = "no address";
    show();
    EXPECT_EQ(menuEntries(), before);
    EXPECT_THAT(shownButtons(), ElementsAre("Copy Test", "Copy Host Key Fix"));
    QTest::mouseClick(&menu(), Qt::LeftButton, {},
                      menu().actionGeometry(menu().actions()[2]).center());
    EXPECT_FALSE(menu().isVisible());
    EXPECT_THAT(operations, ElementsAre(RemoteOperation::copyTest));
    settle();
    EXPECT_THAT(menuEntries(), ElementsAre("Copy Ping", "Copy Port Test", "Copy Key Install",
                                           "Inspect", "Remote Purge", "Remote Safe"));
    EXPECT_FALSE(block.findChild<QAction*>(u"probe.copy-key-install"_s)->isEnabled());
}

TEST_F(RemoteToolRowTest, EachToolEmitsItsOperationFromTheButtonAndFromTheMenu) {
    showOpen();
    for (const remote_health_lines::Tool& tool : remote_health_lines::tools()) {
        const QString name = u"probe."_s + QString::fromLatin1(tool.identifier);
        block.findChild<QAction*>(name)->trigger();
        block.findChild<QPushButton*>(name)->click();
        EXPECT_THAT(std::exchange(operations, {}), ElementsAre(tool.operation, tool.operation))
            << tool.title;
    }
}

TEST_F(RemoteToolRowTest, WithoutAnAddressToolsAreDisabledWhereverTheyAre) {
    facts = unreachableMachine(RemoteHealth::Status::hostKeyIssue);
    machine.address = "no address";
    show();
    EXPECT_FALSE(button("probe.copy-host-key-fix").isEnabled());
    EXPECT_TRUE(button("probe.copy-host-key-fix").toolTip().startsWith(u"Needs an address"_s));
    EXPECT_FALSE(block.findChild<QAction*>(u"probe.copy-key-install"_s)->isEnabled());
    EXPECT_TRUE(block.findChild<QAction*>(u"probe.remote-purge"_s)->isEnabled());
    machine.address = "100.64.0.7";
    show();
    EXPECT_TRUE(button("probe.copy-host-key-fix").isEnabled());
    EXPECT_EQ(button("probe.copy-host-key-fix").toolTip(),
              button("probe.copy-host-key-fix").accessibleDescription());
}

}  // namespace
}  // namespace tallowcrest
