#include "advisor/stored_key.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/jobs/jobs.h"
#include "tests/support/advisor_machine.h"

namespace tallowcrest {
namespace {

using ::testing::Contains;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;
using ::testing::StartsWith;

/// A key that changes between its reading and the request that it was read for.
class ChangedKey : public ::testing::TestWithParam<bool>, protected AdvisorMachine {
protected:
    ChangedKey() : AdvisorMachine({}, "sk-old") {
        settings.set(&Settings::aiRequirePreview, false);
        takeSample();
        fakes.http->willSay("fine");
    }

    Provider& provider() { return advisor->provider; }

    /// Removes or replaces the key.
    void change() {
        if (GetParam()) {
            provider().setOpenAIKeyInput(SecretText("sk-new"));
            provider().saveOpenAIKey();
        } else {
            provider().removeOpenAIKey();
        }
    }

    /// A question and an analysis, whose keys are being read.
    void beginBoth() {
        advisor->chat.askQuickQuestion("target");
        provider().requestAIAnalysis();
    }

    void expectNothingSent() {
        finishWork();
        EXPECT_THAT(fakes.http->sent, IsEmpty());
        EXPECT_FALSE(provider().state().aiBusy);
        EXPECT_FALSE(advisor->chat.state().aiChatBusy);
        EXPECT_THAT(advisor->chat.aiChatMessages().back().text,
                    StartsWith("No operation target is selected."));
        int local = 0;
        for (const std::string& event : events()) {
            local += event == "Action: Completed on-device analysis." ? 1 : 0;
            local += event == "Action: Answered with on-device guidance." ? 1 : 0;
        }
        EXPECT_EQ(local, 2);
        // The next one has the key of then.
        advisor->chat.askQuickQuestion("Why?");
        finishWork();
        if (GetParam()) {
            ASSERT_THAT(fakes.http->sent, SizeIs(1));
            EXPECT_EQ(fakes.http->sent.front().token, "sk-new");
        } else {
            EXPECT_THAT(fakes.http->sent, IsEmpty());
        }
    }
};

TEST_P(ChangedKey, IsNotSentWhenItWasReadBefore) {
    beginBoth();
    workQueue.run();
    workQueue.run();
    change();  // the results of the two readings still wait
    mainQueue.drain();
    EXPECT_THAT(events(), Not(Contains("Action: Asking Tallowcrest Chat...")));
    expectNothingSent();
}

TEST_P(ChangedKey, IsNotSentByARequestThatHasNotBegun) {
    beginBoth();
    runOneJob();
    runOneJob();
    ASSERT_EQ(workQueue.laneOf(0), Lane::advisor);
    ASSERT_EQ(workQueue.laneOf(1), Lane::advisor);
    change();
    expectNothingSent();
}

TEST_P(ChangedKey, IsNotSentWhenTheStoreStillGaveIt) {
    change();
    beginBoth();
    ASSERT_EQ(workQueue.pendingCount(), 3U);
    int readings = 0;
    fakes.secrets->duringRead = [&] {
        if (++readings == 1) {
            workQueue.run(1);  // the other reading, which is within the first one
        } else if (readings == 2) {
            workQueue.run(0);  // the change
        }
    };
    workQueue.run(1);
    mainQueue.drain();
    EXPECT_EQ(readings, 2);
    expectNothingSent();
}

TEST_P(ChangedKey, AnAnswerThatIsUnderWayStillComes) {
    beginBoth();
    runOneJob();
    runOneJob();
    workQueue.run();
    workQueue.run();
    change();
    finishWork();
    ASSERT_THAT(fakes.http->sent, SizeIs(2));
    EXPECT_EQ(fakes.http->sent[0].token, "sk-old");
    EXPECT_EQ(advisor->chat.aiChatMessages().back().text, "fine");
    EXPECT_EQ(provider().state().openAIKeySaved, GetParam());
    EXPECT_FALSE(provider().state().aiBusy);
}

INSTANTIATE_TEST_SUITE_P(, ChangedKey, ::testing::Bool(), [](const auto& info) {
    return std::string(info.param ? "Replaced" : "Removed");
});

class StoredKeyTest : public ::testing::Test, protected AdvisorMachine {};

TEST_F(StoredKeyTest, AStoreThatEndsMeanwhileHasNoKey) {
    fakes.secrets->secret = "sk-key";
    begin();
    settings.set(&Settings::aiRequirePreview, false);
    takeSample();
    fakes.http->willSay("fine");
    fakes.secrets->duringRead = [this] { fakes.secrets->isGone = true; };
    advisor->provider.requestAIAnalysis();
    advisor->chat.askQuickQuestion("target");
    finishWork();
    EXPECT_THAT(fakes.http->sent, IsEmpty());
    EXPECT_THAT(insight(), StartsWith("On-device analysis: "));
    EXPECT_FALSE(advisor->provider.state().aiBusy);
    EXPECT_FALSE(advisor->chat.state().aiChatBusy);
    fakes.secrets->isGone = false;
    fakes.secrets->duringRead = [] {};
    advisor->provider.requestAIAnalysis();
    finishWork();
    EXPECT_EQ(insight(), "fine");
}

TEST_F(StoredKeyTest, OnlyARemovalThatIsWantedUnlocksTheStoreForIt) {
    advisor->provider.setOpenAIKeyInput(SecretText("sk-key"));
    advisor->provider.saveOpenAIKey();
    finishWork();
    EXPECT_EQ(fakes.secrets->otherRemovals, 1);
    EXPECT_EQ(fakes.secrets->unlockingRemovals, 0) << "the storing of the new one asks";
    advisor->provider.removeOpenAIKey();
    finishWork();
    EXPECT_EQ(fakes.secrets->otherRemovals, 1);
    EXPECT_EQ(fakes.secrets->unlockingRemovals, 1);
}

TEST_F(StoredKeyTest, NothingIsAskedWithoutAnExchange) {
    fakes.secrets = nullptr;
    JobScope jobs(services.jobs);
    const auto canAsk = [&](const StoredKey& key, const std::optional<Endpoint>& endpoint) {
        bool isThere = false;
        key.readAccess(
            jobs, [] {}, [&] { return endpoint; },
            [&isThere](std::optional<ProviderAccess> access) {
                isThere = access.has_value();
                return Outcome::done();
            });
        return isThere;
    };
    const Endpoint own{"http://localhost/v1/responses", "localhost", false};
    EXPECT_FALSE(canAsk(StoredKey(services, {}), own));
    const StoredKey complete(services, fakes.ports());
    EXPECT_TRUE(canAsk(complete, own));
    EXPECT_FALSE(canAsk(complete, Endpoint{"https://x/v1/responses", "OpenAI", true}));
    EXPECT_FALSE(canAsk(complete, std::nullopt));
}

}  // namespace
}  // namespace tallowcrest
