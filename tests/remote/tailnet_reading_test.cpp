#include "remote/tailnet_reading.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "actions/tool_runner.h"
#include "remote/local_api.h"
#include "tests/support/each_of.h"
#include "tests/support/fake_tailscale.h"
#include "tests/support/test_services.h"

namespace tallowcrest {
namespace {

using namespace std::string_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class TailnetReadingTest : public ::testing::Test, protected TestServices {
protected:
    TailnetState read() {
        tools.emplace(tailscale.allowed, tailscale, jobs, log);
        TailnetState state =
            readTailnet({*tools, locale, tailscale.daemon(), tailscale.cli}, stopping.get_token());
        mainQueue.drain();
        return state;
    }

    std::vector<std::vector<std::string>> launchedArguments() const {
        return eachOf(tailscale.requests, &ToolRequest::arguments);
    }

    static std::vector<std::string> names(const TailnetState& state) {
        return eachOf(state.tailDevices, &TailDevice::name);
    }

    FakeTailscale tailscale;
    std::optional<ToolRunner> tools;
    std::stop_source stopping;
};

TEST_F(TailnetReadingTest, AsksTheDaemonAlone) {
    tailscale.answer =
        "HTTP/1.0 200 OK\r\nContent-Type: application/json\r\n\r\n"
        R"({"Health":["Bad."],"Peer":{"a":{"HostName":"studio"}}})";
    const TailnetState state = read();
    EXPECT_THAT(names(state), ElementsAre("studio"));
    EXPECT_THAT(state.tailscaleHealthIssues, ElementsAre("Bad."));
    EXPECT_THAT(tailscale.daemonRequests, ElementsAre(local_api::statusRequest));
    EXPECT_THAT(tailscale.requests, IsEmpty());
}

TEST_F(TailnetReadingTest, TheDaemonIsEnoughWithoutTheTool) {
    tailscale.cli = tailscale.folder.path("absent");
    tailscale.answer = "HTTP/1.0 200 OK\r\n\r\n{}";
    const TailnetState state = read();
    EXPECT_TRUE(state.isAnswered);
    EXPECT_THAT(state.tailDevices, IsEmpty());
}

TEST_F(TailnetReadingTest, AsksTheToolWhenTheDaemonAnswersOtherwise) {
    tailscale.json = R"({"Health":["not this one"],"Peer":{"a":{"HostName":"studio"}}})";
    tailscale.text = "# Health check:\n#     - Bad.\n";
    for (const std::optional<std::string>& answer : {std::optional<std::string>(),
                                                     {""s},
                                                     {"HTTP/1.0 403 Forbidden\r\n\r\n{}"s},
                                                     {"HTTP/1.0 200 OK\r\n\r\n"s},
                                                     {"HTTP/1.0 200 OK\r\n\r\n[]"s},
                                                     {"HTTP/1.0 200 OK\r\n\r\n{\"Peer\":{"s},
                                                     {"\xFF\xFF"s}}) {
        tailscale.answer = answer;
        tailscale.requests.clear();
        const TailnetState state = read();
        EXPECT_THAT(names(state), ElementsAre("studio"));
        EXPECT_THAT(state.tailscaleHealthIssues, ElementsAre("Bad."));
        ASSERT_EQ(tailscale.requests.size(), 2U);
        EXPECT_THAT(launchedArguments(),
                    ElementsAre(ElementsAre("status", "--json"), ElementsAre("status")));
        EXPECT_EQ(tailscale.requests[0].timeout, std::chrono::seconds(2));
        EXPECT_EQ(tailscale.requests[1].timeout, std::chrono::seconds(3));
        for (const ToolRequest& request : tailscale.requests) {
            EXPECT_EQ(request.path, tailscale.cli);
            EXPECT_FALSE(request.mergeStandardError);
        }
    }
}

TEST_F(TailnetReadingTest, ToolsWithoutADaemonAreAskedAtOnce) {
    tailscale.json = R"({"Peer":{"a":{"HostName":"studio"}}})";
    tools.emplace(tailscale.allowed, tailscale, jobs, log);
    EXPECT_THAT(names(readTailnet({*tools, locale, {}, tailscale.cli}, stopping.get_token())),
                ElementsAre("studio"));
}

TEST_F(TailnetReadingTest, AMissingToolIsTheOnlyIssue) {
    const std::string installed = tailscale.cli;
    for (const std::string& path :
         {tailscale.folder.path("absent"), tailscale.folder.file("plain", "text", 0644),
          tailscale.folder.path().string(), installed + "/below"}) {
        tailscale.cli = path;
        const TailnetState state = read();
        EXPECT_THAT(state.tailDevices, IsEmpty());
        EXPECT_THAT(state.tailscaleHealthIssues,
                    ElementsAre("Tailscale CLI was not found at " + path + "."));
    }
    EXPECT_THAT(tailscale.requests, IsEmpty());
    EXPECT_THAT(log.activityLog(), IsEmpty());
}

TEST_F(TailnetReadingTest, AToolThatIsNotAllowedGivesNothing) {
    tailscale.json = R"({"Peer":{"a":{}}})";
    tailscale.text = "# Health check:\nBad.";
    tailscale.allowed = {"/usr/bin/tailscale"};
    EXPECT_EQ(read(), TailnetState());
    EXPECT_THAT(tailscale.requests, IsEmpty());
}

TEST_F(TailnetReadingTest, AnOutputThatIsNoStatusEmptiesTheDevicesAlone) {
    for (const std::string& json :
         {""s, "garbage"s, "[]"s, "\xFF"s, R"({"Self":{}})"s, std::string(1U << 20U, '{')}) {
        tailscale.json = json;
        tailscale.text = "# Health check:\n#     - Bad.\n";
        const TailnetState state = read();
        EXPECT_THAT(state.tailDevices, IsEmpty());
        EXPECT_THAT(state.tailscaleHealthIssues, ElementsAre("Bad."));
    }
    tailscale.json = R"({"Peer":{"a":{"HostName":"studio"}}})";
    tailscale.text = "# Health check:\n\xFF\n";
    const TailnetState state = read();
    EXPECT_THAT(names(state), ElementsAre("studio"));
    EXPECT_THAT(state.tailscaleHealthIssues, IsEmpty());
}

TEST_F(TailnetReadingTest, AStopSparesTheTool) {
    stopping.request_stop();
    EXPECT_EQ(read(), TailnetState());
    EXPECT_THAT(tailscale.requests, IsEmpty());
}

}  // namespace
}  // namespace tallowcrest
