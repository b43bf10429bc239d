#include <sys/resource.h>

#include <functional>
#include <map>
#include <memory>
#include <stop_token>
#include <string>

#include <gtest/gtest.h>

#include "advisor/advisor_ports.h"
#include "platform/desktop_services.h"
#include "platform/host.h"
#include "tests/platform/macos/recorded_frameworks.h"

namespace tallowcrest {
namespace {

using Attributes = std::map<std::string, std::string>;

/// Nothing that is made of the frameworks may be left.
class RecordedFrameworksTest : public testing::Test {
protected:
    RecordedFrameworksTest() { recordedFrameworks() = {}; }
    ~RecordedFrameworksTest() override { EXPECT_EQ(recordedFrameworks().objects, 0); }
};

class KeychainTest : public RecordedFrameworksTest {
protected:
    const std::shared_ptr<SecretStore> store = desktop::makeSecretStore(std::stop_token());
    const Attributes identity{{"kSecClass", "kSecClassGenericPassword"},
                              {"kSecAttrService", "local.quern.tallowcrest"},
                              {"kSecAttrAccount", "OPENAI_API_KEY"}};

    /// What the Keychain was asked for, beside what identifies the item.
    Attributes askedBesides() const {
        Attributes asked = recordedFrameworks().asked;
        for (const auto& [name, value] : identity) {
            EXPECT_EQ(asked[name], value);
            asked.erase(name);
        }
        return asked;
    }
};

TEST_F(KeychainTest, KeepsOneSecretOnThisMachineOnly) {
    EXPECT_FALSE(store->isStored());
    EXPECT_FALSE(store->read());
    ASSERT_TRUE(store->add(SecretText("sk-one")));
    EXPECT_EQ(
        askedBesides(),
        (Attributes{{"kSecValueData", "sk-one"},
                    {"kSecAttrAccessible", "kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly"}}));
    EXPECT_TRUE(store->isStored());
    EXPECT_EQ(askedBesides(), Attributes()) << "its data would be asked for at the owner";
    const auto secret = store->read();
    ASSERT_TRUE(secret);
    EXPECT_EQ(secret->view(), "sk-one");
    EXPECT_EQ(askedBesides(), (Attributes{{"kSecReturnData", "kCFBooleanTrue"},
                                          {"kSecMatchLimit", "kSecMatchLimitOne"}}));
    EXPECT_FALSE(store->add(SecretText("sk-two"))) << "the first one remains";
    EXPECT_TRUE(store->remove(true));
    EXPECT_EQ(askedBesides(), Attributes());
    EXPECT_FALSE(store->isStored());
    EXPECT_TRUE(store->remove(true)) << "there was none";
}

TEST_F(KeychainTest, WhatHasASecretInMemoryLeavesNoDump) {
    const std::function<void()> uses[] = {[this] { store->forbidDumps(); },
                                          [this] { store->read(); },
                                          [this] { store->add(SecretText("sk-one")); }};
    for (const auto& use : uses) {
        rlimit limit{};
        ASSERT_EQ(::getrlimit(RLIMIT_CORE, &limit), 0);
        if (limit.rlim_max <= 1) {
            GTEST_SKIP() << "there are no dumps anyway";
        }
        limit.rlim_cur = limit.rlim_max;
        ASSERT_EQ(::setrlimit(RLIMIT_CORE, &limit), 0);
        use();
        ASSERT_EQ(::getrlimit(RLIMIT_CORE, &limit), 0);
        EXPECT_LE(limit.rlim_cur, 1U);
    }
    store->remove(true);
}

TEST_F(KeychainTest, ARefusalIsNoSecretAndNoSuccess) {
    ASSERT_TRUE(store->add(SecretText("sk-one")));
    recordedFrameworks().refusal = -25308;
    EXPECT_FALSE(store->isStored());
    EXPECT_FALSE(store->read());
    EXPECT_FALSE(store->add(SecretText("sk-two")));
    EXPECT_FALSE(store->remove(true));
    recordedFrameworks().refusal = 0;
    EXPECT_EQ(store->read()->view(), "sk-one");
}

using InformationDictionary = RecordedFrameworksTest;

TEST_F(InformationDictionary, HasTheFeedOfUpdates) {
    const std::string built = "https://built.example/feed";
    auto& information = recordedFrameworks().information;
    EXPECT_EQ(host::updateFeed(built), "");
    information["TallowcrestUpdateFeedURL"] = "https://updates.example/feed.json?a=1&b=ä";
    EXPECT_EQ(host::updateFeed(built), "https://updates.example/feed.json?a=1&b=ä");
    information["TallowcrestUpdateFeedURL"] = "443";
    EXPECT_EQ(host::updateFeed(built), "") << "a number is no text";
    information["TallowcrestUpdateFeedURL"] = "https://" + std::string(4096, 'a');
    EXPECT_EQ(host::updateFeed(built), "") << "no address is that long";
    information["TallowcrestUpdateFeedURL"] = "https://updates.example/feed";
    recordedFrameworks().hasBundle = false;
    EXPECT_EQ(host::updateFeed(built), "");
}

}  // namespace
}  // namespace tallowcrest
