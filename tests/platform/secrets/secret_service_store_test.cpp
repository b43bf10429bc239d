#include "platform/secrets/secret_service_store.h"

#include <cerrno>
#include <chrono>
#include <future>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/platform/secrets/keyring_fixture.h"
#include "tests/platform/support/refused_call.h"
#include "tests/platform/support/test_children.h"

namespace tallowcrest {
namespace {

using std::chrono::milliseconds;

constexpr const char* key = "sk-\xC3\xA4 one";

class SecretServiceStoreTest : public KeyringTest {
protected:
    /// Stores the key in a keyring that is locked afterwards.
    void storeAndLock() {
        startKeyring(true);
        ASSERT_TRUE(store_.add(SecretText(key)));
        stopKeyring();
        startKeyring(false);
    }

    std::future<std::optional<std::string>> readInBackground() {
        return std::async(std::launch::async, [this] { return textOf(store_.read()); });
    }
};

TEST_F(SecretServiceStoreTest, KeepsOneSecret) {
    startKeyring(true);
    EXPECT_FALSE(store_.isStored());
    EXPECT_EQ(textOf(store_.read()), std::nullopt);
    EXPECT_TRUE(store_.remove(true));

    EXPECT_TRUE(store_.add(SecretText(key)));
    EXPECT_TRUE(store_.isStored());
    EXPECT_EQ(textOf(store_.read()), key);

    EXPECT_TRUE(store_.remove(true));
    EXPECT_FALSE(store_.isStored());
    EXPECT_EQ(textOf(store_.read()), std::nullopt);
}

TEST_F(SecretServiceStoreTest, KeepsALongOne) {
    startKeyring(true);
    const std::string longKey(4096, 'k');
    EXPECT_TRUE(store_.add(SecretText(longKey)));
    EXPECT_EQ(textOf(store_.read()), longKey);
}

TEST_F(SecretServiceStoreTest, KeepsItAcrossARestartOfTheService) {
    startKeyring(true);
    ASSERT_TRUE(store_.add(SecretText(key)));
    stopKeyring();
    EXPECT_FALSE(store_.isStored());
    startKeyring(true);
    EXPECT_TRUE(store_.isStored());
    EXPECT_EQ(textOf(store_.read()), key);
}

TEST_F(SecretServiceStoreTest, SeesALockedSecretWithoutAsking) {
    storeAndLock();
    Script prompter("scripted_prompter.py", "ignore");
    EXPECT_TRUE(store_.isStored());
    // The first thing that the prompter is told comes from the read.
    auto read = readInBackground();
    EXPECT_EQ(prompter.line(), "asked");
    stop_.request_stop();
    EXPECT_EQ(read.get(), std::nullopt);
}

TEST_F(SecretServiceStoreTest, AnswersWhileTheOwnerIsAsked) {
    storeAndLock();
    Script prompter("scripted_prompter.py", "ignore");
    auto read = readInBackground();
    EXPECT_EQ(prompter.line(), "asked");
    SecretServiceStore other{{}};
    EXPECT_TRUE(other.isStored());
    EXPECT_EQ(read.wait_for(milliseconds(0)), std::future_status::timeout);
    stop_.request_stop();
    EXPECT_EQ(read.get(), std::nullopt);
}

TEST_F(SecretServiceStoreTest, RemainsLockedWhenTheOwnerSaysNo) {
    storeAndLock();
    Script prompter("scripted_prompter.py", "dismiss");
    EXPECT_EQ(textOf(store_.read()), std::nullopt);
    EXPECT_EQ(prompter.line(), "asked");
    EXPECT_FALSE(store_.remove(true));
    EXPECT_EQ(prompter.line(), "asked");
    EXPECT_TRUE(store_.isStored());
}

TEST_F(SecretServiceStoreTest, RemainsLockedWhenTheOwnerDoesNotAnswer) {
    storeAndLock();
    Script prompter("scripted_prompter.py", "ignore");
    SecretServiceStore hasty({}, {.answer = std::chrono::minutes(10), .unlock = milliseconds(300)});
    EXPECT_EQ(textOf(hasty.read()), std::nullopt);
    EXPECT_EQ(prompter.line(), "asked");
    EXPECT_TRUE(store_.isStored()) << "the keyring lives on";
}

TEST_F(SecretServiceStoreTest, RemainsStoredWhenTheOwnerDoesNotAnswer) {
    storeAndLock();
    Script prompter("scripted_prompter.py", "ignore");
    SecretServiceStore hasty({}, {.answer = std::chrono::minutes(10), .unlock = milliseconds(300)});
    EXPECT_FALSE(hasty.remove(true));
    EXPECT_EQ(prompter.line(), "asked");
    EXPECT_TRUE(store_.isStored());
}

TEST_F(SecretServiceStoreTest, RemainsLockedWhereNobodyCanBeAsked) {
    storeAndLock();
    EXPECT_EQ(textOf(store_.read()), std::nullopt);
    EXPECT_FALSE(store_.add(SecretText("sk-two")));
    EXPECT_FALSE(store_.remove(true));
    EXPECT_TRUE(store_.isStored());
}

TEST_F(SecretServiceStoreTest, ReadsWhatTheOwnerUnlocksAlsoWithoutEncryption) {
    Script service("scripted_secret_service.py", "willing");
    EXPECT_EQ(textOf(store_.read()), "sk-scripted");
}

TEST_F(SecretServiceStoreTest, RemovesWhatTheOwnerUnlocks) {
    Script service("scripted_secret_service.py", "willing");
    EXPECT_TRUE(store_.remove(true));
    EXPECT_EQ(service.line(), "SearchItems");
    EXPECT_EQ(service.line(), "Prompt");
    EXPECT_EQ(service.line(), "SearchItems");
    EXPECT_EQ(service.line(), "Delete");
    EXPECT_FALSE(store_.isStored());
}

TEST_F(SecretServiceStoreTest, AsksOnceToReplaceALockedSecret) {
    Script service("scripted_secret_service.py", "willing");
    EXPECT_FALSE(store_.remove(false));
    EXPECT_TRUE(store_.add(SecretText(key)));
    EXPECT_EQ(service.line(), "SearchItems");
    EXPECT_EQ(service.line(), "SearchItems");
    EXPECT_EQ(service.line(), "CreateItem");
    EXPECT_EQ(service.line(), "Prompt");
}

TEST_F(SecretServiceStoreTest, WithoutAServiceThereIsNothing) {
    EXPECT_FALSE(store_.isStored());
    EXPECT_EQ(textOf(store_.read()), std::nullopt);
    EXPECT_FALSE(store_.add(SecretText(key)));
    EXPECT_FALSE(store_.remove(true));
}

TEST_F(SecretServiceStoreTest, WhereNoThreadCanStartThereIsNothing) {
    startKeyring(true);
    ASSERT_TRUE(store_.add(SecretText(key)));
    const bool hasRun = runWithoutThreads([&] {
        EXPECT_FALSE(store_.isStored());
        EXPECT_EQ(textOf(store_.read()), std::nullopt);
        EXPECT_FALSE(store_.add(SecretText("sk-two")));
        EXPECT_FALSE(store_.remove(true));
    });
    if (!hasRun) {
        GTEST_SKIP() << "system calls cannot be refused here";
    }
    EXPECT_EQ(textOf(store_.read()), key);
}

TEST_F(SecretServiceStoreTest, WithoutABusThereIsNothing) {
    for (const char* address : {"", "unix:path=/nonexistent/bus", "nonsense"}) {
        const ScopedVariable variable("DBUS_SESSION_BUS_ADDRESS", address);
        EXPECT_FALSE(store_.isStored()) << address;
        EXPECT_EQ(textOf(store_.read()), std::nullopt) << address;
        EXPECT_FALSE(store_.add(SecretText(key))) << address;
        EXPECT_FALSE(store_.remove(true)) << address;
    }
}

TEST_F(SecretServiceStoreTest, AServiceThatDoesNotAnswerIsGivenUp) {
    Script service("scripted_secret_service.py", "silent");
    SecretServiceStore impatient({}, {.answer = milliseconds(500)});
    EXPECT_FALSE(impatient.isStored());
    EXPECT_EQ(textOf(impatient.read()), std::nullopt);
}

TEST_F(SecretServiceStoreTest, ABusThatDoesNotAnswerIsGivenUp) {
    bus_.daemon().signal(SIGSTOP);
    SecretServiceStore impatient({}, {.answer = milliseconds(500)});
    EXPECT_FALSE(impatient.isStored());
    EXPECT_FALSE(impatient.add(SecretText(key)));
    bus_.daemon().signal(SIGCONT);
}

TEST_F(SecretServiceStoreTest, AServiceThatDiesIsNoSecret) {
    {
        Script service("scripted_secret_service.py", "dies");
        EXPECT_FALSE(store_.isStored());
    }
    Script service("scripted_secret_service.py", "dies-in-prompt");
    EXPECT_EQ(textOf(store_.read()), std::nullopt);
}

TEST_F(SecretServiceStoreTest, AServiceThatDiesHasStoredNothing) {
    {
        Script service("scripted_secret_service.py", "dies");
        EXPECT_FALSE(store_.add(SecretText(key)));
        EXPECT_EQ(service.line(), "CreateItem");
    }
    Script service("scripted_secret_service.py", "dies-in-prompt");
    EXPECT_FALSE(store_.add(SecretText(key)));
    EXPECT_EQ(service.line(), "CreateItem");
    EXPECT_EQ(service.line(), "Prompt");
}

TEST_F(SecretServiceStoreTest, AServiceThatDiesHasRemovedNothing) {
    {
        Script service("scripted_secret_service.py", "dies");
        EXPECT_FALSE(store_.remove(true));
        EXPECT_EQ(service.line(), "SearchItems");
    }
    {
        Script service("scripted_secret_service.py", "dies-in-prompt");
        EXPECT_FALSE(store_.remove(true));
        EXPECT_EQ(service.line(), "SearchItems");
        EXPECT_EQ(service.line(), "Prompt");
    }
    Script service("scripted_secret_service.py", "dies-in-delete");
    EXPECT_FALSE(store_.remove(false));
    EXPECT_EQ(service.line(), "SearchItems");
    EXPECT_EQ(service.line(), "Delete");
}

TEST_F(SecretServiceStoreTest, ABusThatDiesIsNoSecret) {
    Script service("scripted_secret_service.py", "silent");
    auto read = readInBackground();
    EXPECT_EQ(service.line(), "SearchItems");
    bus_.daemon().end();
    EXPECT_EQ(read.get(), std::nullopt);
}

TEST_F(SecretServiceStoreTest, AStopEndsAPromptThatTheServiceDoesNotTakeBack) {
    Script service("scripted_secret_service.py", "silent-in-prompt");
    auto read = readInBackground();
    EXPECT_EQ(service.line(), "SearchItems");
    EXPECT_EQ(service.line(), "Prompt");
    stop_.request_stop();
    EXPECT_EQ(read.get(), std::nullopt);
}

TEST_F(SecretServiceStoreTest, NothingRemainsOpenAfterwards) {
    startKeyring(true);
    ASSERT_TRUE(store_.add(SecretText(key)));
    const int before = openDescriptorCount();
    for (int i = 0; i < 10; ++i) {
        EXPECT_EQ(textOf(store_.read()), key);
    }
    // The library closes a connection in a thread of its own.
    EXPECT_TRUE(eventually([&] { return openDescriptorCount() <= before; }));
}

}  // namespace
}  // namespace tallowcrest
