#include "remote/tail_status.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/json_reader.h"
#include "core/locale.h"
#include "remote/tail_device.h"
#include "tests/support/each_of.h"
#include "tests/support/fixture.h"
#include "tests/support/status_of_peers.h"

namespace tallowcrest {
namespace {

using namespace std::string_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

TailDevice parsed(const std::string& peer) {
    JsonReader reader(peer);
    EXPECT_TRUE(reader.enterObject());
    TailDevice device = parseTailDevice("key", reader);
    EXPECT_TRUE(reader.isComplete()) << peer;
    return device;
}

std::optional<TailnetState> status(std::string_view json) {
    return parseTailStatus(json, PlainLocale());
}

/// The devices of a status with this text as the value of `Peer`.
std::vector<TailDevice> devices(const std::string& peers) {
    const auto state = status("{\"Peer\":" + peers + "}");
    EXPECT_TRUE(state) << peers.substr(0, 200);
    return state ? state->tailDevices : std::vector<TailDevice>();
}

std::vector<std::string> names(const std::string& peers) {
    return eachOf(devices(peers), &TailDevice::name);
}

std::vector<std::string> issuesIn(const std::string& fixture) {
    return parseTailscaleHealthIssues(readFixture("tail_status/" + fixture));
}

// One peer ----------------------------------------------------------------------------------------

struct PeerCase {
    const char* peer;
    TailDevice expected;
};

TEST(TailStatus, EachFieldHasItsSource) {
    const std::vector<PeerCase> cases{
        {R"({})", {.id = "key", .os = "unknown"}},
        {R"({"ID":"n1","HostName":"studio","DNSName":"studio.ts.net.","OS":"macOS","Online":true,
             "TailscaleIPs":["100.64.0.8","fd7a::8"],"CurAddr":"192.0.2.1:41641","Relay":"fra",
             "PeerRelay":"other","Active":true,"InMagicSock":true,"InEngine":true})",
         {"key",
          "studio.ts.net",
          "studio",
          true,
          {"100.64.0.8", "fd7a::8"},
          "macOS",
          true,
          true,
          "192.0.2.1:41641",
          "fra"}},
        // Names
        {R"({"DNSName":"studio.ts.net."})",
         {.id = "key", .name = "studio.ts.net", .hostName = "studio.ts.net.", .os = "unknown"}},
        {R"({"DNSName":"..a.b..","HostName":"h"})",
         {.id = "key", .name = "a.b", .hostName = "h", .os = "unknown"}},
        {R"({"DNSName":" a. ","HostName":"h"})",
         {.id = "key", .name = " a. ", .hostName = "h", .os = "unknown"}},
        {R"({"DNSName":"","HostName":"studio"})",
         {.id = "key", .name = "studio", .hostName = "studio", .os = "unknown"}},
        {R"({"DNSName":"...","HostName":"studio."})",
         {.id = "key", .name = "studio.", .hostName = "studio.", .os = "unknown"}},
        {R"({"DNSName":"","HostName":"","Online":true,"OS":"macOS"})",
         {.id = "key", .online = true, .os = "macOS"}},
        {R"({"DNSName":"..."})", {.id = "key", .name = "...", .hostName = "...", .os = "unknown"}},
        {R"({"DNSName":"studio.","HostName":""})",
         {.id = "key", .name = "studio", .os = "unknown"}},
        // The relay: a text wins even when it is empty
        {R"({"Relay":"","PeerRelay":"p"})", {.id = "key", .os = "unknown"}},
        {R"({"PeerRelay":"p"})", {.id = "key", .os = "unknown", .relay = "p"}},
        {R"({"Relay":null,"PeerRelay":"p"})", {.id = "key", .os = "unknown", .relay = "p"}},
        {R"({"PeerRelay":"p","Relay":["r"]})", {.id = "key", .os = "unknown", .relay = "p"}},
        {R"({"Relay":7,"PeerRelay":8})", {.id = "key", .os = "unknown"}},
        // Other types
        {R"({"HostName":1,"DNSName":2,"OS":null,"Online":"true","TailscaleIPs":"100.64.0.8",
             "Active":1,"InMagicSock":{},"CurAddr":[]})",
         {.id = "key", .os = "unknown"}},
        {R"({"HostName":1,"DNSName":"a."})",
         {.id = "key", .name = "a", .hostName = "a.", .os = "unknown"}},
        {R"({"TailscaleIPs":["100.64.0.8",7]})", {.id = "key", .os = "unknown"}},
        {R"({"TailscaleIPs":[["100.64.0.8"],"100.64.0.9"]})", {.id = "key", .os = "unknown"}},
        {R"({"TailscaleIPs":{}})", {.id = "key", .os = "unknown"}},
        {R"({"OS":""})", {.id = "key"}},
        // Names of members are compared exactly, and the last of two counts
        {R"({"os":"macOS","online":true,"OS ":"x"})", {.id = "key", .os = "unknown"}},
        {R"({"OS":"a","OS":"b","Online":true,"Online":1})", {.id = "key", .os = "b"}},
        {R"({"\u004fS":"macOS"})", {.id = "key", .os = "macOS"}}};
    for (const PeerCase& each : cases) {
        EXPECT_EQ(parsed(each.peer), each.expected) << each.peer;
    }
}

TEST(TailStatus, NamesStayAsTold) {
    const std::string shell = "$(reboot); `id` && x | y > z 'q'";
    const std::string markup = "<b>bold</b>&amp;";
    const std::string bidirectional = "a\u202Egnp.exe";
    for (const std::string& name :
         {shell, markup, bidirectional, "-oProxyCommand=x"s, std::string(10'000, 'n')}) {
        const TailDevice device = parsed(fmt::format(R"({{"HostName":"{0}","OS":"{0}"}})", name));
        EXPECT_EQ(device.name, name);
        EXPECT_EQ(device.hostName, name);
        EXPECT_EQ(device.os, name);
    }
    EXPECT_EQ(parsed(R"({"HostName":"a\n\u0000\t\"\\b"})").hostName, "a\n\0\t\"\\b"s);
}

// The list ----------------------------------------------------------------------------------------

TEST(TailStatus, AStatusOfADaemonGivesItsPeersAndItsIssues) {
    const auto state = status(readFixture("tail_status/two_peers_of_a_daemon.json"));
    ASSERT_TRUE(state);
    EXPECT_THAT(
        state->tailDevices,
        ElementsAre(
            TailDevice{"nodekey:2222222222222222222222222222222222222222222222222222222222222222",
                       "studio.tail1a2b3.ts.net",
                       "studio",
                       true,
                       {"100.64.0.8", "fd7a:115c:a1e0::8"},
                       "macOS",
                       true,
                       true,
                       "192.168.1.20:41641",
                       "fra"},
            TailDevice{"nodekey:1111111111111111111111111111111111111111111111111111111111111111",
                       "old-laptop.tail1a2b3.ts.net",
                       "Old Laptop",
                       false,
                       {"100.64.0.7", "fd7a:115c:a1e0::7"},
                       "windows",
                       false,
                       false,
                       "",
                       "nyc"}));
    EXPECT_THAT(state->tailscaleHealthIssues,
                ElementsAre("Some peers are advertising routes but --accept-routes is false",
                            "Tailscale can't reach the configured DNS servers."));
}

TEST(TailStatus, OnlinePeersComeFirstThenTheNamesOfTheLocale) {
    EXPECT_THAT(names(R"({"1":{"HostName":"b"},"2":{"HostName":"Z","Online":true},
                         "3":{"HostName":"a"},"4":{"HostName":"y","Online":true},
                         "5":{"HostName":"B","Online":false},"6":{"HostName":"C"}})"),
                ElementsAre("y", "Z", "a", "b", "B", "C"));
}

TEST(TailStatus, EqualNamesStayInTheOrderOfTheirKeys) {
    EXPECT_THAT(
        eachOf(devices(R"({"c":{"HostName":"x"},"a":{"HostName":"X"},"b":{}})"), &TailDevice::id),
        ElementsAre("b", "a", "c"));
}

TEST(TailStatus, OfTwoPeersWithOneKeyTheLastCounts) {
    EXPECT_THAT(names(R"({"a":{"HostName":"first"},"a":{"HostName":"last"}})"),
                ElementsAre("last"));
    EXPECT_THAT(names(R"({"a":7,"a":{"HostName":"last"}})"), ElementsAre("last"));
    EXPECT_THAT(names(R"({"a":{"HostName":"first"},"a":7})"), IsEmpty());
}

TEST(TailStatus, EveryPeerIsKept) {
    const std::vector<TailDevice> all = status(statusOfPeers(2'000))->tailDevices;
    ASSERT_EQ(all.size(), 2'000U);
    EXPECT_EQ(all.front().hostName, "machine-0000");
    EXPECT_EQ(all[999].hostName, "machine-1998");
    EXPECT_EQ(all[1000].hostName, "machine-0001");
    EXPECT_EQ(all.back().hostName, "machine-1999");
    EXPECT_EQ(std::ranges::count_if(
                  all, [](const TailDevice& each) { return isRemoteMac(each, PlainLocale()); }),
              500);
}

TEST(TailStatus, WithoutAnObjectOfObjectsThereAreNoPeers) {
    for (const char* text :
         {"{}", R"({"Peer":null})", R"({"Peer":[]})", R"({"Peer":[{}]})", R"({"Peer":"x"})",
          R"({"Peer":7})", R"({"Peer":{}})", R"({"Peer":{"a":7}})", R"({"Peer":{"a":{},"b":null}})",
          R"({"Peer":{"a":{},"b":[{}]}})", R"({"peer":{"a":{}}})",
          R"({"Self":{"HostName":"self"}})", R"({"Peer":{"a":{}},"Peer":{}})"}) {
        const auto state = status(text);
        ASSERT_TRUE(state) << text;
        EXPECT_THAT(state->tailDevices, IsEmpty()) << text;
    }
    EXPECT_EQ(status(readFixture("tail_status/logged_out.json")),
              (TailnetState{{}, {"You are logged out."}, true}));
}

TEST(TailStatus, WhatIsNoObjectIsNoStatus) {
    const std::string good = readFixture("tail_status/two_peers_of_a_daemon.json");
    std::string notUTF8 = good;
    notUTF8.replace(notUTF8.find("studio"), 1, "\xFF");
    for (const std::string& text : {""s,
                                    " "s,
                                    "null"s,
                                    "[]"s,
                                    "\"{}\""s,
                                    "7"s,
                                    "{"s,
                                    "{}}"s,
                                    "{} {}"s,
                                    "{'Peer':{}}"s,
                                    R"({"Peer":{"a":{"HostName":"\ud800"}}})"s,
                                    good.substr(0, good.size() - 3),
                                    good.substr(0, good.size() / 2),
                                    good + "x",
                                    notUTF8,
                                    std::string(1U << 20U, 'x'),
                                    std::string(1U << 20U, '['),
                                    R"({"Peer":)" + std::string(1U << 20U, '['),
                                    R"({"Peer":{"a":{"HostName":)" + std::string(1U << 20U, '{'),
                                    "# Health check:\n#     - text\n"s}) {
        EXPECT_EQ(status(text), std::nullopt) << text.substr(0, 80);
    }
}

TEST(TailStatus, DeepNestingEndsClearly) {
    const std::string deep = std::string(500'000, '[') + std::string(500'000, ']');
    EXPECT_THAT(names(R"({"a":{"HostName":"h","CapMap":)" + deep + R"(,"OS":)" + deep + "}}"),
                ElementsAre("h"));
    EXPECT_THAT(devices(deep), IsEmpty());
}

// Health ------------------------------------------------------------------------------------------

TEST(TailStatus, TheIssuesOfADaemonAreTrimmed) {
    const auto issues = [](const std::string& health) {
        const auto state = status(R"({"Health":)" + health + "}");
        return state ? state->tailscaleHealthIssues : std::vector<std::string>{"no status"};
    };
    EXPECT_THAT(issues(R"([" a ","","\n\t ","b\nc\n","#     - d"])"),
                ElementsAre("a", "b\nc", "#     - d"));
    for (const char* none : {"null", "[]", "{}", "\"a\"", "7", R"(["a",7])"}) {
        EXPECT_THAT(issues(none), IsEmpty()) << none;
    }
}

TEST(TailStatus, TheIssuesOfPlainTextAreTheLinesBehindTheMarker) {
    EXPECT_THAT(issuesIn("table_before_two_issues.txt"),
                ElementsAre("Some peers are advertising routes but --accept-routes is false",
                            "Tailscale can't reach the configured DNS servers."));
    EXPECT_THAT(issuesIn("table_behind_an_issue.txt"),
                ElementsAre("The relay is out of reach.",
                            "100.101.102.103 desk                 owner@       linux   -",
                            "100.64.0.8      studio               owner@       macOS   idle"));
    EXPECT_THAT(issuesIn("warnings_without_the_marker.txt"), IsEmpty());
}

TEST(TailStatus, LinesOfIssuesAreCleaned) {
    const auto issues = parseTailscaleHealthIssues;
    EXPECT_THAT(issues(""), IsEmpty());
    EXPECT_THAT(issues("# Health check:"), IsEmpty());
    EXPECT_THAT(issues("# Health check:\n\n#     - \n \t\r\n"), IsEmpty());
    EXPECT_THAT(issues("# Health check: at once\nb"), ElementsAre("at once", "b"));
    EXPECT_THAT(issues("x # Health check:\n#     - a#     - b\r\n  #     - c"),
                ElementsAre("ab", "c"));
    EXPECT_THAT(issues("# Health check:\n#     - a\n# Health check:\n#    - b"),
                ElementsAre("a", "# Health check:", "#    - b"));
    std::string many;
    for (int i = 0; i < 100'000; ++i) {
        many += "#     - ";
    }
    EXPECT_THAT(issues("# Health check:\n" + many + "a" + many), ElementsAre("a"));
}

}  // namespace
}  // namespace tallowcrest
