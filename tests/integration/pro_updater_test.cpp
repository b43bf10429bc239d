#include "integration/pro_updater.h"

#include <chrono>
#include <cmath>
#include <optional>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/observable.h"
#include "tests/support/fake_update_ports.h"
#include "tests/support/test_services.h"

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class ProUpdaterTest : public ::testing::Test {
protected:
    ProUpdater& updater() {
        if (!updater_) {
            updater_.emplace(with.services, updates.ports());
        }
        return *updater_;
    }

    /// The alert after an asked-for check.
    UpdateAlert checked() {
        updater().checkForUpdates();
        with.finishWork();
        return alert();
    }
    UpdateAlert alert() {
        return updater().alert() != nullptr ? *updater().alert() : UpdateAlert{"none", "", {}};
    }
    void startDownload() {
        checked();
        updater().answer(0);
    }
    double lastCheck() const { return with.settings.values().lastUpdateCheck; }
    double now() const { return with.clock.now().secondsSinceReference; }

    TestServices with;
    FakeUpdates updates;
    std::optional<ProUpdater> updater_;
};

TEST_F(ProUpdaterTest, OffersANewerBuild) {
    EXPECT_EQ(checked(),
              (UpdateAlert{"Tallowcrest Pro 1.2 is available",
                           "Build 42 is newer than build 41. Tallowcrest will verify the notarized "
                           "installer checksum before opening it.",
                           {"Download and Verify", "Later"},
                           1}));
    const UpdateRequest& request = updates.transport->requests.front();
    EXPECT_EQ(request.url, FakeUpdates::feedURL);
    EXPECT_EQ(request.timeout, std::chrono::seconds(15));
    EXPECT_EQ(lastCheck(), now());
}

TEST_F(ProUpdaterTest, OffersTheReleaseNotesWhenThereAreSome) {
    updates.feed(42, R"("releaseNotesURL": "https://notes.example/42",)");
    EXPECT_THAT(checked().buttons, ElementsAre("Download and Verify", "Later", "Release Notes"));
    updater().answer(2);
    with.finishWork();
    EXPECT_THAT(updates.opened, ElementsAre("https://notes.example/42"));
    EXPECT_EQ(updater().alert(), nullptr);
    EXPECT_FALSE(updater().state().download);
    EXPECT_FALSE(updater().state().isChecking);
}

TEST_F(ProUpdaterTest, LaterDoesNothing) {
    checked();
    updater().answer(1);
    with.finishWork();
    EXPECT_EQ(updater().alert(), nullptr);
    EXPECT_FALSE(updater().state().isChecking);
    EXPECT_THAT(updates.transport->requests, SizeIs(1));
}

TEST_F(ProUpdaterTest, AnEqualOrOlderBuildIsNotOffered) {
    for (const int build : {41, 40, 0, -1}) {
        updates.feed(build);
        EXPECT_EQ(checked(), (UpdateAlert{"Tallowcrest Pro is up to date",
                                          "You’re running version 1.1 (build 41).",
                                          {"OK"}}));
        EXPECT_EQ(lastCheck(), now());
        EXPECT_TRUE(updater().state().isChecking) << "the alert is not answered yet";
        updater().answer(0);
        EXPECT_FALSE(updater().state().isChecking);
    }
}

TEST_F(ProUpdaterTest, ABuildWithoutANumberIsOfferedEveryRelease) {
    updates.build.build = "x";
    updates.build.version = "";
    updates.feed(1);
    EXPECT_THAT(checked().text, HasSubstr("Build 1 is newer than build 0. "));
    updater().answer(1);
    updates.feed(0);
    EXPECT_EQ(checked().text, "You’re running version Unknown (build 0).");
}

TEST_F(ProUpdaterTest, EachFailureOfACheckIsShownWithItsReason) {
    const std::string words =
        "Tallowcrest Pro could not verify the update feed. Try again later.\n\n";
    auto& answer = updates.transport->answers[FakeUpdates::feedURL];
    const FakeUpdateTransport::Answer good = answer;
    const auto expectFailure = [&](const std::string& reason) {
        EXPECT_EQ(checked(), (UpdateAlert{"Couldn’t check for updates", words + reason, {"OK"}}));
        updater().answer(0);
        EXPECT_TRUE(lastCheck() == Settings::distantPast) << reason;
    };
    answer.reply = {.error = "Could not resolve host: feeds.example"};
    expectFailure("Could not resolve host: feeds.example");
    answer.reply = {.status = 404};
    expectFailure("The server answered with the status 404.");
    answer.reply = {.status = 0};
    expectFailure("The server did not answer as expected.");
    answer = {.body = "{}"};
    expectFailure(update_errors::unreadableFeed);
    answer = good;
    answer.body.replace(answer.body.find("updates.example"), 7, "another");
    expectFailure(update_errors::cannotParseResponse);
    answer = good;
    answer.body.replace(answer.body.find("AAAA"), 1, "");
    expectFailure(update_errors::cannotParseResponse);
    EXPECT_THAT(with.log.activityLog(), IsEmpty());
}

TEST_F(ProUpdaterTest, AFeedMustBeAnAddressOfHttps) {
    for (const char* feed : {"", "feeds.example", "http://feeds.example/", "HTTPS://feeds.example/",
                             "https:///", "file:///etc/hostname"}) {
        updates.build.feed = feed;
        updater_.reset();
        EXPECT_THAT(checked().text, HasSubstr(update_errors::badURL)) << feed;
    }
    EXPECT_THAT(updates.transport->requests, IsEmpty());
}

TEST_F(ProUpdaterTest, WithAKeyOnlySignedFeedsAreAccepted) {
    updates.build.publicKey = "AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA=";
    EXPECT_THAT(checked().text, HasSubstr(update_errors::cannotParseResponse));
    updater().answer(0);
    updates.feed(42, R"("signature": ")" + std::string(86, 'A') + R"(==",)");
    EXPECT_THAT(checked().text, HasSubstr(update_errors::cannotParseResponse)) << "a wrong one";
    updater().answer(0);
    updates.transport->acceptsSignatures = true;
    EXPECT_EQ(checked().title, "Tallowcrest Pro 1.2 is available");
}

TEST_F(ProUpdaterTest, AQuietCheckSaysNothingWithoutAnUpdate) {
    updates.feed(41);
    updater().checkOnLaunchIfDue();
    EXPECT_TRUE(updater().state().isChecking);
    with.finishWork();
    EXPECT_EQ(updater().alert(), nullptr);
    EXPECT_FALSE(updater().state().isChecking);
    EXPECT_EQ(lastCheck(), now());
    with.clock.advance(std::chrono::days(1));
    updates.transport->answers.clear();
    updater().checkOnLaunchIfDue();
    with.finishWork();
    EXPECT_EQ(updater().alert(), nullptr);
    EXPECT_FALSE(updater().state().isChecking);
    EXPECT_EQ(lastCheck(), now() - 86400) << "a failed check is made again at the next start";
}

TEST_F(ProUpdaterTest, AQuietCheckOffersAnUpdate) {
    updater().checkOnLaunchIfDue();
    with.finishWork();
    EXPECT_EQ(alert().title, "Tallowcrest Pro 1.2 is available");
}

TEST_F(ProUpdaterTest, AQuietCheckIsDueOnceADay) {
    for (const auto& [age, isDue] :
         {std::pair(86399.0, false), {86400.0, true}, {0.0, false}, {-5.0, false}}) {
        with.settings.set(&Settings::lastUpdateCheck, now() - age);
        updater_.reset();
        updater().checkOnLaunchIfDue();
        EXPECT_EQ(updater().state().isChecking, isDue) << age;
    }
}

TEST_F(ProUpdaterTest, AStoredDateThatIsNoneCountsAsLongAgo) {
    for (const SettingsValue& stored :
         {SettingsValue(std::string("yesterday")), SettingsValue(true), SettingsValue(std::nan("")),
          SettingsValue(INFINITY)}) {
        TestServices again(
            [&](SettingsStore& store) { store.write("proUpdaterLastCheck", stored); });
        ProUpdater quiet(again.services, updates.ports());
        quiet.checkOnLaunchIfDue();
        EXPECT_TRUE(quiet.state().isChecking);
    }
}

TEST_F(ProUpdaterTest, UnderATestNothingIsCheckedByItself) {
    updates.isUnderTest = true;
    updater().checkOnLaunchIfDue();
    EXPECT_FALSE(updater().state().isChecking);
    EXPECT_EQ(checked().title, "Tallowcrest Pro 1.2 is available");
}

TEST_F(ProUpdaterTest, ASecondCheckDuringTheFirstDoesNothing) {
    updater().checkForUpdates();
    EXPECT_EQ(updater().checkForUpdates(), Outcome::ignored());
    with.finishWork();
    EXPECT_EQ(updater().checkForUpdates(), Outcome::ignored()) << "its alert is open";
    EXPECT_THAT(updates.transport->requests, SizeIs(1));
    EXPECT_EQ(updater().answer(5), Outcome::ignored());
    EXPECT_NE(updater().alert(), nullptr);
}

TEST_F(ProUpdaterTest, TheOutcomeOfACheckThatWasAskedForIsAwaited) {
    updater().checkForUpdates();
    EXPECT_TRUE(updater().state().isAwaited);
    with.finishWork();
    EXPECT_FALSE(updater().state().isAwaited);
    EXPECT_TRUE(updater().state().isChecking) << "until the alert is answered";
    updater().answer(1);
    updater().checkOnLaunchIfDue();
    with.clock.advance(std::chrono::hours(24));
    updater().checkOnLaunchIfDue();
    EXPECT_TRUE(updater().state().isChecking);
    EXPECT_FALSE(updater().state().isAwaited);
}

TEST_F(ProUpdaterTest, DownloadsVerifiesAndOpensTheImage) {
    startDownload();
    ASSERT_TRUE(updater().state().download);
    EXPECT_EQ(updater().state().download->version, "1.2");
    EXPECT_FALSE(updater().state().isChecking);
    with.finishWork();
    EXPECT_EQ(updater().alert(), nullptr);
    EXPECT_FALSE(updater().state().download);
    EXPECT_EQ(updates.images->published["Tallowcrest-Pro-1.2-build42.deb"], std::string(64, 'a'));
    EXPECT_THAT(updates.opened, ElementsAre("/tmp/Tallowcrest-Pro-1.2-build42.deb"));
    EXPECT_EQ(updates.images->open, 0);
}

TEST_F(ProUpdaterTest, EachFailureOfADownloadIsShownAndNothingIsOpened) {
    const auto expectFailure = [&](const std::string& reason) {
        startDownload();
        with.finishWork();
        EXPECT_EQ(alert(), (UpdateAlert{"Update verification failed",
                                        "The installer was not opened because it could not be "
                                        "downloaded and verified.\n\n" +
                                            reason,
                                        {"OK"}}));
        updater().answer(0);
        EXPECT_THAT(updates.images->published, IsEmpty());
        EXPECT_EQ(updates.images->open, 0);
    };
    auto& answer = updates.transport->answers[FakeUpdates::imageURL];
    answer.reply = {.status = 403};
    expectFailure("The server answered with the status 403.");
    answer.reply = {.status = 200, .error = "transfer closed with outstanding read data remaining"};
    expectFailure("transfer closed with outstanding read data remaining");
    updates.image(std::string(63, 'a') + 'b');
    expectFailure(update_errors::corruptFile);
    updates.image(std::string(64, 'a'));
    updates.images->writeProblem = "No space left on device";
    expectFailure("No space left on device");
    updates.images->writeProblem.clear();
    updates.images->nameProblem = "Is a directory";
    expectFailure("Is a directory");
    updates.images->problem = "Permission denied";
    expectFailure("Permission denied");
    updates.images->problem.clear();
    updates.transport->hasDigest = false;
    expectFailure("The library for digests cannot be used.");
    EXPECT_THAT(updates.opened, IsEmpty());
    EXPECT_THAT(with.log.activityLog(), IsEmpty());
}

TEST_F(ProUpdaterTest, AnImageThatNothingOpensIsNamed) {
    updates.opens = std::nullopt;
    startDownload();
    with.finishWork();
    EXPECT_EQ(updater().alert(), nullptr) << "it is not known yet";
    const auto told = updates.toldOpening.lock();
    ASSERT_TRUE(told) << "the answer is waited for";
    (*told)(false);
    EXPECT_THAT(alert().text,
                HasSubstr("No application opens /tmp/Tallowcrest-Pro-1.2-build42.deb"));
}

TEST_F(ProUpdaterTest, ShowsHowMuchHasArrived) {
    std::vector<DownloadProgress> seen;
    startDownload();
    updates.transport->onPiece = [&] {
        with.mainQueue.drain();
        seen.push_back(updater().state().download->progress);
    };
    with.finishWork();
    EXPECT_THAT(seen, ElementsAre(DownloadProgress{0}, DownloadProgress{16, 64},
                                  DownloadProgress{32, 64}, DownloadProgress{48, 64}));
}

TEST_F(ProUpdaterTest, CancelEndsTheDownloadWithoutAnAlert) {
    startDownload();
    updates.transport->onPiece = [&] {
        EXPECT_EQ(updater().cancelDownload(), Outcome::done());
        EXPECT_TRUE(updater().state().download->isStopping);
        EXPECT_EQ(updater().cancelDownload(), Outcome::ignored());
    };
    with.finishWork();
    EXPECT_FALSE(updater().state().download);
    EXPECT_EQ(updater().alert(), nullptr);
    EXPECT_THAT(updates.opened, IsEmpty());
    EXPECT_THAT(updates.images->published, IsEmpty());
    EXPECT_EQ(updates.images->open, 0);
    EXPECT_EQ(updater().cancelDownload(), Outcome::ignored());
}

TEST_F(ProUpdaterTest, ACancelAfterTheLastPieceKeepsNothingEither) {
    startDownload();
    int pieces = 0;
    updates.transport->onReplied = [&] { updater().cancelDownload(); };
    updates.transport->onPiece = [&] { ++pieces; };
    with.workQueue.runAll();
    EXPECT_EQ(pieces, 4);
    EXPECT_THAT(updates.images->published, IsEmpty());
    with.mainQueue.drain();
    EXPECT_EQ(updater().alert(), nullptr);
    EXPECT_THAT(updates.opened, IsEmpty());
}

TEST_F(ProUpdaterTest, ACancelOfACompleteDownloadThatIsNotYetToldRemovesTheImage) {
    startDownload();
    with.workQueue.runAll();
    ASSERT_EQ(updates.images->published.size(), 1U);
    EXPECT_EQ(updater().cancelDownload(), Outcome::done());
    with.mainQueue.drain();
    EXPECT_FALSE(updater().state().download);
    EXPECT_THAT(updates.images->published, IsEmpty());
    EXPECT_THAT(updates.opened, IsEmpty());
}

TEST_F(ProUpdaterTest, DuringADownloadACheckRunsAndASecondDownloadDoesNot) {
    startDownload();
    updater().checkForUpdates();
    EXPECT_TRUE(updater().state().isChecking);
    // The check, which waits behind the download.
    with.workQueue.run(1);
    with.mainQueue.drain();
    EXPECT_EQ(alert().title, "Tallowcrest Pro 1.2 is available");
    updater().answer(0);
    EXPECT_EQ(with.workQueue.pendingCount(), 1U);
    with.finishWork();
    EXPECT_THAT(updates.opened, SizeIs(1));
}

TEST_F(ProUpdaterTest, AlertsWaitForOneAnother) {
    updates.image("short");
    startDownload();
    updater().checkForUpdates();
    with.finishWork();
    EXPECT_EQ(alert().title, "Update verification failed");
    updater().answer(0);
    EXPECT_EQ(alert().title, "Tallowcrest Pro 1.2 is available");
    EXPECT_TRUE(updater().state().isChecking);
}

TEST_F(ProUpdaterTest, AVersionIsShownAsOneShortLine) {
    updates.feed(42, R"("version": "x",)");
    auto& body = updates.transport->answers[FakeUpdates::feedURL].body;
    body.replace(body.find("1.2"), 3, "1\\n2\\u202e" + std::string(100, '3'));
    EXPECT_EQ(checked().title, "Tallowcrest Pro 1 2 " + std::string(56, '3') + "… is available");
}

TEST_F(ProUpdaterTest, WithoutADesktopThereIsNoFeed) {
    ProUpdater none(with.services, {});
    none.checkOnLaunchIfDue();
    EXPECT_FALSE(none.state().isChecking);
    none.checkForUpdates();
    ASSERT_NE(none.alert(), nullptr);
    EXPECT_THAT(none.alert()->text, HasSubstr(update_errors::badURL));
    EXPECT_EQ(with.workQueue.pendingCount(), 0U);
}

TEST_F(ProUpdaterTest, ItsEndDropsWhatIsUnderWay) {
    startDownload();
    updater_.reset();
    with.finishWork();
    EXPECT_THAT(updates.opened, IsEmpty());
    EXPECT_EQ(updates.images->open, 0);
}

}  // namespace
}  // namespace tallowcrest
