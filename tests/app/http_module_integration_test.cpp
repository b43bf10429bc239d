#include <filesystem>
#include <string>

#include <gmock/gmock.h>

#include "tests/platform/http/test_provider.h"
#include "tests/support/run_program.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {
namespace {

const std::string user = TALLOWCREST_BINARY_DIR "/http_module_user";

TEST(HttpModule, IsLoadedWithItsLibraryByTheFirstExchange) {
    TestProvider provider;
    const ProgramResult result =
        runProgram({.path = user, .arguments = {provider.at("http://127.0.0.1") + "/status?418"}});
    EXPECT_EQ(result.standardOutput, "0 1 418 \n");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(provider.line(), "POST /status Bearer sk-test application/json {}");
}

/// So a program removes the variable before it loads the module.
TEST(HttpModule, OpensTheFileForSecretsOfConnectionsThatTheEnvironmentNames) {
    const TemporaryFolder folder;
    const std::string file = folder.path("secrets");
    TestProvider provider;
    runProgram({.path = user,
                .arguments = {provider.at("http://127.0.0.1") + "/text"},
                .withVariables = {"SSLKEYLOGFILE=" + file}});
    EXPECT_TRUE(std::filesystem::exists(file));
}

TEST(HttpModule, AsksTheProxyOfTheEnvironment) {
    const ProgramResult result =
        runProgram({.path = user,
                    .arguments = {"https://provider.invalid/text"},
                    .withVariables = {"https_proxy=http://127.0.0.1:1", "no_proxy="}});
    EXPECT_THAT(result.standardOutput,
                testing::StartsWith("0 1 0 Failed to connect to 127.0.0.1 port 1"));
}

TEST(HttpModule, KeepsGnuTLSFromPreparingItself) {
    const ProgramResult result = runProgram({.path = user,
                                             .arguments = {"http://127.0.0.1:1/"},
                                             .withVariables = {"LD_DEBUG=bindings"}});
    if (result.standardError.find("libgnutls") == std::string::npos) {
        GTEST_SKIP() << "libcurl does not bring it here";
    }
    EXPECT_THAT(result.standardError,
                testing::ContainsRegex("libgnutls.* to .*/tallowcrest-http.so .*"
                                       "symbol `_gnutls_global_init_skip'"));
}

TEST(HttpModule, IsLoadedByTheFirstRequestForAnUpdateToo) {
    const ProgramResult result =
        runProgram({.path = user,
                    .arguments = {"--update", "https://updates.invalid/feed.json"},
                    .withVariables = {"https_proxy=http://127.0.0.1:1", "no_proxy="}});
    EXPECT_THAT(result.standardOutput,
                testing::StartsWith("0 1 1 0 0 Failed to connect to 127.0.0.1 port 1"));
}

TEST(HttpModule, WithoutItNoUpdateIsVerified) {
    const TemporaryFolder folder;
    const std::filesystem::path copy = folder.path() / "program";
    std::filesystem::copy_file(user, copy);
    const ProgramResult result = runProgram(
        {.path = copy.string(), .arguments = {"--update", "https://127.0.0.1:1/feed.json"}});
    EXPECT_THAT(result.standardOutput, testing::StartsWith("0 0 0 0 0 " + folder.path().string() +
                                                           "/tallowcrest-http.so: cannot open"));
}

TEST(HttpModule, OfAnotherBuildIsNotUsed) {
    for (const char* other : {"http_module_of_another_build", "http_module_without_version"}) {
        const TemporaryFolder folder;
        const std::filesystem::path copy = folder.path() / "program";
        std::filesystem::copy_file(user, copy);
        std::filesystem::copy_file(std::string(TALLOWCREST_BINARY_DIR "/tests/") + other + ".so",
                                   folder.path() / "tallowcrest-http.so");
        const ProgramResult exchange =
            runProgram({.path = copy.string(), .arguments = {"http://127.0.0.1:1/"}});
        EXPECT_EQ(exchange.standardOutput, "0 0 0 Restart Tallowcrest to use the network.\n")
            << other;
        const ProgramResult update = runProgram(
            {.path = copy.string(), .arguments = {"--update", "https://127.0.0.1:1/feed.json"}});
        EXPECT_EQ(update.standardOutput, "0 0 0 0 0 Restart Tallowcrest to use the network.\n")
            << other;
    }
}

TEST(HttpModule, ThatIsNotBesideTheProgramIsNotLookedForElsewhere) {
    const TemporaryFolder folder;
    const std::filesystem::path copy = folder.path() / "program";
    std::filesystem::copy_file(user, copy);
    const ProgramResult result =
        runProgram({.path = copy.string(),
                    .arguments = {"http://127.0.0.1:1/"},
                    .withVariables = {"LD_LIBRARY_PATH=" TALLOWCREST_BINARY_DIR}});
    EXPECT_THAT(result.standardOutput, testing::StartsWith("0 0 0 " + folder.path().string() +
                                                           "/tallowcrest-http.so: cannot open"));
}

}  // namespace
}  // namespace tallowcrest
