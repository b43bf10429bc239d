#include "advisor/endpoint.h"

#include <string>

#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

TEST(EndpointTest, CompletesAnAddress) {
    struct Case {
        const char* address;
        const char* url;
        const char* service;
    };
    for (const Case& c : {
             Case{"", "https://api.openai.com/v1/responses", "OpenAI"},
             Case{" \n", "https://api.openai.com/v1/responses", "OpenAI"},
             Case{"https://example.org", "https://example.org/v1/responses", "example.org"},
             Case{" https://example.org/ ", "https://example.org/v1/responses", "example.org"},
             Case{"https://example.org/v1", "https://example.org/v1/responses", "example.org"},
             Case{"https://example.org/v1/", "https://example.org/v1/responses", "example.org"},
             Case{"https://example.org/v1/responses", "https://example.org/v1/responses",
                  "example.org"},
             Case{"https://example.org/v1/responses///", "https://example.org/v1/responses",
                  "example.org"},
             Case{"https://example.org/proxy/Team%20A",
                  "https://example.org/proxy/Team%20A/v1/responses", "example.org"},
             Case{"https://example.org/responses", "https://example.org/responses/v1/responses",
                  "example.org"},
             Case{"HTTPS://Example.ORG:8443/V1", "https://example.org:8443/V1/v1/responses",
                  "example.org:8443"},
             Case{"https://10.0.0.7", "https://10.0.0.7/v1/responses", "10.0.0.7"},
             Case{"https://[2001:DB8::7]:443/v1", "https://[2001:db8::7]:443/v1/responses",
                  "[2001:db8::7]:443"},
             Case{"http://localhost:11434", "http://localhost:11434/v1/responses",
                  "localhost:11434"},
             Case{"http://LOCALHOST/v1", "http://localhost/v1/responses", "localhost"},
             Case{"http://127.0.0.1:8080/v1", "http://127.0.0.1:8080/v1/responses",
                  "127.0.0.1:8080"},
             Case{"http://127.255.3.4", "http://127.255.3.4/v1/responses", "127.255.3.4"},
             Case{"https://example.org/a%C3%a4%3A", "https://example.org/a%C3%a4%3A/v1/responses",
                  "example.org"},
             Case{"https://[::]", "https://[::]/v1/responses", "[::]"},
             Case{"https://[1::]", "https://[1::]/v1/responses", "[1::]"},
             Case{"https://[1:2:3:4:5:6:7:8]", "https://[1:2:3:4:5:6:7:8]/v1/responses",
                  "[1:2:3:4:5:6:7:8]"},
             Case{"https://[1:2:3:4:5:6:7::]", "https://[1:2:3:4:5:6:7::]/v1/responses",
                  "[1:2:3:4:5:6:7::]"},
             Case{"https://[::ffff:10.0.0.7]", "https://[::ffff:10.0.0.7]/v1/responses",
                  "[::ffff:10.0.0.7]"},
             Case{"https://[1:2:3:4:5:6:10.0.0.7]", "https://[1:2:3:4:5:6:10.0.0.7]/v1/responses",
                  "[1:2:3:4:5:6:10.0.0.7]"},
             Case{"http://[::1]:8080", "http://[::1]:8080/v1/responses", "[::1]:8080"},
         }) {
        EXPECT_EQ(endpointFrom(c.address),
                  (Endpoint{c.url, c.service, std::string(c.service) == "OpenAI"}))
            << c.address;
    }
}

TEST(EndpointTest, RefusesWhatMustNotBeUsed) {
    for (const std::string& address : {
             // No scheme, or another one.
             std::string("example.org"),
             std::string("//example.org"),
             std::string("localhost:8080"),
             std::string("ftp://example.org"),
             std::string("file:///etc/passwd"),
             std::string("javascript://example.org"),
             std::string("https:/example.org"),
             std::string("https:example.org"),
             std::string("://example.org"),
             // Not encrypted, to another machine.
             std::string("http://example.org"),
             std::string("http://10.0.0.7"),
             std::string("http://localhost.example.org"),
             std::string("http://127.0.0.1.example.org"),
             std::string("http://127.1"),
             std::string("http://2130706433"),
             std::string("http://0x7f.0.0.1"),
             std::string("http://127.0.0.01"),
             std::string("http://127.0.0.256"),
             std::string("http://127.0.0"),
             std::string("http://127.0.0.1.1"),
             std::string("http://0.0.0.0"),
             std::string("http://[::]"),
             std::string("http://[::ffff:127.0.0.1]"),
             std::string("http://[0:0:0:0:0:0:0:1]"),
             std::string("http://localhost."),
             std::string("http://mylocalhost"),
             // User names.
             std::string("https://user@example.org"),
             std::string("https://user:pw@example.org"),
             std::string("http://localhost@example.org"),
             std::string("http://localhost:80@example.org"),
             std::string("https://@example.org"),
             // Hosts and ports.
             std::string("https://"),
             std::string("https:///v1"),
             std::string("https://:443"),
             std::string("https://.org"),
             std::string("https://-x"),
             std::string("https://ex ample.org"),
             std::string("https://ex\u00E4mple.org"),
             std::string("https://exam%70le.org"),
             std::string("https://example.org:"),
             std::string("https://example.org:0"),
             std::string("https://example.org:65536"),
             std::string("https://example.org:+80"),
             std::string("https://example.org:80x"),
             std::string("https://example.org:80:80"),
             std::string("https://[]"),
             std::string("https://[::1"),
             std::string("https://::1"),
             std::string("https://[::1]x"),
             std::string("https://[fe80::1%25eth0]"),
             std::string("https://[:]"),
             std::string("https://[:::]"),
             std::string("https://[1]"),
             std::string("https://[1:2:3:4:5:6:7]"),
             std::string("https://[1:2:3:4:5:6:7:8:9]"),
             std::string("https://[1:2:3:4:5:6:7:8::]"),
             std::string("https://[1::2::3]"),
             std::string("https://[:1:2:3:4:5:6:7]"),
             std::string("https://[1:2:3:4:5:6:7:]"),
             std::string("https://[12345::]"),
             std::string("https://[g::]"),
             std::string("https://[10.0.0.7]"),
             std::string("https://[10.0.0.7::]"),
             std::string("https://[::10.0.0.256]"),
             std::string("https://[::10.0.0.7:1]"),
             std::string("https://[1:2:3:4:5:6:7:10.0.0.7]"),
             std::string("https://example..org"),
             std::string("https://example.org."),
             std::string("https://."),
             "https://" + std::string(64, 'a') + ".org",
             std::string("https://example.org:080"),
             std::string("https://example.org:00443"),
             // Escapes.
             std::string("https://example.org/%"),
             std::string("https://example.org/%4"),
             std::string("https://example.org/%4g"),
             std::string("https://example.org/%%41"),
             std::string("https://example.org/%2e%2e/v1"),
             std::string("https://example.org/a%2Eb"),
             std::string("https://example.org/a%2fb"),
             std::string("https://example.org/a%2Fb"),
             std::string("https://example.org/a%5cb"),
             std::string("https://example.org/a%00b"),
             std::string("https://example.org/a%0d%0aHost:x"),
             std::string("https://example.org/a%1Fb"),
             std::string("https://example.org/a%7fb"),
             // Paths.
             std::string("https://example.org?x=1"),
             std::string("https://example.org/v1?x=1"),
             std::string("https://example.org/v1#part"),
             std::string("https://example.org#"),
             std::string("https://example.org/a b"),
             std::string("https://example.org/../v1"),
             std::string("https://example.org/v1/.."),
             std::string("https://example.org/./v1"),
             std::string("https://example.org\\@evil.org"),
             std::string("https://example.org/\\x"),
             std::string("https://example.org/\u00E4"),
             std::string("https://example.org/a\r\nHost: x"),
             std::string("https://example.org\n.evil.org"),
             std::string("https://example.org/\0x", 22),
             std::string("https://example.org/{x}"),
             std::string("https://example.org/\xFF"),
             "https://example.org/" + std::string(2048, 'a'),
         }) {
        EXPECT_EQ(endpointFrom(address), std::nullopt) << address.substr(0, 60);
    }
}

TEST(EndpointTest, AHostHasALimit) {
    const std::string label(63, 'a');
    const std::string longest = label + "." + label + "." + label + "." + std::string(61, 'b');
    ASSERT_EQ(longest.size(), 253U);
    EXPECT_TRUE(endpointFrom("https://" + longest + ":65535/v1"));
    EXPECT_FALSE(endpointFrom("https://" + longest + "b"));
}

TEST(EndpointTest, AnAddressOfTheGreatestLengthIsUsed) {
    const std::string longest = "https://example.org/" + std::string(2028, 'a');
    EXPECT_TRUE(endpointFrom(longest));
    EXPECT_FALSE(endpointFrom(longest + "a"));
}

}  // namespace
}  // namespace tallowcrest
