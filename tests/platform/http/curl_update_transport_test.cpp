#include "platform/http/curl_update_transport.h"

#include <sys/resource.h>

#include <future>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/base64.h"
#include "integration/release.h"
#include "tests/platform/http/update_server.h"

namespace tallowcrest {
namespace {

using std::chrono::seconds;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class CurlUpdateTransportTest : public ::testing::Test {
protected:
    static constexpr std::uint64_t manyBytes = 1UL << 30U;

    UpdateReply fetch(const std::string& url, std::uint64_t longest = manyBytes,
                      const std::stop_token& stop = {}) {
        body_ = {};
        return transport_.fetch({url, longest, seconds(20)}, body_.taker(), stop);
    }

    TestAuthority authority_;
    UpdateServer server_{authority_};
    CurlUpdateTransport transport_{{.certificateAuthorities = authority_.path()}};
    Body body_;
};

TEST_F(CurlUpdateTransportTest, GetsAFileAndItsAnnouncedSize) {
    server_.files.file("feed.json", R"({"version": "1"})", 0600);
    const UpdateReply reply = fetch(server_.at("/file/feed.json"));
    EXPECT_EQ(reply.status, 200);
    EXPECT_EQ(reply.error, "");
    EXPECT_EQ(body_.text, R"({"version": "1"})");
    EXPECT_EQ(body_.total, 16U);
    EXPECT_EQ(server_.line(), "GET /file/feed.json - - ") << "without a token and a body";
    EXPECT_EQ(fetch(server_.at("/unannounced/feed.json")).error, "");
    EXPECT_EQ(body_.text, R"({"version": "1"})");
    EXPECT_EQ(body_.total, std::nullopt);
}

TEST_F(CurlUpdateTransportTest, AnotherStatusHasNoBody) {
    for (const char* status : {"201", "206", "304", "400", "404", "500"}) {
        const UpdateReply reply = fetch(server_.at("/status?" + std::string(status)));
        EXPECT_EQ(std::to_string(reply.status), status) << reply.error;
        EXPECT_EQ(body_.text, "");
    }
}

TEST_F(CurlUpdateTransportTest, ABodyThatIsCutShortIsAnError) {
    server_.files.file("image", std::string(1000, 'x'), 0600);
    EXPECT_THAT(fetch(server_.at("/truncated/image")).error, testing::Not(testing::IsEmpty()));
    EXPECT_THAT(fetch(server_.at("/broken")).error, testing::Not(testing::IsEmpty()));
    EXPECT_THAT(fetch(server_.at("/closed")).error, testing::Not(testing::IsEmpty()));
}

TEST_F(CurlUpdateTransportTest, ABodyThatIsTooLongIsRefusedBeforeItFillsTheMemory) {
    EXPECT_THAT(fetch(server_.at("/large"), 1000).error, StartsWith("Maximum file size exceeded"));
    EXPECT_EQ(body_.text, "") << "it was announced";
    EXPECT_THAT(fetch(server_.at("/large-without-length"), 100'000).error,
                StartsWith("Maximum file size exceeded"));
    EXPECT_LE(body_.text.size(), 100'000U);
    server_.files.file("exact", std::string(1000, 'x'), 0600);
    EXPECT_EQ(fetch(server_.at("/file/exact"), 1000).error, "");
    EXPECT_THAT(fetch(server_.at("/file/exact"), 999).error,
                StartsWith("Maximum file size exceeded"));
}

TEST_F(CurlUpdateTransportTest, RedirectionsStayOnTheHostAndOverTls) {
    server_.files.file("image", "here", 0600);
    EXPECT_EQ(fetch(server_.at("/redirect?/file/image")).error, "");
    EXPECT_EQ(body_.text, "here") << "the text of the redirection is not part of it";
    EXPECT_EQ(fetch(server_.at("/redirect?" + server_.at("/file/image", "LOCALHOST"))).error, "");
    EXPECT_EQ(body_.text, "here");
    for (const std::string& elsewhere :
         {server_.at("/file/image", "127.0.0.1"), std::string("http://localhost/file/image"),
          std::string("https://localhost@127.0.0.1/"), std::string("//127.0.0.1/"),
          std::string("file:///etc/hostname")}) {
        EXPECT_EQ(fetch(server_.at("/redirect?" + elsewhere)).error,
                  "The server redirects to another place.")
            << elsewhere;
        EXPECT_EQ(body_.text, "");
    }
}

TEST_F(CurlUpdateTransportTest, RedirectionsInACircleEnd) {
    server_.files.file("image", "here", 0600);
    std::string path = "/file/image";
    for (int count = 0; count < 5; ++count) {
        path = "/redirect?" + path;
    }
    EXPECT_EQ(fetch(server_.at(path)).error, "");
    EXPECT_EQ(body_.text, "here");
    EXPECT_EQ(fetch(server_.at("/redirect?" + path)).error, "The server redirects too often.");
}

TEST_F(CurlUpdateTransportTest, OnlyTrustedServersOverTlsAreAsked) {
    server_.files.file("image", "here", 0600);
    CurlUpdateTransport asShipped{{}};
    EXPECT_THAT(asShipped.fetch({server_.at("/file/image"), manyBytes}, body_.taker(), {}).error,
                HasSubstr("unable to get local issuer certificate"));
    TestProvider plain;
    EXPECT_THAT(fetch(plain.at("http://127.0.0.1") + "/text").error,
                HasSubstr("not supported or disabled"));
    EXPECT_EQ(body_.text, "");
}

TEST_F(CurlUpdateTransportTest, EndsWithItsTimeLimitAndWithAStop) {
    EXPECT_THAT(
        transport_.fetch({server_.at("/silent"), manyBytes, seconds(1)}, body_.taker(), {}).error,
        HasSubstr("timed out"));
    EXPECT_THAT(server_.line(), StartsWith("GET /silent"));
    EXPECT_EQ(server_.line(), "gone");
    std::stop_source stop;
    auto reply = std::async(std::launch::async, [&] {
        return transport_.fetch({server_.at("/drip"), manyBytes}, body_.taker(), stop.get_token());
    });
    EXPECT_THAT(server_.line(), StartsWith("GET /drip"));
    stop.request_stop();
    EXPECT_NE(reply.get().error, "");
    EXPECT_EQ(server_.line(), "gone");
}

TEST_F(CurlUpdateTransportTest, TheTimeLimitIsForAllRedirectionsTogether) {
    // Takes two seconds, but no request takes half of one.
    const std::string chain = server_.at("/slow-redirect/5");
    EXPECT_THAT(transport_.fetch({chain, manyBytes, seconds(1)}, body_.taker(), {}).error,
                HasSubstr("timed out"));
    EXPECT_EQ(transport_.fetch({chain, manyBytes, seconds(60)}, body_.taker(), {}).status, 200);
}

TEST_F(CurlUpdateTransportTest, EndsWhenNothingMoreIsTaken) {
    int pieces = 0;
    const UpdateReply reply =
        transport_.fetch({server_.at("/large"), manyBytes},
                         [&pieces](std::string_view, std::optional<std::uint64_t>) {
                             ++pieces;
                             return false;
                         },
                         {});
    EXPECT_NE(reply.error, "");
    EXPECT_EQ(pieces, 1);
}

TEST_F(CurlUpdateTransportTest, DigestsAreThoseOfAnotherImplementation) {
    for (const std::string& text : {std::string(), std::string("abc"), std::string(100'000, 'x')}) {
        server_.files.file("file", text, 0600);
        const auto digest = transport_.startSha256();
        ASSERT_NE(digest, nullptr);
        const std::string_view bytes = text;
        digest->add(bytes.substr(0, text.size() / 3));
        digest->add(bytes.substr(text.size() / 3));
        EXPECT_EQ(digest->finish(), server_.digestOf("file"));
    }
}

/// Another implementation's key and its signature of a release.
class UpdateSignature : public ::testing::Test {
protected:
    /// The Base64 text of what a command in the folder of the key prints.
    std::string base64Of(const std::string& command) const {
        std::string text =
            shellOutput("cd " + folder_.path().string() + " && " + command + " | base64 -w 0");
        return text;
    }

    std::string signatureOf(const Release& release) const {
        folder_.file("message", signedText(release), 0600);
        return base64Of("openssl pkeyutl -sign -rawin -inkey key.pem -in message");
    }

    UpdateSignature() {
        shellOutput("openssl genpkey -algorithm ed25519 -out " + folder_.path("key.pem"));
        publicKey_ = base64Of("openssl pkey -in key.pem -pubout -outform DER | tail -c 32");
    }

    TemporaryFolder folder_;
    std::string publicKey_;
    CurlUpdateTransport transport_{{}};
    Release release_{"1.2", 42, "https://u.example/a.deb", std::string(64, 'A')};
};

TEST_F(UpdateSignature, OfAnotherImplementationIsAccepted) {
    release_.signature = signatureOf(release_);
    EXPECT_TRUE(isSignedAsAsked(release_, publicKey_, transport_));
}

TEST_F(UpdateSignature, OfAnythingElseIsRefused) {
    const std::string signature = signatureOf(release_);
    const auto isAccepted = [&](auto change) {
        Release other = release_;
        other.signature = signature;
        change(other);
        return isSignedAsAsked(other, publicKey_, transport_);
    };
    EXPECT_TRUE(isAccepted([](Release&) {}));
    EXPECT_FALSE(isAccepted([](Release& other) { other.version = "1.3"; }));
    EXPECT_FALSE(isAccepted([](Release& other) { other.build = 43; }));
    EXPECT_FALSE(isAccepted([](Release& other) { other.downloadURL += 'x'; }));
    EXPECT_FALSE(isAccepted([](Release& other) { other.sha256.front() = 'B'; }));
    EXPECT_FALSE(isAccepted([](Release& other) { other.signature->front() ^= 1; }));
    EXPECT_FALSE(isAccepted([](Release& other) { other.signature.reset(); }));
    publicKey_.front() = publicKey_.front() == 'A' ? 'B' : 'A';
    EXPECT_FALSE(isAccepted([](Release&) {})) << "another key";
}

}  // namespace
}  // namespace tallowcrest
