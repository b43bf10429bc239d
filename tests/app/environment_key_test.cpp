#include "app/environment_key.h"

#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

#include "advisor/advisor_ports.h"
#include "tests/support/run_program.h"

namespace tallowcrest {
namespace {

class EnvironmentKeyTest : public ::testing::Test {
protected:
    ~EnvironmentKeyTest() override { unsetenv(keyVariable); }
};

TEST_F(EnvironmentKeyTest, IsTakenOutOfTheEnvironment) {
    setenv(keyVariable, "sk-secret", 1);
    const char* const bytes = std::getenv(keyVariable);
    const auto key = takeEnvironmentKey();
    ASSERT_NE(key, nullptr);
    EXPECT_TRUE(key->isStored());
    EXPECT_EQ(key->read().value().view(), "sk-secret");
    EXPECT_EQ(key->read().value().view(), "sk-secret") << "as often as it is asked for";
    EXPECT_EQ(std::getenv(keyVariable), nullptr);
    EXPECT_EQ(std::string(bytes, 9), std::string(9, '\0')) << "its bytes are gone too";
    EXPECT_EQ(takeEnvironmentKey(), nullptr);
}

TEST_F(EnvironmentKeyTest, NoStartedProgramGetsIt) {
    setenv(keyVariable, "sk-secret", 1);
    ASSERT_NE(shellOutput("env").find("sk-secret"), std::string::npos);
    takeEnvironmentKey();
    EXPECT_EQ(shellOutput("env").find("sk-secret"), std::string::npos);
}

TEST_F(EnvironmentKeyTest, IsAbsentWithoutAValue) {
    unsetenv(keyVariable);
    EXPECT_EQ(takeEnvironmentKey(), nullptr);
    setenv(keyVariable, "", 1);
    EXPECT_EQ(takeEnvironmentKey(), nullptr);
}

TEST_F(EnvironmentKeyTest, CannotBeChanged) {
    setenv(keyVariable, "sk-secret", 1);
    const auto key = takeEnvironmentKey();
    EXPECT_FALSE(key->add(SecretText("sk-other")));
    EXPECT_FALSE(key->remove());
    EXPECT_EQ(key->read().value().view(), "sk-secret");
}

}  // namespace
}  // namespace tallowcrest
