#include "integration/release.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "integration/update_ports.h"
#include "tests/support/fake_update_ports.h"

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const std::string digest(64, 'a');

/// A feed with these members, as they stand.
std::string feedOf(const std::string& version, const std::string& build, const std::string& url,
                   const std::string& sha256, const std::string& more = {}) {
    return R"({"version":)" + version + R"(,"build":)" + build + R"(,"downloadURL":)" + url +
           R"(,"sha256":)" + sha256 + more + "}";
}

std::string feedWith(const std::string& more) {
    return feedOf(R"("1.2")", "7", R"("https://u.example/a.deb")", '"' + digest + '"', more);
}

Release release() {
    return {"1.2", 7, "https://u.example/a.deb", digest};
}

TEST(DecodeRelease, ReadsTheRequiredMembers) {
    EXPECT_EQ(decodeRelease(feedWith("")), release());
    EXPECT_EQ(decodeRelease(" " + feedWith(R"(, "other": [{"build": 9}, null])") + "\n"),
              release());
    EXPECT_EQ(
        decodeRelease(feedOf("\"1.2\"", "7.0", "\"https://u.example/a.deb\"", '"' + digest + '"')),
        release());
}

TEST(DecodeRelease, ReadsTheOptionalMembers) {
    Release with = release();
    with.releaseNotesURL = "https://elsewhere.example/notes?7#top";
    with.signature = "c2ln";
    EXPECT_EQ(
        decodeRelease(feedWith(
            R"(,"releaseNotesURL":"https://elsewhere.example/notes?7#top","signature":"c2ln")")),
        with);
    EXPECT_EQ(decodeRelease(feedWith(R"(,"releaseNotesURL":null,"signature":null)")), release());
}

TEST(DecodeRelease, NotesThatAreNoAddressOfTheWebCountAsNone) {
    for (const char* url :
         {"file:///etc/passwd", "javascript:alert(1)", "notes", "", "mailto:a@b.example",
          "https:///notes", "https://a b/", "smb://host/share", "https://user@host/"}) {
        EXPECT_EQ(decodeRelease(feedWith(R"(,"releaseNotesURL":")" + std::string(url) + '"')),
                  release())
            << url;
    }
}

TEST(DecodeRelease, BadFeedsAreNone) {
    const std::string url = "\"https://u.example/a.deb\"";
    const std::string sum = '"' + digest + '"';
    const std::vector<std::string> table{
        "",
        "null",
        "[]",
        "\"text\"",
        "{}",
        "<html></html>",
        feedWith("").substr(1),
        feedWith("").substr(0, 40),
        feedWith("") + "x",
        feedWith("") + feedWith(""),
        feedOf("12", "7", url, sum),
        feedOf("null", "7", url, sum),
        feedOf("\"1.2\"", "\"7\"", url, sum),
        feedOf("\"1.2\"", "7.5", url, sum),
        feedOf("\"1.2\"", "9223372036854775808", url, sum),
        feedOf("\"1.2\"", "1e300", url, sum),
        feedOf("\"1.2\"", "true", url, sum),
        feedOf("\"1.2\"", "7", "null", sum),
        feedOf("\"1.2\"", "7", "7", sum),
        feedOf("\"1.2\"", "7", url, "[]"),
        feedOf("\"\xFF\"", "7", url, sum),
        feedWith(R"(,"releaseNotesURL":7)"),
        feedWith(R"(,"signature":{})"),
        R"({"build":7,"downloadURL":"https://u.example/a.deb","sha256":")" + digest + "\"}",
        R"({"version":"1.2","downloadURL":"https://u.example/a.deb","sha256":")" + digest + "\"}",
        R"({"version":"1.2","build":7,"sha256":")" + digest + "\"}",
        R"({"version":"1.2","build":7,"downloadURL":"https://u.example/a.deb"})",
    };
    for (const std::string& feed : table) {
        EXPECT_EQ(decodeRelease(feed), std::nullopt) << feed;
    }
}

TEST(DecodeRelease, DeepNestingTakesNoStack) {
    constexpr std::size_t depth = 100'000;
    const std::string nested = std::string(depth, '[') + std::string(depth, ']');
    EXPECT_EQ(decodeRelease(feedWith(",\"other\":" + nested)), release());
    EXPECT_EQ(decodeRelease(nested), std::nullopt);
    EXPECT_EQ(decodeRelease(feedOf(nested, "7", "\"\"", "\"\"")), std::nullopt);
}

TEST(WebAddress, HasTheHostThatEveryReaderSees) {
    const std::vector<std::pair<std::string, std::string>> table{
        {"https://u.example", "u.example"},
        {"https://u.example/", "u.example"},
        {"https://u.example:8443/a?b#c", "u.example"},
        {"https://U.example/a", "U.example"},
        {"https://u.example?https://other.example/", "u.example"},
        {"https://u.example#@other.example", "u.example"},
        {"https://u.example/@other.example", "u.example"},
        {"https://u.example.other.example/", "u.example.other.example"},
    };
    for (const auto& [text, host] : table) {
        const auto address = webAddress(text);
        ASSERT_TRUE(address) << text;
        EXPECT_EQ(address->scheme, "https");
        EXPECT_EQ(address->host, host);
    }
    for (const char* text : {"",
                             "u.example",
                             "//u.example",
                             "://u.example",
                             "https:u.example",
                             "https:/u.example",
                             "https://",
                             "https:///a",
                             "https://u.example@other.example/",
                             "https://u.example:80@other.example/",
                             "https://u.example\\@other.example/",
                             "https://u.example\n/",
                             "https:// u.example/",
                             "https://ü.example/",
                             "https://[::1]/",
                             "https://u.example:/",
                             "https://u.example:x/",
                             "https://u%2eexample/",
                             "1https://a/",
                             " https://u.example/",
                             "ht tp://a/"}) {
        EXPECT_EQ(webAddress(text), std::nullopt) << text;
    }
}

TEST(AcceptableRelease, ComesFromTheUpdateHostAlone) {
    Release offered = release();
    EXPECT_TRUE(isAcceptable(offered, "u.example"));
    for (const char* url :
         {"http://u.example/a.deb", "HTTPS://u.example/a.deb", "ftp://u.example/a.deb",
          "https://U.example/a.deb", "https://v.example/a.deb", "https://x.u.example/a.deb",
          "https://u.example.other/a.deb", "https://u.example@v.example/a.deb", "", "a.deb"}) {
        offered.downloadURL = url;
        EXPECT_FALSE(isAcceptable(offered, "u.example")) << url;
    }
    offered.downloadURL = "https:///a.deb";
    EXPECT_FALSE(isAcceptable(offered, "")) << "a build without an update host";
}

TEST(AcceptableRelease, HasADigestOf64HexadecimalDigits) {
    Release offered = release();
    for (const std::string& sha256 :
         {std::string(64, 'F'), std::string(64, '0'), std::string("0aF") + std::string(61, '9')}) {
        offered.sha256 = sha256;
        EXPECT_TRUE(isAcceptable(offered, "u.example")) << sha256;
    }
    for (const std::string& sha256 :
         {std::string(63, 'a'), std::string(65, 'a'), std::string(63, 'a') + 'g',
          std::string(63, 'a') + '\n', std::string()}) {
        offered.sha256 = sha256;
        EXPECT_FALSE(isAcceptable(offered, "u.example")) << sha256;
    }
}

TEST(ImageName, StaysInItsFolderWhateverTheVersionSays) {
    Release offered = release();
    EXPECT_EQ(imageName(offered, ".deb"), "Tallowcrest-Pro-1.2-build7.deb");
    const std::vector<std::pair<std::string, std::string>> table{
        {"../../etc/cron.d/x", "Tallowcrest-Pro-..-..-etc-cron.d-x-build7.dmg"},
        {"1\n2\r\t", "Tallowcrest-Pro-1-2---build7.dmg"},
        {std::string("1\0002", 3), "Tallowcrest-Pro-1-2-build7.dmg"},
        {"\\a:b*?", "Tallowcrest-Pro--a-b---build7.dmg"},
        {"é", "Tallowcrest-Pro----build7.dmg"},
        {"", "Tallowcrest-Pro--build7.dmg"},
        {std::string(5000, '9'), "Tallowcrest-Pro-" + std::string(64, '9') + "-build7.dmg"},
    };
    for (const auto& [version, name] : table) {
        offered.version = version;
        EXPECT_EQ(imageName(offered, ".dmg"), name);
    }
    offered.build = -3;
    offered.version = "1";
    EXPECT_EQ(imageName(offered, ".deb"), "Tallowcrest-Pro-1-build-3.deb");
}

TEST(BuildNumber, IsADecimalIntegerOrNothing) {
    EXPECT_EQ(buildNumber("42"), 42);
    EXPECT_EQ(buildNumber("+42"), 42);
    EXPECT_EQ(buildNumber("-42"), -42);
    for (const char* text : {"", "x", "4 2", "42x", "4.2", "0x2A", "99999999999999999999"}) {
        EXPECT_EQ(buildNumber(text), 0) << text;
    }
}

const std::string key = "AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA=";
const std::string signature = std::string(86, 'A') + "==";

TEST(SignedRelease, NeedsNoSignatureWithoutAKey) {
    FakeUpdateTransport transport;
    EXPECT_TRUE(isSignedAsAsked(release(), "", transport));
    EXPECT_THAT(transport.signatures, IsEmpty());
}

TEST(SignedRelease, NeedsAValidSignatureWithAKey) {
    FakeUpdateTransport transport;
    Release offered = release();
    offered.signature = signature;
    EXPECT_FALSE(isSignedAsAsked(offered, key, transport));
    transport.acceptsSignatures = true;
    EXPECT_TRUE(isSignedAsAsked(offered, key, transport));
    EXPECT_THAT(transport.signatures.back(),
                ElementsAre(std::string(32, '\0'), std::string(64, '\0'), signedText(offered)));
}

TEST(SignedRelease, KeysAndSignaturesOfAnotherFormAreRefused) {
    FakeUpdateTransport transport;
    transport.acceptsSignatures = true;
    Release offered = release();
    EXPECT_FALSE(isSignedAsAsked(offered, key, transport)) << "no signature";
    for (const std::string& bad : {std::string("!"), std::string("AAAA"), signature + "AAAA",
                                   signature.substr(0, 85), signature + "\n"}) {
        offered.signature = bad;
        EXPECT_FALSE(isSignedAsAsked(offered, key, transport)) << bad;
    }
    offered.signature = signature;
    for (const std::string& bad : {std::string("x"), std::string("AAAA"), key + key}) {
        EXPECT_FALSE(isSignedAsAsked(offered, bad, transport)) << bad;
    }
    EXPECT_THAT(transport.signatures, IsEmpty());
}

TEST(SignedRelease, NoTwoReleasesHaveTheSameText) {
    Release one = release();
    EXPECT_EQ(signedText(one),
              "tallowcrest-update-1\n3:1.2\n1:7\n23:https://u.example/a.deb\n64:" + digest);
    Release other = one;
    other.version = "1.2\n1:7";
    EXPECT_NE(signedText(one), signedText(other));
    Release upper = one;
    upper.sha256 = std::string(64, 'A');
    EXPECT_EQ(signedText(one), signedText(upper)) << "either case is the same digest";
}

}  // namespace
}  // namespace tallowcrest
