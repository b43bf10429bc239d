// What the program answers on the machine that the test runs on.

#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "core/settings/settings.h"
#include "tests/app/headless_program.h"
#include "tests/app/private_data.h"
#include "tests/app/stored_setting.h"
#include "tests/platform/http/test_provider.h"
#include "tests/support/file_text.h"
#include "tests/support/scoped_variable.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {
namespace {

using nlohmann::json;
using ::testing::HasSubstr;
using ::testing::StartsWith;

TEST(HeadlessAdvisorProgram, AnswersAQuestionWithItsFigures) {
    const ProgramResult result = run({"--headless", "--ask", "What is slowing this Mac down?"});
    EXPECT_EQ(result.status, 0) << result.standardError;
    EXPECT_EQ(result.standardError, "");
    EXPECT_THAT(result.standardOutput, StartsWith("Overall CPU load is "));
    EXPECT_THAT(result.standardOutput, HasSubstr(" is currently the leading sampled process at "));
    EXPECT_THAT(result.standardOutput, HasSubstr("\n  CPU "));
    EXPECT_THAT(result.standardOutput, HasSubstr("\n  Top process  "));
}

TEST(HeadlessAdvisorProgram, AnswersAsAnObject) {
    const ProgramResult result = run({"--headless", "--json", "--ask", "memory"});
    EXPECT_EQ(result.status, 0) << result.standardError;
    const json object = json::parse(result.standardOutput);
    EXPECT_EQ(object.at("question"), "memory");
    EXPECT_THAT(object.at("answer").get<std::string>(), StartsWith("Memory pressure is "));
    EXPECT_GT(object.at("figures").at("memory").at("totalGB").get<double>(), 0.0);
}

TEST(HeadlessAdvisorProgram, Analyzes) {
    const ProgramResult result = run({"--headless", "--json", "--analyze"});
    EXPECT_EQ(result.status, 0) << result.standardError;
    const json object = json::parse(result.standardOutput);
    EXPECT_TRUE(object.at("question").is_null());
    EXPECT_THAT(object.at("answer").get<std::string>(), StartsWith("On-device analysis: Memory "));
}

TEST(HeadlessAdvisorProgram, WithAKeyAsksTheProviderAndAnswersAloneWhenItCannotBeReached) {
    const PrivateData data;
    // Nothing listens on this port, so nothing leaves the machine.
    const ProgramResult result =
        run({"--headless", "--analyze", "--yes"},
            {"TALLOWCREST_AI_KEY=sk-secret", "https_proxy=http://127.0.0.1:1", "no_proxy="});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.standardError, "");
    EXPECT_THAT(result.standardOutput,
                StartsWith("Paid AI is currently unavailable, so Tallowcrest used on-device "
                           "analysis instead. Memory "));
    EXPECT_THAT(result.standardOutput, testing::Not(HasSubstr("sk-secret")));
}

TEST(HeadlessAdvisorProgram, SaysOnStandardErrorWhyAQuestionWasNotAnsweredByTheProvider) {
    const PrivateData data;
    const ProgramResult result =
        run({"--headless", "--ask", "Why?"},
            {"TALLOWCREST_AI_KEY=sk-secret", "https_proxy=http://127.0.0.1:1", "no_proxy="});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.standardError,
                StartsWith("tallowcrest: Paid AI fallback: OpenAI request failed: "));
    EXPECT_EQ(result.standardError.find('\n'), result.standardError.size() - 1);
    EXPECT_THAT(result.standardOutput,
                StartsWith("Paid AI is currently unavailable, so here is the on-device answer:"));
}

TEST(HeadlessAdvisorProgram, AServerOfTheOwnersOwnIsAskedWithoutAKey) {
    const PrivateData data;
    TestProvider provider;
    storeSetting(data, settings_keys::aiEndpointKey, provider.at("http://127.0.0.1"));
    const ProgramResult result = run({"--headless", "--ask", "Why?"});
    EXPECT_EQ(result.status, 0) << result.standardError;
    EXPECT_THAT(provider.line(), StartsWith("POST /v1/responses - application/json"));
}

TEST(HeadlessAdvisorProgram, WithABadKeyItSaysSoAndSendsNothing) {
    const PrivateData data;
    TestProvider provider;
    storeSetting(data, settings_keys::aiEndpointKey, provider.at("http://127.0.0.1"));
    for (const std::vector<std::string>& asked : {std::vector<std::string>{"--ask", "Why?"},
                                                  std::vector<std::string>{"--analyze", "--yes"}}) {
        std::vector<std::string> arguments{"--headless"};
        arguments.insert(arguments.end(), asked.begin(), asked.end());
        const ProgramResult result = run(arguments, {"TALLOWCREST_AI_KEY=sk-a\nb"});
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.standardError,
                  "tallowcrest: TALLOWCREST_AI_KEY: That does not look like an OpenAI API key.\n");
        EXPECT_THAT(result.standardOutput, testing::Not(HasSubstr("Paid AI")));
    }
    run({"--headless", "--ask", "Why?"}, {"TALLOWCREST_AI_KEY= sk-good \n"});
    EXPECT_THAT(provider.line(), StartsWith("POST /v1/responses Bearer sk-good application/json"))
        << "the first request that the server has seen";
}

TEST(HeadlessAdvisorProgram, NobodyElseCanReadTheKeyOfItsEnvironment) {
    const ScopedVariable variable("TALLOWCREST_AI_KEY", "sk-0123456789abcdef");
    StartedProgram running({program, "--headless", "--json", "--interval", "0.1"});
    ASSERT_THAT(running.line(), StartsWith("{"));
    const std::string environment = fileText("/proc/" + std::to_string(running.pid()) + "/environ");
    EXPECT_THAT(environment, HasSubstr("PATH="));
    EXPECT_THAT(environment, testing::Not(HasSubstr("sk-0123456789")));
}

TEST(HeadlessAdvisorProgram, TakesTheFirstOfSeveralKeys) {
    const PrivateData data;
    TestProvider provider;
    storeSetting(data, settings_keys::aiEndpointKey, provider.at("http://127.0.0.1"));
    run({"--headless", "--ask", "Why?"},
        {"TALLOWCREST_AI_KEY=", "TALLOWCREST_AI_KEY=sk-first", "TALLOWCREST_AI_KEY=sk-second"});
    EXPECT_THAT(provider.line(), StartsWith("POST /v1/responses Bearer sk-first application/json"));
}

TEST(HeadlessAdvisorProgram, WritesNoSecretsOfConnectionsToTheFileThatTheEnvironmentNames) {
    const PrivateData data;
    TestProvider provider;
    const TemporaryFolder folder;
    const std::string file = folder.path("secrets");
    const std::vector<std::string> variables{"SSLKEYLOGFILE=" + file};
    storeSetting(data, settings_keys::aiEndpointKey, provider.at("http://127.0.0.1"));
    run({"--headless", "--ask", "Why?"}, variables);
    EXPECT_THAT(provider.line(), StartsWith("POST /v1/responses"));
    EXPECT_FALSE(std::filesystem::exists(file));
}

}  // namespace
}  // namespace tallowcrest
