
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <optional>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/http/curl_exchange.h"
#include "tests/platform/http/test_provider.h"
#include "tests/platform/support/refused_call.h"

namespace {

std::atomic<std::size_t> refusedBytes = SIZE_MAX;

}  // namespace

// These belong to this whole test program.

void* operator new(std::size_t size) {
    void* const memory = size < refusedBytes ? std::malloc(size) : nullptr;
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}

namespace tallowcrest {
namespace {

using testing::Optional;

/// A machine that has no memory for larger things, and no threads where a test says so.
class CurlExchangeWithoutMemory : public testing::Test {
protected:
    static constexpr std::size_t large = 256UL * 1024;

    ~CurlExchangeWithoutMemory() override { refusedBytes = SIZE_MAX; }

    std::optional<std::string> failureOf(const std::string& path) {
        const auto reply = post(exchange_, provider_.at("http://127.0.0.1") + path);
        return reply ? reply->transportError : "no reply in time";
    }

    TestProvider provider_;
    CurlExchange exchange_{{.longestReply = 100 * large}};
};

TEST_F(CurlExchangeWithoutMemory, AReplyThatDoesNotFitIsATransportError) {
    refusedBytes = large;
    EXPECT_THAT(failureOf("/large-without-length"), Optional(std::string("Out of memory")));
    EXPECT_EQ(failureOf("/text"), std::nullopt);
}

TEST_F(CurlExchangeWithoutMemory, ARequestThatDoesNotFitIsATransportError) {
    const std::string url = provider_.at("http://127.0.0.1") + "/text";
    const SecretText token("sk-test");
    const std::string body(large, 'b');
    refusedBytes = large;
    const auto reply =
        exchange_.post({url, token, body, std::chrono::seconds(30), std::chrono::seconds(60)}, {});
    ASSERT_TRUE(reply);
    EXPECT_THAT(reply->transportError, Optional(std::string("Out of memory")));
    EXPECT_EQ(failureOf("/text"), std::nullopt);
}

TEST_F(CurlExchangeWithoutMemory, NoThreadIsATransportError) {
    std::optional<std::string> failure;
    if (!runWithoutThreads([&] { failure = failureOf("/text"); })) {
        GTEST_SKIP() << "system calls cannot be refused here";
    }
    EXPECT_THAT(failure, Optional(std::string("Resource temporarily unavailable")));
    EXPECT_EQ(failureOf("/text"), std::nullopt);
}

}  // namespace
}  // namespace tallowcrest
