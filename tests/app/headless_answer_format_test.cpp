#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "app/headless_format.h"

namespace tallowcrest {
namespace {

using nlohmann::json;
using ::testing::HasSubstr;
using ::testing::Not;

SystemSnapshot sampleSnapshot() {
    SystemSnapshot snapshot;
    snapshot.memory = {16.0, 9.54, 6.46, 2.5, 0.25, 59.6};
    snapshot.disk = {465.7, 120.34};
    snapshot.cpuPercent = 37.4;
    snapshot.topProcesses = {{812, 142.5, 3.25, 532.5, "/usr/bin/compiler", "/usr/bin/compiler"}};
    snapshot.appImpacts = {{"Developer Tools", 3, 142.54, 1532.6, 812, 1}};
    snapshot.sampledAt = Date::fromUnixSeconds(1'700'000'000.25);
    return snapshot;
}

TEST(AnswerBlock, HasTheAnswerAndTheFiguresBelowIt) {
    const SystemSnapshot snapshot = sampleSnapshot();
    EXPECT_EQ(answerBlock({"Why?", "Because.\n\nSecond.", snapshot, 82.0, 20.0}),
              "Because.\n"
              "\n"
              "Second.\n"
              "\n"
              "  CPU 37%  Memory 60%  9.5 of 16.0 GB used  Disk 120.3 of 465.7 GB free\n"
              "  Warn at 82%  Disk is low at 20 GB\n"
              "  Top process  compiler                       142.5%     532 MB\n"
              "  Top app      Developer Tools                142.5%    1533 MB\n");
}

TEST(AnswerBlock, NothingInItControlsTheTerminal) {
    SystemSnapshot snapshot = sampleSnapshot();
    snapshot.topProcesses.front().command = "/bin/\x1b[2Jevil";
    const std::string block =
        answerBlock({std::nullopt, "a\x1b]0;title\x07\rb", snapshot, 82.0, 20.0});
    EXPECT_THAT(block, testing::StartsWith("a?]0;title??b\n"));
    for (const char* control : {"\x1b", "\x07", "\r"}) {
        EXPECT_THAT(block, Not(HasSubstr(control)));
    }
}

TEST(AnswerBlock, WithoutProcessesThereAreOnlyTheFigures) {
    EXPECT_EQ(answerBlock({std::nullopt, "", SystemSnapshot(), 82.0, 20.0}),
              "\n\n  CPU 0%  Memory unknown  Disk unknown\n  Warn at 82%  Disk is low at 20 GB\n");
}

TEST(AnswerJSON, HasTheQuestionTheAnswerAndTheFigures) {
    const SystemSnapshot snapshot = sampleSnapshot();
    const std::string line = answerJSON({"Größe?", "One.\nTwo \x1b.", snapshot, 82.0, 20.5});
    EXPECT_EQ(line.find('\n'), line.size() - 1);
    EXPECT_EQ(line.find('\x1b'), std::string::npos);
    const json object = json::parse(line);
    EXPECT_EQ(object.at("question"), "Größe?");
    EXPECT_EQ(object.at("answer"), "One.\nTwo \x1b.");
    EXPECT_EQ(object.at("answeredBy"), "device");
    EXPECT_EQ(json::parse(answerJSON({"?", "One.", snapshot, 82.0, 20.5, true})).at("answeredBy"),
              "provider");
    const json& figures = object.at("figures");
    EXPECT_EQ(figures.at("cpuPercent"), 37.4);
    EXPECT_EQ(figures.at("memory").at("pressure"), 59.6);
    EXPECT_EQ(figures.at("disk").at("freeGB"), 120.34);
    EXPECT_EQ(figures.at("warningThreshold"), 82.0);
    EXPECT_EQ(figures.at("diskMinimumFreeGB"), 20.5);
    EXPECT_EQ(figures.at("topProcess").at("pid"), 812);
    EXPECT_EQ(figures.at("topApp").at("name"), "Developer Tools");
    EXPECT_EQ(figures.at("sampledAt"), snapshot.sampledAt.secondsSinceReference);
}

TEST(AnswerJSON, WhatIsAbsentIsNull) {
    const json object = json::parse(answerJSON({std::nullopt, "x", SystemSnapshot(), 82.0, 20.0}));
    EXPECT_TRUE(object.at("question").is_null());
    EXPECT_TRUE(object.at("figures").at("topProcess").is_null());
    EXPECT_TRUE(object.at("figures").at("topApp").is_null());
}

}  // namespace
}  // namespace tallowcrest
