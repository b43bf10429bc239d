#include "platform/http/curl_exchange.h"

#include <sys/resource.h>

#include <future>
#include <optional>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "advisor/provider_reply.h"
#include "platform/http/curl_transfer.h"
#include "tests/platform/http/test_provider.h"

namespace tallowcrest {
namespace {

using std::chrono::seconds;
using testing::HasSubstr;
using testing::Optional;
using testing::StartsWith;

constexpr const char* local = "http://127.0.0.1";

/// The text or the message of the error.
std::string outcome(const std::optional<HttpReply>& reply) {
    if (!reply) {
        return "no reply in time";
    }
    const ProviderResult result = interpretProviderReply(*reply, "OpenAI");
    const auto* text = std::get_if<std::string>(&result);
    return text != nullptr ? *text : std::get<AIError>(result).message;
}

TEST(CurlExchange, SendsTheRequestAsAsked) {
    TestProvider provider;
    CurlExchange exchange({});
    EXPECT_EQ(outcome(post(exchange, provider.at(local) + "/text")), "fine");
    EXPECT_EQ(provider.line(), "POST /text Bearer sk-test application/json {}");
}

/// Failures, over plain HTTP and over TLS.
class CurlExchangeFailures : public testing::TestWithParam<bool> {
protected:
    CurlExchangeFailures() { start(provider_); }

    void start(std::optional<TestProvider>& provider) const {
        if (GetParam()) {
            provider.emplace(authority_.certificate("IP:127.0.0.1,DNS:localhost"));
        } else {
            provider.emplace();
        }
    }

    std::string outcomeOf(const std::string& path) {
        return outcome(post(exchange_, provider_->at(scheme_ + "127.0.0.1") + path));
    }

    const std::string scheme_ = GetParam() ? "https://" : "http://";
    TestAuthority authority_;
    std::optional<TestProvider> provider_;
    CurlExchange exchange_{{.certificateAuthorities = authority_.path()}};
};

INSTANTIATE_TEST_SUITE_P(Over, CurlExchangeFailures, testing::Bool(),
                         [](const auto& each) { return each.param ? "Tls" : "PlainHttp"; });

TEST_P(CurlExchangeFailures, EachHasItsWords) {
    const std::string shown(240, 'b');
    const std::vector<std::pair<std::string, std::string>> table{
        {"/text", "fine"},
        {"/status?200", "OpenAI response did not include readable text."},
        {"/status?302", "OpenAI error 302: " + shown},
        {"/status?401", "OpenAI error 401: " + shown},
        {"/status?429", "OpenAI error 429: " + shown},
        {"/status?500", "OpenAI error 500: " + shown},
        {"/bodiless?204", "OpenAI returned no data."},
        {"/bodiless?200", "OpenAI returned no data."},
        {"/bodiless?500", "OpenAI returned no data."},
        {"/unreadable", "OpenAI response did not include readable text."},
        {"/not-utf8?400", "OpenAI error 400: HTTP 400"},
    };
    for (const auto& [path, expected] : table) {
        EXPECT_EQ(outcomeOf(path), expected) << path;
    }
}

TEST_P(CurlExchangeFailures, ThoseOfTheConnectionAreToldInTheLibrarysWords) {
    for (const char* path : {"/broken", "/closed", "/other-protocol"}) {
        EXPECT_THAT(outcomeOf(path), StartsWith("OpenAI request failed: ")) << path;
    }
}

TEST_P(CurlExchangeFailures, AReplyThatIsTooLongIsRefused) {
    for (const char* path : {"/large", "/large-without-length"}) {
        EXPECT_THAT(outcomeOf(path), StartsWith("OpenAI request failed: Maximum file size"));
    }
}

TEST_P(CurlExchangeFailures, ARedirectionIsNotFollowed) {
    std::optional<TestProvider> other;
    start(other);
    EXPECT_EQ(outcomeOf("/redirect?" + other->at(scheme_ + "localhost") + "/text"),
              "OpenAI error 307: moved");
    // Had there been a request before this one, the other server would have told it first.
    post(exchange_, other->at(scheme_ + "127.0.0.1") + "/status?200");
    EXPECT_THAT(other->line(), StartsWith("POST /status "));
}

TEST(CurlExchange, AServerThatIsNotThereIsToldInTheLibrarysWords) {
    CurlExchange exchange({});
    EXPECT_THAT(outcome(post(exchange, "http://127.0.0.1:1/text")), HasSubstr("Failed to connect"));
    EXPECT_THAT(outcome(post(exchange, "https://nobody.invalid/text")),
                HasSubstr("Could not resolve host"));
}

TEST(CurlExchange, BytesThatAreNoTextPass) {
    TestProvider provider;
    CurlExchange exchange({});
    const auto reply = post(exchange, provider.at(local) + "/not-utf8?200");
    ASSERT_TRUE(reply);
    EXPECT_THAT(reply->data, Optional(WipedText("{\"output_text\": \"\xFF\xFE\"}")));
}

TEST(CurlExchange, ARefusedTokenIsSentOnlyOnce) {
    TestProvider provider;
    CurlExchange exchange({});
    EXPECT_EQ(post(exchange, provider.at(local) + "/status?401")->status, 401);
    EXPECT_EQ(post(exchange, provider.at(local) + "/text")->status, 200);
    EXPECT_THAT(provider.line(), StartsWith("POST /status "));
    EXPECT_THAT(provider.line(), StartsWith("POST /text "));
}

TEST(CurlExchange, PlainHttpIsForThisMachineOnly) {
    TestProvider provider;
    CurlExchange exchange({});
    for (const char* host : {"http://127.0.0.2", "http://localhost"}) {
        // Only the first address has a listener; that it was tried shows that it was allowed.
        EXPECT_THAT(outcome(post(exchange, provider.at(host) + "/text")),
                    testing::AnyOf("fine", HasSubstr("Failed to connect")))
            << host;
    }
    for (const char* url :
         {"http://192.0.2.1/text", "http://provider.invalid/text", "http://localhost.invalid/text",
          "http://127.0.0.1.invalid/text", "http://[2001:db8::1]/text", "ftp://127.0.0.1/text",
          "file:///etc/hostname", "gopher://127.0.0.1/"}) {
        EXPECT_THAT(outcome(post(exchange, url)), HasSubstr("not supported or disabled")) << url;
    }
}

TEST(CurlExchange, KnowsTheAddressesOfThisMachine) {
    for (const char* host : {"localhost", "LOCALHOST", "127.0.0.1", "127.255.0.9", "::1"}) {
        EXPECT_TRUE(isLoopbackHost(host)) << host;
    }
    for (const char* host : {"", "128.0.0.1", "127.1.example", "::2", "::ffff:127.0.0.1", "local",
                             "localhost.", "localhost.example", "0.0.0.0"}) {
        EXPECT_FALSE(isLoopbackHost(host)) << host;
    }
}

TEST(CurlExchange, AReplyThatIsTooLongIsRefusedBeforeItFillsTheMemory) {
    TestProvider provider;
    CurlExchange exchange({});
    rusage before{};
    ::getrusage(RUSAGE_SELF, &before);
    const std::vector<std::pair<std::string, std::string>> table{
        {"/large", "Maximum file size exceeded"},
        {"/large-without-length", "Maximum file size exceeded"},
        {"/headers", "Too large response headers"}};
    for (const auto& [path, words] : table) {
        EXPECT_THAT(outcome(post(exchange, provider.at(local) + path)),
                    StartsWith("OpenAI request failed: " + words));
        EXPECT_THAT(provider.line(), StartsWith("POST "));
        EXPECT_EQ(provider.line(), "gone");
    }
    rusage after{};
    ::getrusage(RUSAGE_SELF, &after);
    EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 40L * 1024);  // in KiB
}

TEST(CurlExchange, AReplyOfTheGreatestLengthIsTaken) {
    TestProvider provider;
    CurlExchange exact({.longestReply = 1000});
    EXPECT_THAT(outcome(post(exact, provider.at(local) + "/status?500")),
                StartsWith("OpenAI error 500: b"));
    CurlExchange less({.longestReply = 999});
    EXPECT_THAT(outcome(post(less, provider.at(local) + "/status?500")),
                HasSubstr("file size exceeded"));
}

// Over TLS, as with most services.
TEST(CurlExchange, TheCallerDoesNotWaitForASlowReplyWhichThenEndsByItself) {
    TestAuthority authority;
    TestProvider provider(authority.certificate("IP:127.0.0.1"));
    CurlExchange exchange({.certificateAuthorities = authority.path()});
    for (const char* path : {"/drip", "/silent"}) {
        EXPECT_EQ(outcome(post(exchange, provider.at("https://127.0.0.1") + path, seconds(1),
                               seconds(3))),
                  "no reply in time");
        EXPECT_THAT(provider.line(), StartsWith("POST "));
        EXPECT_EQ(provider.line(), "gone");
    }
}

TEST(CurlExchange, AnExchangeEndsWithItsTimeLimit) {
    TestProvider provider;
    CurlExchange exchange({});
    EXPECT_THAT(outcome(post(exchange, provider.at(local) + "/drip", seconds(30), seconds(2))),
                HasSubstr("timed out"));
}

TEST(CurlExchange, AStopEndsTheWaitAndTheExchange) {
    TestProvider provider;
    CurlExchange exchange({});
    std::stop_source stop;
    auto reply = std::async(std::launch::async, [&] {
        return post(exchange, provider.at(local) + "/silent", seconds(60), seconds(60),
                    stop.get_token());
    });
    EXPECT_THAT(provider.line(), StartsWith("POST /silent "));
    stop.request_stop();
    EXPECT_FALSE(reply.get());
    EXPECT_EQ(provider.line(), "gone");
}

TEST(CurlExchange, ItsEndEndsWhatNobodyWaitsFor) {
    TestProvider provider;
    {
        CurlExchange exchange({});
        EXPECT_FALSE(post(exchange, provider.at(local) + "/silent", seconds(1)));
    }
    EXPECT_THAT(provider.line(), StartsWith("POST /silent "));
    EXPECT_EQ(provider.line(), "gone");
}

TEST(CurlExchange, SeveralRunAtOnce) {
    TestProvider provider;
    CurlExchange exchange({});
    auto slow = std::async(std::launch::async, [&] {
        return post(exchange, provider.at(local) + "/silent", seconds(60), seconds(4));
    });
    EXPECT_THAT(provider.line(), StartsWith("POST /silent "));
    EXPECT_EQ(outcome(post(exchange, provider.at(local) + "/text")), "fine");
    EXPECT_THAT(outcome(slow.get()), HasSubstr("timed out"));
}

TEST(CurlExchange, AMachineMayHaveTheNewerKindOfAddress) {
    TestProvider provider("::1");
    CurlExchange exchange({});
    EXPECT_EQ(outcome(post(exchange, provider.at("http://[::1]") + "/text")), "fine");
}

}  // namespace
}  // namespace tallowcrest
