#include "platform/base/local_socket_exchange.h"

#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <stop_token>
#include <string>

#include <gtest/gtest.h>

#include "tests/platform/support/test_children.h"
#include "tests/platform/support/test_daemon.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {
namespace {

using namespace std::chrono_literals;

class LocalSocketExchange : public ::testing::Test {
protected:
    void SetUp() override { descriptors = openDescriptorCount(); }
    void TearDown() override { EXPECT_EQ(openDescriptorCount(), descriptors); }

    std::optional<std::string> exchange(const std::string& request,
                                        const ExchangeLimits& limits = {.deadline = 30s}) const {
        return exchangeOverLocalSocket(path, request, stopping.get_token(), limits);
    }

    TemporaryFolder folder;
    std::string path = folder.path("daemon.sock");
    std::stop_source stopping;
    int descriptors = 0;
};

TEST_F(LocalSocketExchange, SendsTheRequestAndReturnsTheWholeAnswer) {
    std::string request;
    const TestDaemon daemon(path, [&](int connection) {
        request = received(connection, 12);
        send(connection, "HTTP/1.0 200 OK\r\n\r\n{}");
    });
    EXPECT_EQ(exchange("GET / \r\n\r\n\r\n"), "HTTP/1.0 200 OK\r\n\r\n{}");
    EXPECT_EQ(request, "GET / \r\n\r\n\r\n");
}

TEST_F(LocalSocketExchange, AnAnswerInPiecesIsPutTogether) {
    const std::string big(5'000'000, 'x');
    const TestDaemon daemon(path, [&](int connection) {
        send(connection, "HTTP/1.0 2");
        received(connection, 1);
        send(connection, "00 OK\r\n");
        send(connection, big);
    });
    EXPECT_EQ(exchange("?"), "HTTP/1.0 200 OK\r\n" + big);
}

TEST_F(LocalSocketExchange, ARequestLargerThanTheBuffersIsSentWhole) {
    const std::string big(5'000'000, 'x');
    const TestDaemon daemon(path, [&](int connection) {
        send(connection, received(connection, big.size()) == big ? "whole" : "cut");
    });
    EXPECT_EQ(exchange(big), "whole");
}

TEST_F(LocalSocketExchange, HalfAHeadAndNothingAreAnswersToo) {
    {
        const TestDaemon daemon(path, [](int connection) {
            received(connection, 1);
            send(connection, "HTTP/1.0 200 OK\r\nCont");
        });
        EXPECT_EQ(exchange("?"), "HTTP/1.0 200 OK\r\nCont");
    }
    ::unlink(path.c_str());
    const TestDaemon daemon(path, [](int connection) { received(connection, 1); });
    EXPECT_EQ(exchange("?"), "");
}

TEST_F(LocalSocketExchange, ADaemonThatHangsUpOnTheRequestGivesNoAnswer) {
    const TestDaemon daemon(path, [](int /*connection*/) {});
    EXPECT_EQ(exchange(std::string(5'000'000, 'x')), std::nullopt);
}

TEST_F(LocalSocketExchange, TheDeadlineEndsAHang) {
    const TestDaemon daemon(path, [](int connection) {
        send(connection, "HTTP/1.0 200 OK\r\n");
        awaitTheEnd(connection);
    });
    EXPECT_EQ(exchange("?", {.deadline = 100ms}), std::nullopt);
}

TEST_F(LocalSocketExchange, TheDeadlineEndsAnAnswerThatNeverEnds) {
    const TestDaemon daemon(path, [](int connection) {
        while (::send(connection, "x", 1, MSG_NOSIGNAL) == 1) {
        }
    });
    EXPECT_EQ(exchange("?", {.deadline = 100ms, .longestAnswer = std::string::npos}), std::nullopt);
}

TEST_F(LocalSocketExchange, AnAnswerThatIsTooLongIsNone) {
    for (const std::size_t size : {1'000'000U, 1'000'001U}) {
        ::unlink(path.c_str());
        const TestDaemon daemon(path, [size](int connection) {
            received(connection, 1);
            send(connection, std::string(size, 'x'));
        });
        const auto answer = exchange("?", {.deadline = 30s, .longestAnswer = 1'000'000});
        EXPECT_EQ(answer.has_value(), size == 1'000'000U);
    }
}

TEST_F(LocalSocketExchange, ARequestedStopEndsAHang) {
    const TestDaemon daemon(path, [this](int connection) {
        received(connection, 1);
        stopping.request_stop();
        awaitTheEnd(connection);
    });
    EXPECT_EQ(exchange("?", {.deadline = 1h}), std::nullopt);
}

TEST_F(LocalSocketExchange, WithoutAListenerThereIsNoAnswer) {
    EXPECT_EQ(exchange("?"), std::nullopt);
    {
        const TestDaemon daemon(path, [](int connection) { received(connection, 1); });
        EXPECT_EQ(exchange("?"), "");
    }
    EXPECT_EQ(exchange("?"), std::nullopt) << "the socket is left over";
    path = folder.file("plain", "", 0600);
    EXPECT_EQ(exchange("?"), std::nullopt);
    path = folder.path(std::string(200, 'x'));
    EXPECT_EQ(exchange("?"), std::nullopt) << "too long for an address";
}

}  // namespace
}  // namespace tallowcrest
