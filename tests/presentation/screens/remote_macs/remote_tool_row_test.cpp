#include <string>
#include <utility>

#include "tests/presentation/screens/remote_macs/remote_health_block_fixture.h"

namespace tallowcrest {
namespace {

using testing::ElementsAre;

using RemoteToolRowTest = RemoteHealthBlockFixture;

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
    EXPECT_FALSE(block.findChild<QAction*>(u"probe.copy-key-install"_s)->isEnabled());
    EXPECT_TRUE(block.findChild<QAction*>(u"probe.remote-purge"_s)->isEnabled());
    machine.address = "100.64.0.7";
    show();
    EXPECT_TRUE(button("probe.copy-host-key-fix").isEnabled());
}

}  // namespace
}  // namespace tallowcrest
