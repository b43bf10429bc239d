// Real programs with a real window manager.

#include "platform/x11/window_close_request.h"

#include <unistd.h>

#include <csignal>
#include <cstdint>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/x11/display_connection.h"
#include "tests/platform/support/started_program.h"
#include "tests/platform/x11/test_desktop.h"
#include "tests/support/eventually.h"

namespace tallowcrest {
namespace {

using testing::ElementsAre;

bool everyProcess(const ProcessSample&) {
    return true;
}

ProcessSample memberWith(std::int64_t pid, std::uint64_t startTime = 7) {
    ProcessSample member;
    member.pid = pid;
    member.command = "/usr/bin/close_client";
    member.startTime = startTime;
    return member;
}

class ManagedDesktop : public testing::Test {
protected:
    explicit ManagedDesktop(const std::vector<std::string>& serverArguments = {})
        : display(serverArguments) {}

    /// Runs close_client. Returns once the window manager lists its windows.
    struct Client : StartedProgram {
        Client(const ManagedDesktop& test, const std::vector<std::string>& words,
               std::size_t windowCount = 1)
            : StartedProgram(commandOf(words)) {
            const std::size_t before = test.clientList.size();
            EXPECT_EQ(line(), "ready");
            EXPECT_TRUE(eventually([&] {
                test.desktop.wakeManager();
                test.clientList = test.desktop.numbers(test.desktop.root(), "_NET_CLIENT_LIST");
                return test.clientList.size() == before + windowCount;
            }));
            window = test.clientList.empty() ? xcb_window_t{XCB_NONE} : test.clientList.back();
        }

        static std::vector<std::string> commandOf(const std::vector<std::string>& words) {
            std::vector<std::string> command{TALLOWCREST_BINARY_DIR "/tests/close_client"};
            command.insert(command.end(), words.begin(), words.end());
            return command;
        }

        xcb_window_t window = XCB_NONE;  ///< its newest window
    };

    /// The window manager works sequentially. So once it has closed another window, and the client
    /// has answered a message sent after that, any earlier request would have been answered too.
    void expectNeverAsked(Client& client) {
        Client other(*this, {"own", "elsewhere"});
        desktop.askManagerToClose(other.window);
        EXPECT_EQ(other.line(), "asked");
        EXPECT_EQ(other.exitStatus(), 0);
        desktop.sendPlainMessage(client.window, "TEST_PING");
        EXPECT_EQ(client.line(), "pong");
        EXPECT_TRUE(client.isRunning());
    }

    bool listBecomesEmpty() {
        return eventually([&] {
            clientList = desktop.numbers(desktop.root(), "_NET_CLIENT_LIST");
            return clientList.empty();
        });
    }

    PrivateDisplay display;
    TestDesktop desktop;
    RealManager manager{desktop};
    mutable std::vector<xcb_window_t> clientList;
    const std::string thisHost = hostName();
    const WindowCloseRequests requests{everyProcess};
};

/// With a server that cannot report which process a window belongs to.
class ManagedDesktopWithoutClientIDs : public ManagedDesktop {
protected:
    ManagedDesktopWithoutClientIDs() : ManagedDesktop(withoutClientIDs) {}
};

TEST_F(ManagedDesktop, AsksAProgramWhichThenEnds) {
    Client client(*this, {"own", thisHost});
    EXPECT_EQ(requests.askWindowsToClose({memberWith(client.pid())}), 1U);
    EXPECT_EQ(client.line(), "asked");
    EXPECT_EQ(client.exitStatus(), 0);
}

TEST_F(ManagedDesktop, AProgramThatIgnoresTheRequestWasAskedAndStays) {
    Client client(*this, {"own", thisHost, "ignores"});
    EXPECT_EQ(requests.askWindowsToClose({memberWith(client.pid())}), 1U);
    EXPECT_EQ(client.line(), "asked");
    expectNeverAsked(client);
}

TEST_F(ManagedDesktop, AsksEachWindowOfAProgram) {
    Client client(*this, {"own", thisHost, "two-windows"}, 2);
    EXPECT_EQ(requests.askWindowsToClose({memberWith(client.pid())}), 2U);
    EXPECT_EQ(client.line(), "asked");
    EXPECT_EQ(client.line(), "asked");
    EXPECT_EQ(client.exitStatus(), 0);
}

TEST_F(ManagedDesktop, AsksEachProgramOfAGroup) {
    Client first(*this, {"own", thisHost});
    Client second(*this, {"own", thisHost});
    EXPECT_EQ(requests.askWindowsToClose(
                  {memberWith(first.pid()), memberWith(::getpid()), memberWith(second.pid())}),
              2U);
    EXPECT_EQ(first.exitStatus(), 0);
    EXPECT_EQ(second.exitStatus(), 0);
}

TEST_F(ManagedDesktop, LeavesADialogToItsWindow) {
    Client client(*this, {"own", thisHost, "with-dialog"}, 2);
    EXPECT_EQ(requests.askWindowsToClose({memberWith(client.pid())}), 1U);
    EXPECT_EQ(client.line(), "asked");
    EXPECT_EQ(client.line(), "");
    EXPECT_EQ(client.exitStatus(), 0);
}

TEST_F(ManagedDesktop, AProgramWithoutAWindowIsNotAsked) {
    Client client(*this, {"own", thisHost});
    EXPECT_EQ(requests.askWindowsToClose({memberWith(manager.program().pid())}), 0U);
    EXPECT_EQ(requests.askWindowsToClose({}), 0U);
    expectNeverAsked(client);
}

TEST_F(ManagedDesktop, AnotherProcessIsNotAsked) {
    Client client(*this, {"own", thisHost});
    EXPECT_EQ(requests.askWindowsToClose({memberWith(client.pid() + 1), memberWith(::getpid())}),
              0U);
    expectNeverAsked(client);
}

TEST_F(ManagedDesktop, AProgramThatClaimsToBeAMemberIsNotAsked) {
    Client member(*this, {"own", thisHost, "ignores"});
    Client claimant(*this, {std::to_string(member.pid()), thisHost});
    EXPECT_EQ(requests.askWindowsToClose({memberWith(member.pid())}), 1U);
    EXPECT_EQ(member.line(), "asked");
    expectNeverAsked(claimant);
}

// A false claim must not count as asking a member that has no window.
TEST_F(ManagedDesktop, AProgramThatClaimsToBeAMemberWithoutAWindowIsNotAsked) {
    Client claimant(*this, {std::to_string(manager.program().pid()), thisHost});
    EXPECT_EQ(requests.askWindowsToClose({memberWith(manager.program().pid())}), 0U);
    expectNeverAsked(claimant);
}

// Programs in another pid namespace state other pids, or another host name.
TEST_F(ManagedDesktop, AMemberIsAskedWhateverItsWindowSays) {
    for (const std::string& claim : {std::string("1"), std::to_string(::getpid())}) {
        for (const std::string& machine : {thisHost, std::string("elsewhere"), std::string()}) {
            Client client(*this, {claim, machine});
            EXPECT_EQ(requests.askWindowsToClose({memberWith(client.pid())}), 1U);
            EXPECT_EQ(client.line(), "asked");
            EXPECT_EQ(client.exitStatus(), 0);
            ASSERT_TRUE(listBecomesEmpty());
        }
    }
}

TEST_F(ManagedDesktopWithoutClientIDs, AsksAProgramWhichThenEnds) {
    Client client(*this, {"own", thisHost});
    EXPECT_EQ(requests.askWindowsToClose({memberWith(client.pid())}), 1U);
    EXPECT_EQ(client.line(), "asked");
    EXPECT_EQ(client.exitStatus(), 0);
}

TEST_F(ManagedDesktopWithoutClientIDs, AnotherProcessIsNotAsked) {
    Client client(*this, {"own", thisHost});
    EXPECT_EQ(requests.askWindowsToClose({memberWith(client.pid() + 1), memberWith(::getpid())}),
              0U);
    expectNeverAsked(client);
}

TEST_F(ManagedDesktopWithoutClientIDs, AProgramOfAnotherMachineIsNotAsked) {
    for (const std::string& machine :
         {std::string("elsewhere"), thisHost + ".example", thisHost + "x", std::string()}) {
        Client client(*this, {"own", machine});
        EXPECT_EQ(requests.askWindowsToClose({memberWith(client.pid())}), 0U) << machine;
        expectNeverAsked(client);
        client.end();
        ASSERT_TRUE(listBecomesEmpty());
    }
}

// The window manager would kill it.
TEST_F(ManagedDesktop, AProgramThatCannotBeAskedIsLeftAlone) {
    Client client(*this, {"own", thisHost, "no-protocol"});
    EXPECT_EQ(requests.askWindowsToClose({memberWith(client.pid())}), 0U);
    expectNeverAsked(client);
}

TEST_F(ManagedDesktop, AProcessThatIsNoLongerTheReviewedOneIsNotAsked) {
    Client client(*this, {"own", thisHost, "two-windows"}, 2);
    std::vector<ProcessSample> checked;
    const WindowCloseRequests doubtful([&](const ProcessSample& member) {
        checked.push_back(member);
        return false;
    });
    const ProcessSample member = memberWith(client.pid(), 4321);
    EXPECT_EQ(doubtful.askWindowsToClose({member}), 0U);
    EXPECT_THAT(checked, ElementsAre(member, member));
    expectNeverAsked(client);
}

TEST_F(ManagedDesktop, NothingIsAskedWithoutAWindowManager) {
    Client client(*this, {"own", thisHost});
    manager.program().end();
    EXPECT_EQ(requests.askWindowsToClose({memberWith(client.pid())}), 0U);
    desktop.sendPlainMessage(client.window, "TEST_PING");
    EXPECT_EQ(client.line(), "pong");
}

}  // namespace
}  // namespace tallowcrest
