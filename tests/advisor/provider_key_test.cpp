#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/observable.h"
#include "tests/support/advisor_machine.h"

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr const char* notAKey = "That does not look like an OpenAI API key.";

class ProviderKey : public ::testing::Test, protected AdvisorMachine {
protected:
    Provider& provider() { return advisor->provider; }
    const ProviderState& state() { return provider().state(); }

    Outcome save(const std::string& text) {
        provider().setOpenAIKeyInput(SecretText(text));
        Outcome outcome = provider().saveOpenAIKey();
        finishWork();
        return outcome;
    }
};

TEST_F(ProviderKey, TheStartFindsAStoredKey) {
    EXPECT_FALSE(state().openAIKeySaved);
    EXPECT_EQ(insight(),
              "Local recommendations are active. Connect paid AI for deeper explanations and "
              "follow-up questions.");
    fakes.secrets->secret = "sk-stored";
    begin();
    EXPECT_TRUE(state().openAIKeySaved);
    EXPECT_EQ(insight(), "Enhanced AI recommendations are ready.");
    fakes.secrets->remainsLocked = true;
    begin();
    EXPECT_TRUE(state().openAIKeySaved) << "a locked key is a stored one";
    EXPECT_EQ(fakes.secrets->reads, 0) << "which could ask for a password";
}

TEST_F(ProviderKey, WithoutASecretStoreThereIsNoKey) {
    fakes.secrets = nullptr;
    begin();
    EXPECT_FALSE(state().openAIKeySaved);
    EXPECT_FALSE(state().isKeyBusy);
    EXPECT_EQ(save("sk-abc"), Outcome::failed("Could not save the key in Keychain."));
    EXPECT_FALSE(state().openAIKeySaved);
    EXPECT_EQ(provider().openAIKeyInput().view(), "sk-abc");
    EXPECT_EQ(provider().removeOpenAIKey(), Outcome::done("Removed OpenAI API key."));
    EXPECT_TRUE(provider().openAIKeyInput().isEmpty());
    EXPECT_THAT(events(), ElementsAre("Action: Removed OpenAI API key."));
}

TEST_F(ProviderKey, IsLookedForInTheBackground) {
    fakes.secrets->secret = "sk-stored";
    beginSearch();
    ASSERT_EQ(workQueue.pendingCount(), 1U);
    EXPECT_EQ(workQueue.laneOf(0), Lane::secrets);
    EXPECT_TRUE(state().isKeyBusy);
    EXPECT_EQ(provider().saveOpenAIKey(), Outcome::ignored());
    EXPECT_EQ(provider().removeOpenAIKey(), Outcome::ignored());
    finishWork();
    EXPECT_TRUE(state().openAIKeySaved);
    EXPECT_FALSE(state().isKeyBusy);
}

TEST_F(ProviderKey, IsSavedTrimmedAndTheInputCleared) {
    EXPECT_EQ(save(" sk-abc \n"), Outcome::asked());
    EXPECT_EQ(fakes.secrets->secret, "sk-abc");
    EXPECT_TRUE(state().openAIKeySaved);
    EXPECT_FALSE(state().isKeyBusy);
    EXPECT_TRUE(provider().openAIKeyInput().isEmpty());
    EXPECT_EQ(insight(), "OpenAI key saved in Keychain. AI recommendations are ready.");
    EXPECT_EQ(log.lastAction(), "Saved OpenAI API key in Keychain.");
    EXPECT_THAT(events(), ElementsAre("Action: Saved OpenAI API key in Keychain."));
    EXPECT_EQ(save("sk-other"), Outcome::asked());
    EXPECT_EQ(fakes.secrets->secret, "sk-other");
}

TEST_F(ProviderKey, WhatIsNoKeyIsRefusedAndStays) {
    save("sk-good");
    log.clearActivityLog();
    for (const std::string& bad : {std::string(), std::string("abc"), std::string("SK-abc"),
                                   std::string("sk-a\nb"), "sk-" + std::string(100000, 'a')}) {
        EXPECT_EQ(save(bad), Outcome::refused(notAKey)) << bad.substr(0, 10);
        EXPECT_EQ(insight(), notAKey);
        EXPECT_EQ(provider().openAIKeyInput().view(), bad);
        EXPECT_EQ(fakes.secrets->secret, "sk-good");
        EXPECT_TRUE(state().openAIKeySaved);
    }
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(ProviderKey, ARefusalOfTheStoreLosesTheOldKeyAndKeepsTheInput) {
    save("sk-old");
    log.clearActivityLog();
    fakes.secrets->refusesToAdd = true;
    EXPECT_EQ(save("sk-new"), Outcome::asked());
    EXPECT_EQ(insight(), "Could not save the key in Keychain.");
    EXPECT_EQ(fakes.secrets->secret, std::nullopt);
    EXPECT_TRUE(state().openAIKeySaved) << "as it was";
    EXPECT_EQ(provider().openAIKeyInput().view(), "sk-new");
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(ProviderKey, IsRemoved) {
    save("sk-abc");
    provider().setOpenAIKeyInput(SecretText("typed"));
    log.clearActivityLog();
    EXPECT_EQ(provider().removeOpenAIKey(), Outcome::asked());
    EXPECT_TRUE(state().isKeyBusy);
    finishWork();
    EXPECT_EQ(fakes.secrets->secret, std::nullopt);
    EXPECT_FALSE(state().openAIKeySaved);
    EXPECT_TRUE(provider().openAIKeyInput().isEmpty());
    EXPECT_EQ(insight(), "OpenAI key removed from Keychain.");
    EXPECT_THAT(events(), ElementsAre("Action: Removed OpenAI API key."));
}

TEST_F(ProviderKey, AFailedRemovalIsNotCalledDone) {
    save("sk-abc");
    log.clearActivityLog();
    fakes.secrets->refusesToRemove = true;
    provider().removeOpenAIKey();
    finishWork();
    EXPECT_TRUE(state().openAIKeySaved);
    EXPECT_EQ(insight(), "Could not remove the key from Keychain.");
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(ProviderKey, IsNeverStoredInTheSettingsOrTold) {
    takeSample();
    store.onWrite = [this](std::string_view key) {
        const auto value = store.values.read(key);
        const auto* text = std::get_if<std::string>(&*value);
        const auto* json = std::get_if<JSONData>(&*value);
        EXPECT_TRUE(text == nullptr || text->find("sk-secret") == std::string::npos);
        EXPECT_TRUE(json == nullptr || json->text.find("sk-secret") == std::string::npos);
    };
    save("sk-secret");
    settings.set(&Settings::aiRequirePreview, false);
    fakes.http->willSay(R"({"summary":"fine","actions":[{"type":"copy_report"}]})");
    provider().requestAIAnalysis();
    finishWork();
    ASSERT_FALSE(fakes.http->sent.empty());
    EXPECT_EQ(fakes.http->sent.front().token, "sk-secret");
    EXPECT_THAT(fakes.http->sent.front().body, Not(HasSubstr("sk-secret")));
    EXPECT_THAT(*reports.diagnosticsReport(false), Not(HasSubstr("sk-secret")));
}

TEST_F(ProviderKey, WhoAskedIsToldTheEnd) {
    std::vector<Outcome> ends;
    const auto then = [&ends](const Outcome& end) { ends.push_back(end); };
    EXPECT_EQ(provider().saveOpenAIKey(then).kind, Outcome::Kind::refused);
    EXPECT_THAT(ends, IsEmpty()) << "the answer itself is the end";
    provider().setOpenAIKeyInput(SecretText("sk-abc"));
    EXPECT_EQ(provider().saveOpenAIKey(then), Outcome::asked());
    EXPECT_EQ(provider().removeOpenAIKey(then), Outcome::ignored());
    EXPECT_THAT(ends, IsEmpty());
    finishWork();
    EXPECT_THAT(ends, ElementsAre(Outcome::done("Saved OpenAI API key in Keychain.")));
    fakes.secrets->refusesToAdd = true;
    provider().setOpenAIKeyInput(SecretText("sk-other"));
    provider().saveOpenAIKey(then);
    finishWork();
    EXPECT_EQ(ends.back(), Outcome::failed("Could not save the key in Keychain."));
    provider().removeOpenAIKey(then);
    finishWork();
    EXPECT_EQ(ends.back(), Outcome::done("Removed OpenAI API key."));
    fakes.secrets->refusesToRemove = true;
    provider().removeOpenAIKey(then);
    finishWork();
    EXPECT_EQ(ends.back(), Outcome::failed("Could not remove the key from Keychain."));
    EXPECT_EQ(ends.size(), 4U);
}

TEST_F(ProviderKey, ATypedKeyIsInNoDump) {
    provider().setOpenAIKeyInput({});
    EXPECT_FALSE(fakes.secrets->forbidsDumps);
    provider().setOpenAIKeyInput(SecretText("s"));
    EXPECT_TRUE(fakes.secrets->forbidsDumps);
}

TEST_F(ProviderKey, ChangesAreReported) {
    mainQueue.drain();
    int changes = 0;
    const Subscription subscription = provider().observable().subscribe([&] { ++changes; });
    provider().saveOpenAIKey();
    mainQueue.drain();
    EXPECT_EQ(changes, 1);
    provider().setOpenAIKeyInput(SecretText("sk-x"));
    mainQueue.drain();
    EXPECT_EQ(changes, 1) << "a character that is typed changes nothing else";
    provider().saveOpenAIKey();
    finishWork();
    EXPECT_TRUE(provider().openAIKeyInput().isEmpty());
    EXPECT_EQ(changes, 3) << "it began, and the key is saved";
}

TEST_F(ProviderKey, TheEndpointIsCheckedBeforeItIsStored) {
    EXPECT_EQ(provider().serviceName(), "OpenAI");
    EXPECT_EQ(provider().setAIEndpoint(" http://localhost:8080 \n"), Outcome::done());
    EXPECT_EQ(settings.values().aiEndpoint, "http://localhost:8080");
    EXPECT_EQ(provider().serviceName(), "localhost:8080");
    const Outcome refused = provider().setAIEndpoint("http://example.org");
    EXPECT_EQ(refused.kind, Outcome::Kind::refused);
    EXPECT_EQ(log.lastAction(), refused.message);
    EXPECT_EQ(settings.values().aiEndpoint, "http://localhost:8080");
    EXPECT_EQ(provider().setAIEndpoint(""), Outcome::done());
    EXPECT_EQ(settings.values().aiEndpoint, "");
}

TEST_F(ProviderKey, TheSwitchesAreStoredWithoutAMessage) {
    provider().setAIRedactProcessDetails(false);
    provider().setAIRequirePreview(false);
    EXPECT_FALSE(settings.values().aiRedactProcessDetails);
    EXPECT_FALSE(settings.values().aiRequirePreview);
    EXPECT_THAT(store.written,
                ElementsAre("Tallowcrest.aiRedactProcessDetails", "Tallowcrest.aiRequirePreview"));
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(ProviderKey, AStoreThatRefusesBothKeepsTheOldKey) {
    save("sk-old");
    fakes.secrets->refusesToRemove = true;
    EXPECT_EQ(save("sk-new"), Outcome::asked());
    EXPECT_EQ(insight(), "Could not save the key in Keychain.");
    EXPECT_EQ(fakes.secrets->secret, "sk-old");
    EXPECT_TRUE(state().openAIKeySaved);
    EXPECT_EQ(provider().openAIKeyInput().view(), "sk-new");
}

TEST_F(ProviderKey, WhatIsTypedMeanwhileIsKept) {
    provider().setOpenAIKeyInput(SecretText("sk-first"));
    provider().saveOpenAIKey();
    provider().setOpenAIKeyInput(SecretText("sk-second"));
    finishWork();
    EXPECT_EQ(fakes.secrets->secret, "sk-first");
    EXPECT_EQ(provider().openAIKeyInput().view(), "sk-second");
    provider().saveOpenAIKey();
    provider().setOpenAIKeyInput(SecretText("sk-second"));  // no change
    finishWork();
    EXPECT_EQ(fakes.secrets->secret, "sk-second");
    EXPECT_TRUE(provider().openAIKeyInput().isEmpty());
    provider().removeOpenAIKey();
    provider().setOpenAIKeyInput(SecretText("sk-third"));
    finishWork();
    EXPECT_EQ(provider().openAIKeyInput().view(), "sk-third");
}

}  // namespace
}  // namespace tallowcrest
