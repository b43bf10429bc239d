#include "remote/local_api.h"

#include <gtest/gtest.h>

namespace tallowcrest::local_api {
namespace {

TEST(LocalAPI, TheBodyFollowsTheHeadOfASuccess) {
    EXPECT_EQ(bodyOf("HTTP/1.0 200 OK\r\nContent-Type: application/json\r\n\r\n{}\n"), "{}\n");
    EXPECT_EQ(bodyOf("HTTP/1.1 200 OK\r\n\r\n{}\r\n\r\n"), "{}\r\n\r\n");
    EXPECT_EQ(bodyOf("HTTP/1.0 200 \r\n\r\n"), "");
}

TEST(LocalAPI, AnyOtherAnswerHasNone) {
    for (const std::string_view answer :
         {"", "{}", "\r\n\r\n{}", "HTTP/1.0 404 Not Found\r\n\r\n{}",
          "HTTP/1.0 403 Forbidden\r\n\r\n{}", "HTTP/1.0 2000 OK\r\n\r\n{}", "HTTP/1.0 200",
          "HTTP/1.0 200 OK\r\nContent-Type: app", "HTTP/1.0 200 OK\n\n{}",
          " HTTP/1.0 200 OK\r\n\r\n{}", "HTTP/2 200 OK\r\n\r\n{}"}) {
        EXPECT_EQ(bodyOf(answer), std::nullopt) << answer;
    }
}

TEST(LocalAPI, TheRequestIsAWholeOneOfTheVersionWithoutChunks) {
    EXPECT_TRUE(statusRequest.starts_with("GET /localapi/v0/status HTTP/1.0\r\n"));
    EXPECT_TRUE(statusRequest.ends_with("\r\nHost: local-tailscaled.sock\r\n\r\n"));
}

}  // namespace
}  // namespace tallowcrest::local_api
