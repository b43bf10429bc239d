// Readings of the tailnet with a real command line tool and a real socket. Both are the tests' own
// and give recorded answers.

#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <stop_token>
#include <string>
#include <string_view>
#include <thread>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "actions/tool_runner.h"
#include "platform/base/local_socket_exchange.h"
#include "platform/tools/tool_launcher_posix.h"
#include "remote/local_api.h"
#include "remote/tailnet_reading.h"
#include "tests/platform/support/test_children.h"
#include "tests/platform/support/test_daemon.h"
#include "tests/support/each_of.h"
#include "tests/support/eventually.h"
#include "tests/support/fixture.h"
#include "tests/support/status_of_peers.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/test_services.h"

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Launches real tools, and lets them take long unless a test is about the deadlines: the machine
/// may be busy.
class PatientLauncher final : public ToolLauncher {
public:
    ToolResult launch(const ToolRequest& request) override {
        ToolRequest patient = request;
        if (isPatient) {
            patient.timeout = patience;
        }
        return tools.launch(patient);
    }

    static constexpr std::chrono::milliseconds patience{60'000};
    PosixToolLauncher tools;
    bool isPatient = true;
};

class TailnetIntegration : public ::testing::Test, protected TestServices {
protected:
    void SetUp() override { descriptors = openDescriptorCount(); }
    void TearDown() override {
        EXPECT_FALSE(hasChild()) << "a child was left unwaited for";
        EXPECT_EQ(openDescriptorCount(), descriptors);
    }

    /// Installs a tool that runs `forJSON` for "status --json" and `forText` for "status".
    void install(const std::string& forJSON, const std::string& forText = ":") const {
        folder.file("tailscale",
                    fmt::format("#!/bin/sh\ncd '{}'\ncase \"$*\" in\n"
                                "'status --json') {} ;;\nstatus) {} ;;\n*) exit 9 ;;\nesac\n",
                                folder.path().string(), forJSON, forText),
                    0700);
    }

    /// Installs a tool that prints these texts.
    void installPrinting(const std::string& json, const std::string& text = "") const {
        folder.file("json", json, 0600);
        folder.file("text", text, 0600);
        install("cat json", "cat text");
    }

    TailnetState read() {
        return readTailnet({tools, locale,
                            [this](std::string_view request, const std::stop_token& stop) {
                                return exchangeOverLocalSocket(
                                    socket, request, stop,
                                    launcher.isPatient
                                        ? ExchangeLimits{.deadline = PatientLauncher::patience}
                                        : ExchangeLimits());
                            },
                            cli},
                           {});
    }

    TemporaryFolder folder;
    std::string cli = folder.path("tailscale");
    std::string socket = folder.path("daemon.sock");
    CommandSafetyPolicy::AllowedExecutables allowed{cli};
    PatientLauncher launcher;
    ToolRunner tools{allowed, launcher, jobs, log};
    int descriptors = 0;
};

TEST_F(TailnetIntegration, ReadsAnyNumberOfPeersFromTheTool) {
    for (const int count : {0, 1, 40, 2'000}) {
        installPrinting(statusOfPeers(count));
        const TailnetState state = read();
        ASSERT_EQ(state.tailDevices.size(), static_cast<std::size_t>(count));
        if (count > 0) {
            EXPECT_EQ(state.tailDevices.front().name, "machine-0000.tail1a2b3.ts.net");
            EXPECT_TRUE(state.tailDevices.front().online);
        }
        EXPECT_THAT(state.tailscaleHealthIssues, IsEmpty());
    }
}

TEST_F(TailnetIntegration, ReadsTheIssuesFromTheTool) {
    installPrinting(readFixture("tail_status/two_peers_of_a_daemon.json"),
                    readFixture("tail_status/table_before_two_issues.txt"));
    const TailnetState state = read();
    EXPECT_THAT(eachOf(state.tailDevices, &TailDevice::hostName),
                ElementsAre("studio", "Old Laptop"));
    EXPECT_THAT(state.tailscaleHealthIssues,
                ElementsAre("Some peers are advertising routes but --accept-routes is false",
                            "Tailscale can't reach the configured DNS servers."));
}

TEST_F(TailnetIntegration, AToolThatFailsGivesNothing) {
    for (const char* script : {"exit 1", "echo 'failed to connect to local tailscaled' >&2; exit 1",
                               "kill -KILL $$", "echo garbage", "printf '{\"Peer\":{\"a\":{'",
                               "printf '\\377\\376'", "head -c 1000000 /dev/zero"}) {
        install(script, script);
        EXPECT_EQ(read(), TailnetState()) << script;
    }
    folder.file("tailscale", "no program", 0700);
    EXPECT_EQ(read(), TailnetState());
}

TEST_F(TailnetIntegration, ASlowToolIsWaitedFor) {
    launcher.isPatient = false;
    folder.file("json", statusOfPeers(1), 0600);
    install("sleep 0.3; cat json", "sleep 0.3; echo '# Health check:'; sleep 0.1; echo Slow.");
    const TailnetState state = read();
    EXPECT_EQ(state.tailDevices.size(), 1U);
    EXPECT_THAT(state.tailscaleHealthIssues, ElementsAre("Slow."));
}

TEST_F(TailnetIntegration, AToolThatNeverEndsIsEnded) {
    launcher.isPatient = false;
    install("exec sleep 1000", "exec sleep 1000");
    EXPECT_EQ(read(), TailnetState());
}

TEST_F(TailnetIntegration, AStopOfTheProgramEndsTheTool) {
    install("touch started; exec sleep 1000", "touch second");
    const std::jthread stopper([this] {
        eventually([this] { return std::filesystem::exists(folder.path("started")); });
        launcher.tools.requestStop();
    });
    EXPECT_EQ(read(), TailnetState());
    EXPECT_FALSE(std::filesystem::exists(folder.path("second")));
}

TEST_F(TailnetIntegration, TheDaemonAnswersInPlaceOfTheTool) {
    installPrinting(statusOfPeers(1), "# Health check:\nOf the tool.");
    std::string request;
    const TestDaemon daemon(socket, [&request](int connection) {
        request = received(connection, local_api::statusRequest.size());
        send(connection, "HTTP/1.0 200 OK\r\nContent-Type: application/json\r\n\r\n" +
                             readFixture("tail_status/two_peers_of_a_daemon.json"));
    });
    const TailnetState state = read();
    EXPECT_EQ(request, local_api::statusRequest);
    EXPECT_THAT(eachOf(state.tailDevices, &TailDevice::hostName),
                ElementsAre("studio", "Old Laptop"));
    EXPECT_EQ(state.tailscaleHealthIssues.size(), 2U);
}

TEST_F(TailnetIntegration, TheToolAnswersInPlaceOfADaemonThatDoesNot) {
    installPrinting(statusOfPeers(1), "# Health check:\nOf the tool.");
    const std::string megabyte(1U << 20U, '{');
    for (const std::string_view answer :
         {std::string_view("HTTP/1.0 404 Not Found\r\n\r\n404 page not found\n"),
          std::string_view("HTTP/1.0 403 Forbidden\r\n\r\ninvalid localapi request\n"),
          std::string_view("HTTP/1.0 200 OK\r\nConten"), std::string_view(),
          std::string_view("HTTP/1.0 200 OK\r\n\r\n{\"Peer\":{\"a\":{\"Ho"),
          std::string_view(megabyte)}) {
        ::unlink(socket.c_str());
        const TestDaemon daemon(socket, [answer](int connection) {
            received(connection, local_api::statusRequest.size());
            send(connection, answer);
        });
        const TailnetState state = read();
        EXPECT_EQ(state.tailDevices.size(), 1U) << answer.substr(0, 60);
        EXPECT_THAT(state.tailscaleHealthIssues, ElementsAre("Of the tool."));
    }
}

TEST_F(TailnetIntegration, TheToolAnswersInPlaceOfADaemonThatHangs) {
    launcher.isPatient = false;
    installPrinting(statusOfPeers(1));
    const TestDaemon daemon(socket, [](int connection) { awaitTheEnd(connection); });
    EXPECT_EQ(read().tailDevices.size(), 1U);
}

}  // namespace
}  // namespace tallowcrest
