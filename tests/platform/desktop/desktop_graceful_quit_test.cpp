#include "platform/desktop/desktop_graceful_quit.h"

#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/x11/display_connection.h"
#include "tests/platform/desktop/quit_action_fixture.h"
#include "tests/platform/x11/test_desktop.h"
#include "tests/support/eventually.h"

namespace tallowcrest {
namespace {

/// A real desktop with a window, and an application on the bus.
class DesktopGracefulQuitTest : public testing::Test {
protected:
    DesktopGracefulQuitTest()
        : window({TALLOWCREST_BINARY_DIR "/tests/close_client", "own", hostName()}) {
        EXPECT_EQ(window.line(), "ready");
        EXPECT_EQ(application.greeting, "ready");
        EXPECT_TRUE(eventually([this] {
            desktop.wakeManager();
            return !desktop.numbers(desktop.root(), "_NET_CLIENT_LIST").empty();
        }));
    }

    ProcessSample windowsMember() const {
        ProcessSample member;
        member.pid = window.pid();
        return member;
    }

    PrivateDisplay display;
    TestDesktop desktop;
    RealManager manager{desktop};
    TestSessionBus bus;
    StartedProgram window;
    TestApplication application{"present"};
    DesktopGracefulQuit quit{everyProcess, bus.connection()};
};

TEST_F(DesktopGracefulQuitTest, AsksOnlyTheWindowsIfThereAreAny) {
    EXPECT_TRUE(quit.gracefulAppQuit("Editor", {application.member(), windowsMember()}));
    EXPECT_EQ(window.line(), "asked");
    EXPECT_EQ(window.exitStatus(), 0);

    // The second time there is no window left, so the application is asked.
    EXPECT_TRUE(quit.gracefulAppQuit("Editor", {application.member(), windowsMember()}));
    EXPECT_EQ(application.line(), "quit");
    EXPECT_EQ(application.exitStatus(), 0);
    EXPECT_EQ(application.line(), "");
}

TEST_F(DesktopGracefulQuitTest, AsksNoOtherProcessOnceTheMemberHasEnded) {
    ASSERT_TRUE(quit.gracefulAppQuit("Editor", {windowsMember()}));
    ASSERT_EQ(window.exitStatus(), 0);
    EXPECT_FALSE(quit.gracefulAppQuit("Editor", {windowsMember()}));
    EXPECT_TRUE(application.isRunning());
}

TEST_F(DesktopGracefulQuitTest, AsksAnApplicationWithoutAWindow) {
    EXPECT_TRUE(quit.gracefulAppQuit("Editor", {application.member()}));
    EXPECT_EQ(application.line(), "quit");
    EXPECT_TRUE(window.isRunning());
}

TEST_F(DesktopGracefulQuitTest, AsksTheApplicationWithoutADisplay) {
    ::unsetenv("DISPLAY");
    EXPECT_TRUE(quit.gracefulAppQuit("Editor", {windowsMember(), application.member()}));
    EXPECT_EQ(application.line(), "quit");
    EXPECT_TRUE(window.isRunning());
}

TEST_F(DesktopGracefulQuitTest, FailsWhenNobodyCouldBeAsked) {
    ProcessSample manager_;
    manager_.pid = manager.program().pid();
    EXPECT_FALSE(quit.gracefulAppQuit("Editor", {manager_}));
    EXPECT_FALSE(quit.gracefulAppQuit("Editor", {}));
    DesktopGracefulQuit doubtful([](const ProcessSample&) { return false; }, bus.connection());
    EXPECT_FALSE(doubtful.gracefulAppQuit("Editor", {application.member(), windowsMember()}));
    EXPECT_TRUE(window.isRunning());
    EXPECT_TRUE(application.isRunning());
}

TEST_F(DesktopGracefulQuitTest, SyntheticGroupsAreNotAsked) {
    for (const char* name : {"Developer Tools", "Electron Apps", "Node.js", "Python"}) {
        EXPECT_FALSE(quit.gracefulAppQuit(name, {application.member(), windowsMember()})) << name;
    }
    EXPECT_TRUE(window.isRunning());
    EXPECT_TRUE(application.isRunning());
}

}  // namespace
}  // namespace tallowcrest
