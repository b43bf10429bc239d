#include "app/environment_key.h"

#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "advisor/advisor_ports.h"
#include "platform/base/environment.h"
#include "tests/support/run_program.h"

extern char** environ;

namespace tallowcrest {
namespace {

class EnvironmentKeyTest : public ::testing::Test {
protected:
    ~EnvironmentKeyTest() override { unsetenv(keyVariable); }
};

TEST_F(EnvironmentKeyTest, IsTakenOutOfTheEnvironment) {
    setenv(keyVariable, "sk-secret", 1);
    const char* const bytes = std::getenv(keyVariable);
    const auto key = takeEnvironmentKey().store;
    ASSERT_NE(key, nullptr);
    EXPECT_TRUE(key->isStored());
    EXPECT_EQ(key->read().value().view(), "sk-secret");
    EXPECT_EQ(key->read().value().view(), "sk-secret") << "as often as it is asked for";
    EXPECT_EQ(std::getenv(keyVariable), nullptr);
    EXPECT_EQ(std::string(bytes, 9), std::string(9, '\0')) << "its bytes are gone too";
    EXPECT_EQ(takeEnvironmentKey().store, nullptr);
}

TEST_F(EnvironmentKeyTest, NoStartedProgramGetsIt) {
    setenv(keyVariable, "sk-secret", 1);
    ASSERT_NE(shellOutput("env").find("sk-secret"), std::string::npos);
    takeEnvironmentKey();
    EXPECT_EQ(shellOutput("env").find("sk-secret"), std::string::npos);
}

TEST_F(EnvironmentKeyTest, IsAbsentWithoutAValue) {
    unsetenv(keyVariable);
    EXPECT_EQ(takeEnvironmentKey().store, nullptr);
    for (const char* blank : {"", " ", " \t\r\n", "\u00a0"}) {
        setenv(keyVariable, blank, 1);
        const EnvironmentKey key = takeEnvironmentKey();
        EXPECT_EQ(key.store, nullptr);
        EXPECT_FALSE(key.isBad);
        EXPECT_EQ(environmentVariable(keyVariable), "");
    }
}

TEST_F(EnvironmentKeyTest, IsTrimmed) {
    setenv(keyVariable, "\t sk-secret \r\n", 1);
    EXPECT_EQ(takeEnvironmentKey().store->read().value().view(), "sk-secret");
}

TEST_F(EnvironmentKeyTest, IsTakenOutAsOftenAsItIsThere) {
    std::vector<std::string> entries{"TALLOWCREST_AI_KEY=",         "TALLOWCREST_AI_KEY= \t",
                                     "TALLOWCREST_AI_KEYS=another", "TALLOWCREST_AI_KEY=sk-first ",
                                     "TALLOWCREST_AI_KE=other",     "TALLOWCREST_AI_KEY=sk-second"};
    std::vector<char*> pointers;
    for (std::string& entry : entries) {
        pointers.push_back(entry.data());
    }
    pointers.push_back(nullptr);
    char** const before = std::exchange(environ, pointers.data());
    const auto key = takeEnvironmentKey().store;
    std::vector<std::string> left;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        left.emplace_back(*entry);
    }
    environ = before;
    ASSERT_NE(key, nullptr);
    EXPECT_EQ(key->read().value().view(), "sk-first");
    EXPECT_THAT(left,
                testing::ElementsAre("TALLOWCREST_AI_KEYS=another", "TALLOWCREST_AI_KE=other"));
    EXPECT_EQ(entries[1], "TALLOWCREST_AI_KEY=" + std::string(2, '\0'));
    EXPECT_EQ(entries[3], "TALLOWCREST_AI_KEY=" + std::string(9, '\0'));
    EXPECT_EQ(entries[5], "TALLOWCREST_AI_KEY=" + std::string(9, '\0'));
}

TEST_F(EnvironmentKeyTest, OneThatCannotStandInAHeaderIsBad) {
    for (const std::string& bad :
         {std::string("sk-a\nHost: b"), std::string("sk-a\tb"), std::string("sk-\x1b"),
          std::string("sk-\u0085x"), std::string("sk-\xff"), std::string(5000, 's')}) {
        setenv(keyVariable, bad.c_str(), 1);
        const EnvironmentKey key = takeEnvironmentKey();
        EXPECT_EQ(key.store, nullptr) << bad;
        EXPECT_TRUE(key.isBad) << bad;
        EXPECT_EQ(std::getenv(keyVariable), nullptr);
    }
}

TEST_F(EnvironmentKeyTest, CannotBeChanged) {
    setenv(keyVariable, "sk-secret", 1);
    const auto key = takeEnvironmentKey().store;
    EXPECT_FALSE(key->add(SecretText("sk-other")));
    EXPECT_FALSE(key->remove(true));
    EXPECT_EQ(key->read().value().view(), "sk-secret");
}

}  // namespace
}  // namespace tallowcrest
