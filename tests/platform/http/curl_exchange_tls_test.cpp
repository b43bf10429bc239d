#include <chrono>
#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/base/environment.h"
#include "platform/http/curl_exchange.h"
#include "tests/platform/http/test_provider.h"
#include "tests/platform/trash/own_mounts.h"
#include "tests/support/scoped_variable.h"

namespace tallowcrest {
namespace {

using testing::HasSubstr;
using testing::Optional;
using testing::StartsWith;

constexpr const char* allNames = "DNS:localhost,DNS:provider.example,IP:127.0.0.1,IP:::1";

class CurlExchangeTls : public testing::Test {
protected:
    /// Why an exchange with the server failed; absent when it did not.
    static std::optional<std::string> failureOf(CurlExchange& exchange, const std::string& url) {
        const auto reply = post(exchange, url + "/text");
        return reply ? reply->transportError : "no reply in time";
    }

    /// Inside `inOwnMounts`: lets the system have these authorities.
    static void mountAuthorities(const TestAuthority& ofFolder, const TestAuthority& ofFile) {
        const std::string folder = ofFolder.folder();
        std::filesystem::copy_file(ofFile.path(), folder + "/ca-certificates.crt",
                                   std::filesystem::copy_options::overwrite_existing);
        mountBind(folder, "/etc/ssl/certs");
    }

    TestAuthority authority_;
    CurlExchange exchange_{
        {.certificateAuthorities = authority_.path(), .proxies = proxyVariables}};
};

TEST_F(CurlExchangeTls, ATrustedCertificateIsAccepted) {
    TestProvider provider(authority_.certificate(allNames));
    EXPECT_EQ(failureOf(exchange_, provider.at("https://localhost")), std::nullopt);
    EXPECT_EQ(provider.line(), "POST /text Bearer sk-test application/json {}");
}

TEST_F(CurlExchangeTls, AnAuthorityIsFoundInAFolderByTheHashOfItsName) {
    TestProvider provider(authority_.certificate(allNames));
    CurlExchange exchange({.certificateAuthorities = authority_.folder()});
    EXPECT_EQ(failureOf(exchange, provider.at("https://localhost")), std::nullopt);
    const TestAuthority other;
    CurlExchange others({.certificateAuthorities = other.folder()});
    EXPECT_THAT(failureOf(others, provider.at("https://localhost")),
                Optional(HasSubstr("unable to get local issuer certificate")));
}

TEST_F(CurlExchangeTls, AFolderWithoutHashesOfNamesMakesNothingTrusted) {
    TestProvider provider(authority_.certificate(allNames));
    const TemporaryFolder folder;
    CurlExchange exchange({.certificateAuthorities = folder.path().string()});
    EXPECT_NE(failureOf(exchange, provider.at("https://localhost")), std::nullopt);
}

TEST_F(CurlExchangeTls, TheAuthoritiesOfTheSystemAreThoseOfItsFolderAndOfItsFile) {
    const auto certificate = authority_.certificate(allNames);
    const TestProvider provider(certificate);
    std::ofstream(certificate.first, std::ios::app) << std::ifstream(authority_.path()).rdbuf();
    const TestProvider withAuthority(certificate);
    inOwnMounts([&] {
        const TestAuthority other;
        const auto failureWith = [](const TestAuthority& ofFolder, const TestAuthority& ofFile,
                                    const TestProvider& asked) {
            mountAuthorities(ofFolder, ofFile);
            CurlExchange asShipped({});
            return failureOf(asShipped, asked.at("https://localhost"));
        };
        EXPECT_EQ(failureWith(authority_, other, provider), std::nullopt);
        EXPECT_EQ(failureWith(other, authority_, provider), std::nullopt);
        EXPECT_EQ(failureWith(other, authority_, withAuthority), std::nullopt);
        EXPECT_THAT(failureWith(other, other, provider),
                    Optional(HasSubstr("unable to get local issuer certificate")));
        EXPECT_THAT(failureWith(other, other, withAuthority),
                    Optional(HasSubstr("self-signed certificate in certificate chain")));
    });
}

TEST_F(CurlExchangeTls, ACertificateWhoseAuthorityWasFoundIsNotTriedAgain) {
    inOwnMounts([&] {
        mountAuthorities(authority_, authority_);
        CurlExchange asShipped({});
        const auto expectOneTry = [&](const std::pair<std::string, std::string>& certificate,
                                      const std::string& failure) {
            TestProvider provider(certificate, std::chrono::milliseconds(0));
            EXPECT_THAT(failureOf(asShipped, provider.at("https://localhost")),
                        Optional(HasSubstr(failure)));
            provider.end();
            int connections = 0;
            for (std::string line = provider.line(); !line.empty(); line = provider.line()) {
                connections += line == "connected" ? 1 : 0;
            }
            EXPECT_EQ(connections, 1);
        };
        expectOneTry(authority_.certificate(allNames, -1), "certificate has expired");
        expectOneTry(authority_.certificate("DNS:elsewhere.example"),
                     "no alternative certificate subject name matches");
    });
}

TEST_F(CurlExchangeTls, TheSecondTryEndsWithTheTimeLimitOfTheFirst) {
    inOwnMounts([&] {
        const TestAuthority other;
        mountAuthorities(other, authority_);
        // Each try takes 1.5 seconds, so that both take longer than the limit, and each one less.
        TestProvider slow(authority_.certificate(allNames), std::chrono::milliseconds(1500));
        CurlExchange asShipped({});
        const auto reply = post(asShipped, slow.at("https://localhost") + "/text",
                                std::chrono::seconds(30), std::chrono::seconds(2));
        ASSERT_TRUE(reply);
        EXPECT_THAT(reply->transportError, Optional(HasSubstr("timed out")));
    });
}

TEST_F(CurlExchangeTls, OverTheNewerKindOfAddressToo) {
    TestProvider provider(authority_.certificate(allNames), "::1");
    EXPECT_EQ(failureOf(exchange_, provider.at("https://[::1]")), std::nullopt);
}

TEST_F(CurlExchangeTls, ACertificateThatHasExpiredIsRefused) {
    TestProvider provider(authority_.certificate(allNames, -1));
    EXPECT_THAT(failureOf(exchange_, provider.at("https://localhost")),
                Optional(HasSubstr("certificate has expired")));
}

TEST_F(CurlExchangeTls, ACertificateForAnotherNameIsRefused) {
    TestProvider provider(authority_.certificate("DNS:elsewhere.example"));
    EXPECT_THAT(failureOf(exchange_, provider.at("https://localhost")),
                Optional(HasSubstr("no alternative certificate subject name matches")));
}

TEST_F(CurlExchangeTls, AnAuthorityThatTheSystemDoesNotKnowIsRefused) {
    TestProvider provider(authority_.certificate(allNames));
    CurlExchange asShipped({});
    EXPECT_THAT(failureOf(asShipped, provider.at("https://localhost")),
                Optional(HasSubstr("unable to get local issuer certificate")));
}

TEST_F(CurlExchangeTls, NeitherTheEnvironmentNorAFileOfTheOwnerMakesItTrusted) {
    TestProvider provider(authority_.certificate(allNames));
    const TemporaryFolder home;
    home.file(".curlrc", "insecure\n", 0600);
    const ScopedVariable homeVariable("HOME", home.path().string());
    const ScopedVariable curlHome("CURL_HOME", home.path().string());
    const ScopedVariable bundle("CURL_CA_BUNDLE", authority_.path());
    const ScopedVariable file("SSL_CERT_FILE", authority_.path());
    CurlExchange asShipped({});
    EXPECT_THAT(failureOf(asShipped, provider.at("https://localhost")),
                Optional(HasSubstr("unable to get local issuer certificate")));
}

/// Not of the fixture above, which prepares the library before a test can set a variable.
TEST(CurlExchangeTlsSecrets, AreNotWrittenToTheFileThatTheEnvironmentNames) {
    const TestAuthority authority;
    TestProvider provider(authority.certificate(allNames));
    const TemporaryFolder folder;
    const ScopedVariable file("SSLKEYLOGFILE", folder.path("secrets"));
    forbidSecretsFile();
    CurlExchange exchange({.certificateAuthorities = authority.path()});
    const auto reply = post(exchange, provider.at("https://localhost") + "/text");
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->transportError, std::nullopt);
    EXPECT_FALSE(std::filesystem::exists(folder.path("secrets")));
}

TEST_F(CurlExchangeTls, AnAuthorityFileThatCannotBeReadTrustsNobody) {
    TestProvider provider(authority_.certificate(allNames));
    CurlExchange exchange({.certificateAuthorities = authority_.path() + ".missing"});
    EXPECT_NE(failureOf(exchange, provider.at("https://localhost")), std::nullopt);
}

TEST_F(CurlExchangeTls, AServerWithoutEncryptionIsRefused) {
    TestProvider provider;
    EXPECT_NE(failureOf(exchange_, provider.at("https://localhost")), std::nullopt);
}

/// A proxy that records what it is asked.
class CurlExchangeProxy : public CurlExchangeTls {
protected:
    /// What a client asked, line by line.
    std::vector<std::string> asked() {
        std::vector<std::string> lines;
        for (std::string line = proxy_.line(); line != "end" && !line.empty();
             line = proxy_.line()) {
            lines.push_back(line);
        }
        return lines;
    }

    TestProvider provider_{authority_.certificate(allNames)};
    StartedProgram proxy_{
        {"python3", "-B", TALLOWCREST_SOURCE_DIR "/tests/platform/http/tunnel_proxy.py"}};
    std::string address_ = "http://127.0.0.1:" + proxy_.line();
};

TEST_F(CurlExchangeProxy, OfTheEnvironmentIsUsedWithoutSeeingTheToken) {
    for (const char* name : {"https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY"}) {
        const ScopedVariable variable(name, address_);
        EXPECT_EQ(failureOf(exchange_, provider_.at("https://provider.example")), std::nullopt);
        const std::vector<std::string> lines = asked();
        EXPECT_THAT(
            lines, testing::Contains("CONNECT provider.example:" + provider_.port() + " HTTP/1.1"));
        EXPECT_THAT(lines, testing::Not(testing::Contains(HasSubstr("sk-test"))));
        EXPECT_EQ(provider_.line(), "POST /text Bearer sk-test application/json {}");
    }
}

TEST_F(CurlExchangeProxy, IsNotUsedForThisMachine) {
    const ScopedVariable variable("all_proxy", "http://127.0.0.1:1");
    EXPECT_EQ(failureOf(exchange_, provider_.at("https://localhost")), std::nullopt);
    EXPECT_EQ(failureOf(exchange_, provider_.at("https://127.0.0.1")), std::nullopt);
}

TEST_F(CurlExchangeProxy, IsNotUsedForAnExceptionOfTheEnvironment) {
    const ScopedVariable variable("https_proxy", address_);
    const ScopedVariable exceptions("no_proxy", "one.invalid,provider.invalid");
    EXPECT_THAT(failureOf(exchange_, provider_.at("https://provider.invalid")),
                Optional(HasSubstr("Could not resolve host")));
}

TEST_F(CurlExchangeProxy, DoesNotMakeACertificateTrusted) {
    const ScopedVariable variable("https_proxy", address_);
    CurlExchange asShipped({.proxies = proxyVariables});
    EXPECT_THAT(failureOf(asShipped, provider_.at("https://provider.example")),
                Optional(HasSubstr("unable to get local issuer certificate")));
}

}  // namespace
}  // namespace tallowcrest
