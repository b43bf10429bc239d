#include "platform/desktop/application_quit_action.h"

#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include <QDBusMessage>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/platform/desktop/quit_action_fixture.h"
#include "tests/support/eventually.h"
#include "tests/support/temporary_folder.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

/// Long enough for a busy machine; no test waits until these have passed.
constexpr BusCallTimeouts longTimeouts{20s, 60s};
constexpr BusCallTimeouts shortTimeouts{200ms, 600ms};

TEST(ApplicationObjectPath, FollowsTheName) {
    EXPECT_EQ(applicationObjectPath("org.example.Editor"), "/org/example/Editor");
    EXPECT_EQ(applicationObjectPath("org.example.Quitting-App"), "/org/example/Quitting_App");
    EXPECT_EQ(applicationObjectPath("org.example.a_b-c-d"), "/org/example/a_b_c_d");
    EXPECT_EQ(applicationObjectPath(""), "/");
}

class QuitActionTest : public testing::Test {
protected:
    std::size_t ask(const std::vector<ProcessSample>& members,
                    BusCallTimeouts timeouts = longTimeouts) const {
        return ApplicationQuitAction(everyProcess, bus.connection(), timeouts).askToQuit(members);
    }

    /// If it had been asked, it would have printed so before it answers this call.
    void expectNeverAsked(TestApplication& application) const {
        const QDBusMessage answer =
            bus.connection().call(QDBusMessage::createMethodCall(
                                      applicationName, "/", "org.freedesktop.DBus.Peer", "Ping"),
                                  QDBus::Block, 20'000);
        EXPECT_EQ(answer.type(), QDBusMessage::ReplyMessage);
        EXPECT_TRUE(application.isRunning());
        application.end();
        EXPECT_EQ(application.line(), "");
    }

    TestSessionBus bus;
};

TEST_F(QuitActionTest, AsksAnApplicationWhichThenEnds) {
    TestApplication application("present");
    ASSERT_EQ(application.greeting, "ready");
    EXPECT_EQ(ask({application.member()}), 1U);
    EXPECT_EQ(application.line(), "quit");
    EXPECT_EQ(application.exitStatus(), 0);
}

TEST_F(QuitActionTest, WorksWhileTheMainThreadWaits) {
    TestApplication application("present");
    ASSERT_EQ(application.greeting, "ready");
    std::size_t asked = 0;
    std::thread([&] { asked = ask({application.member()}); }).join();
    EXPECT_EQ(asked, 1U);
    EXPECT_EQ(application.line(), "quit");
}

TEST_F(QuitActionTest, AnApplicationThatStaysCountsAsAsked) {
    TestApplication application("stays");
    ASSERT_EQ(application.greeting, "ready");
    EXPECT_EQ(ask({application.member()}), 1U);
    EXPECT_EQ(application.line(), "quit");
    EXPECT_TRUE(application.isRunning());
}

TEST_F(QuitActionTest, AsksEachApplicationOfAGroupOnce) {
    TestApplication first("present");
    TestApplication second("present", {}, "org.example.Second");
    ASSERT_EQ(first.greeting, "ready");
    ASSERT_EQ(second.greeting, "ready");
    EXPECT_EQ(ask({first.member(), second.member(), first.member()}), 2U);
    for (TestApplication* application : {&first, &second}) {
        EXPECT_EQ(application->line(), "quit");
        EXPECT_EQ(application->line(), "");
        EXPECT_EQ(application->exitStatus(), 0);
    }
}

TEST_F(QuitActionTest, OtherNamesOfAnApplicationDoNoHarm) {
    TestApplication application("present",
                                {"org.example.Another", "org.mpris.MediaPlayer2.example", "a.b"});
    ASSERT_EQ(application.greeting, "ready");
    EXPECT_EQ(ask({application.member()}), 1U);
    EXPECT_EQ(application.line(), "quit");
    EXPECT_EQ(application.line(), "");
}

class WithoutAction : public QuitActionTest, public testing::WithParamInterface<const char*> {};

TEST_P(WithoutAction, IsNotAsked) {
    TestApplication application(GetParam());
    ASSERT_EQ(application.greeting, "ready");
    EXPECT_EQ(ask({application.member()}), 0U);
    expectNeverAsked(application);
}

INSTANTIATE_TEST_SUITE_P(Table, WithoutAction,
                         testing::Values("absent", "disabled", "with-parameter", "bare",
                                         "lists-text", "lists-numbers", "lists-upper-case",
                                         "describes-text", "describes-little"));

TEST_F(QuitActionTest, AnApplicationWithItsOwnImplementationIsAsked) {
    TestApplication application("answers");
    ASSERT_EQ(application.greeting, "ready");
    EXPECT_EQ(ask({application.member()}), 1U);
    EXPECT_EQ(application.line(), "quit");
}

TEST_F(QuitActionTest, AnErrorCountsAsNotAsked) {
    TestApplication application("refuses");
    ASSERT_EQ(application.greeting, "ready");
    EXPECT_EQ(ask({application.member()}), 0U);
    EXPECT_EQ(application.line(), "quit");
}

// If this counted as a failure, it would be sent a signal while its user decides what to save.
TEST_F(QuitActionTest, AnApplicationThatIsBusyAskingItsUserCountsAsAsked) {
    TestApplication application("asks-its-user");
    ASSERT_EQ(application.greeting, "ready");
    EXPECT_EQ(ask({application.member()}, {2s, 20s}), 1U);
    EXPECT_EQ(application.line(), "quit");
    EXPECT_TRUE(application.isRunning());
}

TEST_F(QuitActionTest, AnApplicationThatEndsWithoutAReplyCountsAsAsked) {
    TestApplication application("ends-at-once");
    ASSERT_EQ(application.greeting, "ready");
    EXPECT_EQ(ask({application.member()}), 1U);
    EXPECT_EQ(application.line(), "quit");
    EXPECT_EQ(application.exitStatus(), 0);
}

TEST_F(QuitActionTest, AnotherProcessIsNotAsked) {
    TestApplication application("present");
    ASSERT_EQ(application.greeting, "ready");
    ProcessSample other = application.member();
    other.pid += 1;
    ProcessSample wrapped = application.member();
    wrapped.pid += std::int64_t{1} << 32U;
    EXPECT_EQ(ask({other, wrapped}), 0U);
    EXPECT_EQ(ask({}), 0U);
    expectNeverAsked(application);
}

// Neither the bus itself nor the test is an application.
TEST_F(QuitActionTest, AProcessWithoutANameIsNotAsked) {
    ProcessSample daemon;
    daemon.pid = bus.daemon().pid();
    ProcessSample self;
    self.pid = ::getpid();
    EXPECT_EQ(ask({daemon, self}), 0U);
}

TEST_F(QuitActionTest, AProcessThatIsNoLongerTheReviewedOneIsNotAsked) {
    TestApplication application("present");
    ASSERT_EQ(application.greeting, "ready");
    std::vector<ProcessSample> checked;
    const ApplicationQuitAction doubtful(
        [&](const ProcessSample& member) {
            checked.push_back(member);
            return false;
        },
        bus.connection(), longTimeouts);
    EXPECT_EQ(doubtful.askToQuit({application.member()}), 0U);
    EXPECT_THAT(checked, ElementsAre(application.member()));
    expectNeverAsked(application);
}

TEST_F(QuitActionTest, AnApplicationThatHangsDoesNotBlock) {
    TestApplication hanging("present");
    TestApplication other("present", {}, "org.example.Second");
    ASSERT_EQ(hanging.greeting, "ready");
    ASSERT_EQ(other.greeting, "ready");
    hanging.signal(SIGSTOP);
    EXPECT_EQ(ask({hanging.member()}, shortTimeouts), 0U);
    EXPECT_EQ(ask({hanging.member(), other.member()}, {2s, 20s}), 1U);
    EXPECT_EQ(other.line(), "quit");
}

TEST_F(QuitActionTest, ABusThatHangsDoesNotBlock) {
    TestApplication application("present");
    ASSERT_EQ(application.greeting, "ready");
    bus.daemon().signal(SIGSTOP);
    EXPECT_EQ(ask({application.member()}, shortTimeouts), 0U);
    bus.daemon().signal(SIGCONT);
    expectNeverAsked(application);
}

TEST_F(QuitActionTest, NothingIsAskedWithoutABus) {
    TestApplication application("present");
    ASSERT_EQ(application.greeting, "ready");
    const QDBusConnection never(u"never connected"_s);
    EXPECT_EQ(ApplicationQuitAction(everyProcess, never).askToQuit({application.member()}), 0U);
    const QDBusConnection nowhere =
        QDBusConnection::connectToBus(u"unix:path=/nowhere"_s, u"none"_s);
    EXPECT_EQ(ApplicationQuitAction(everyProcess, nowhere).askToQuit({application.member()}), 0U);
    expectNeverAsked(application);
    bus.daemon().end();
    EXPECT_EQ(ask({application.member()}), 0U);
}

// The bus would start it for a message to its name.
TEST(QuitActionOfAnActivatableApplication, DoesNotStartItAgain) {
    const TemporaryFolder folder;
    const auto trace = folder.path() / "started";
    std::ofstream(folder.path() / "application.service")
        << "[D-BUS Service]\nName=" << applicationName << "\nExec=/usr/bin/touch " << trace.string()
        << "\n";
    const TestSessionBus bus(folder.path().string());
    TestApplication application("present");
    ASSERT_EQ(application.greeting, "ready");

    const ApplicationQuitAction action(
        [&](const ProcessSample&) {
            application.end();
            return true;
        },
        bus.connection(), longTimeouts);
    EXPECT_EQ(action.askToQuit({application.member()}), 0U);
    EXPECT_EQ(application.line(), "");
    EXPECT_FALSE(std::filesystem::exists(trace));

    // Verifies that such a message really starts it.
    bus.connection().send(
        QDBusMessage::createMethodCall(applicationName, "/", "org.freedesktop.DBus.Peer", "Ping"));
    EXPECT_TRUE(eventually([&] { return std::filesystem::exists(trace); }));
}

}  // namespace
}  // namespace tallowcrest
