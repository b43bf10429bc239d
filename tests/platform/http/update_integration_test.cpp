#include <sys/resource.h>

#include <algorithm>
#include <functional>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "integration/pro_updater.h"
#include "platform/files/image_folder_posix.h"
#include "platform/http/curl_update_transport.h"
#include "tests/platform/http/update_server.h"
#include "tests/support/names_in.h"
#include "tests/support/test_services.h"

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

/// The real transport, which calls `onPiece` after each piece that it has passed on.
class WatchedTransport final : public UpdateTransport {
public:
    explicit WatchedTransport(std::shared_ptr<UpdateTransport> transport)
        : transport_(std::move(transport)) {}

    UpdateReply fetch(const UpdateRequest& request, const TakeBytes& take,
                      const std::stop_token& stop) override {
        return transport_->fetch(
            request,
            [&](std::string_view bytes, std::optional<std::uint64_t> total) {
                const bool isTaken = take(bytes, total);
                onPiece();
                return isTaken;
            },
            stop);
    }
    std::unique_ptr<Sha256> startSha256() override { return transport_->startSha256(); }
    bool isSigned(std::string_view publicKey, std::string_view signature,
                  std::string_view message) override {
        return transport_->isSigned(publicKey, signature, message);
    }

    std::function<void()> onPiece = [] {};

private:
    std::shared_ptr<UpdateTransport> transport_;
};

/// An updater over a real server and a real folder.
class UpdateIntegration : public ::testing::Test {
protected:
    /// What the feed says of the image at `path`.
    void announce(const std::string& path, const std::string& digest,
                  const std::string& version = "1.2", int build = 42) {
        server_.files.file("feed.json",
                           R"({"version": ")" + version + R"(", "build": )" +
                               std::to_string(build) + R"(, "downloadURL": ")" + server_.at(path) +
                               R"(", "sha256": ")" + digest + R"("})",
                           0600);
    }

    /// The text of the alert after a check of the feed; of the download, if it was offered.
    std::string outcomeOf(const std::string& feed = "/file/feed.json") {
        ports_.build.feed = server_.at(feed);
        ProUpdater updater(with.services, ports_);
        updater.checkForUpdates();
        with.finishWork();
        if (updater.alert() == nullptr) {
            return "nothing";
        }
        if (updater.alert()->buttons.size() == 1) {
            return updater.alert()->text;
        }
        updater.answer(0);
        with.finishWork();
        return updater.alert() != nullptr ? updater.alert()->text : "opened";
    }

    /// Accepts the offer of the feed. The download is then waiting to be run.
    void beginDownload(ProUpdater& updater) {
        updater.checkForUpdates();
        with.finishWork();
        ASSERT_NE(updater.alert(), nullptr);
        updater.answer(0);
        ASSERT_TRUE(updater.state().download);
    }

    std::string image(const std::string& text = "an image") {
        server_.files.file("image", text, 0600);
        return server_.digestOf("image");
    }

    TestServices with;
    TestAuthority authority_;
    UpdateServer server_{authority_};
    TemporaryFolder downloads_;
    std::vector<std::string> opened_;
    UpdatePorts ports_{
        .transport = std::make_shared<CurlUpdateTransport>(
            CurlUpdateTransport::Options{.certificateAuthorities = authority_.path()}),
        .images = std::make_shared<PosixImageFolder>(downloads_.path()),
        .build = {.feed = "",
                  .host = "localhost",
                  .version = "1.1",
                  .build = "41",
                  .imageEnding = ".deb"},
        .openFile = [this](const std::string& path, const std::function<void(bool)>& told) {
            opened_.push_back(path);
            told(true);
            return std::make_unique<FileOpening>();
        }};
};

TEST_F(UpdateIntegration, DownloadsVerifiesAndOpens) {
    announce("/file/image", image());
    EXPECT_EQ(outcomeOf(), "opened");
    EXPECT_THAT(opened_, ElementsAre(downloads_.path("Tallowcrest-Pro-1.2-build42.deb")));
    EXPECT_EQ(downloads_.read("Tallowcrest-Pro-1.2-build42.deb"), "an image");
    EXPECT_EQ(namesIn(downloads_.path()).size(), 1U);
}

TEST_F(UpdateIntegration, ADigestInCapitalsIsTheSame) {
    std::string digest = image();
    for (char& c : digest) {
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    }
    announce("/redirect?/file/image", digest);
    EXPECT_EQ(outcomeOf("/redirect?/file/feed.json"), "opened");
}

TEST_F(UpdateIntegration, AnOlderBuildIsNotDownloaded) {
    announce("/file/image", image(), "9.9", 40);
    EXPECT_THAT(outcomeOf(), HasSubstr("You’re running version 1.1 (build 41)."));
    announce("/file/image", image(), "9.9", 41);
    EXPECT_THAT(outcomeOf(), HasSubstr("You’re running version 1.1 (build 41)."));
}

TEST_F(UpdateIntegration, EachFailureOfTheFeedIsRefused) {
    const std::string digest = image();
    announce("/file/image", digest);
    const std::vector<std::pair<std::string, std::string>> table{
        {"/status?404", "status 404"},
        {"/bodiless?200", update_errors::unreadableFeed},
        {"/text", update_errors::unreadableFeed},
        {"/file/image", update_errors::unreadableFeed},
        {"/not-utf8?200", update_errors::unreadableFeed},
        {"/truncated/feed.json", "\n\n"},
        {"/large", "Maximum file size exceeded"},
        {"/large-without-length", "Maximum file size exceeded"},
        {"/headers", "Too large response headers"},
        {"/closed", "\n\n"},
        {"/other-protocol", "\n\n"},
        {"/redirect?https://127.0.0.1/file/feed.json", "redirects to another place"},
    };
    for (const auto& [path, words] : table) {
        const std::string outcome = outcomeOf(path);
        EXPECT_THAT(outcome,
                    testing::StartsWith("Tallowcrest Pro could not verify the update feed."))
            << path;
        EXPECT_THAT(outcome, HasSubstr(words)) << path;
    }
    ports_.build.host = "updates.example";
    EXPECT_THAT(outcomeOf(), HasSubstr(update_errors::cannotParseResponse));
    ports_.build.host = "localhost";
    announce("/file/image", digest.substr(1));
    EXPECT_THAT(outcomeOf(), HasSubstr(update_errors::cannotParseResponse));
    EXPECT_THAT(opened_, IsEmpty());
    EXPECT_THAT(namesIn(downloads_.path()), IsEmpty());
}

TEST_F(UpdateIntegration, AFeedOfAGigabyteIsRefusedWithoutReadingIt) {
    server_.makeZeros("feed.json", 1UL << 30U);
    EXPECT_THAT(outcomeOf(), HasSubstr("Maximum file size exceeded"));
    EXPECT_THAT(outcomeOf("/unannounced/feed.json"), HasSubstr("Maximum file size exceeded"));
}

TEST_F(UpdateIntegration, EachFailureOfTheImageLeavesNothing) {
    const std::string digest = image();
    const std::vector<std::pair<std::string, std::string>> table{
        {"/status?403", "The server answered with the status 403."},
        {"/truncated/image", "\n\n"},
        {"/broken", "\n\n"},
        {"/file/feed.json", update_errors::corruptFile},
        {"/bodiless?200", update_errors::corruptFile},
        {"/redirect?https://127.0.0.1/file/image", "redirects to another place"},
        {"/redirect?http://localhost/file/image", "redirects to another place"},
    };
    for (const auto& [path, words] : table) {
        announce(path, digest);
        const std::string outcome = outcomeOf();
        EXPECT_THAT(outcome, testing::StartsWith("The installer was not opened because it could "
                                                 "not be downloaded and verified."))
            << path;
        EXPECT_THAT(outcome, HasSubstr(words)) << path;
        EXPECT_THAT(namesIn(downloads_.path()), IsEmpty()) << path;
    }
    EXPECT_THAT(opened_, IsEmpty());
}

TEST_F(UpdateIntegration, AVersionCannotLeadOutOfTheFolder) {
    announce("/file/image", image(), "../../x\\n/y");
    EXPECT_EQ(outcomeOf(), "opened");
    EXPECT_THAT(namesIn(downloads_.path()), ElementsAre("Tallowcrest-Pro-..-..-x--y-build42.deb"));
}

TEST_F(UpdateIntegration, AnOlderImageOfTheNameIsReplacedAndItsLinkIsNotFollowed) {
    const std::string kept = downloads_.file("kept", "kept", 0600);
    std::filesystem::create_symlink(kept, downloads_.path("Tallowcrest-Pro-1.2-build42.deb"));
    announce("/file/image", image());
    EXPECT_EQ(outcomeOf(), "opened");
    EXPECT_EQ(downloads_.read("kept"), "kept");
    image("another");
    announce("/file/image", server_.digestOf("image"));
    EXPECT_EQ(outcomeOf(), "opened");
    EXPECT_EQ(downloads_.read("Tallowcrest-Pro-1.2-build42.deb"), "another");
}

TEST_F(UpdateIntegration, AFolderInPlaceOfTheImageIsAFailure) {
    std::filesystem::create_directories(downloads_.path("Tallowcrest-Pro-1.2-build42.deb"));
    announce("/file/image", image());
    EXPECT_THAT(outcomeOf(), HasSubstr("Is a directory"));
    EXPECT_EQ(namesIn(downloads_.path()).size(), 1U);
}

TEST_F(UpdateIntegration, ACancelInTheMiddleOfADownloadLeavesNothing) {
    server_.makeZeros("image", 8UL << 20U);
    auto transport = std::make_shared<WatchedTransport>(ports_.transport);
    ports_.transport = transport;
    ports_.build.feed = server_.at("/file/feed.json");
    // Nothing but the cancel ends the second one.
    for (const char* path : {"/file/image", "/halted/image"}) {
        announce(path, server_.digestOf("image"));
        ProUpdater updater(with.services, ports_);
        transport->onPiece = [] {};
        beginDownload(updater);
        int pieces = 0;
        transport->onPiece = [&] {
            if (++pieces == 3) {
                EXPECT_EQ(namesIn(downloads_.path()).size(), 1U);
                EXPECT_EQ(updater.cancelDownload(), Outcome::done());
            }
        };
        with.finishWork();
        EXPECT_GE(pieces, 3) << path;
        EXPECT_FALSE(updater.state().download) << path;
        EXPECT_EQ(updater.alert(), nullptr) << path;
        EXPECT_THAT(namesIn(downloads_.path()), IsEmpty()) << path;
    }
    EXPECT_THAT(opened_, IsEmpty());
}

TEST_F(UpdateIntegration, TheProgressHasATotalWhereTheServerTellsOne) {
    constexpr std::uint64_t size = 1UL << 20U;
    server_.makeZeros("image", size);
    auto transport = std::make_shared<WatchedTransport>(ports_.transport);
    ports_.transport = transport;
    ports_.build.feed = server_.at("/file/feed.json");
    for (const auto& [path, total] :
         {std::pair{"/file/image", std::optional(size)}, {"/unannounced/image", std::nullopt}}) {
        announce(path, server_.digestOf("image"));
        ProUpdater updater(with.services, ports_);
        beginDownload(updater);
        std::vector<std::uint64_t> received;
        transport->onPiece = [&, &total = total] {
            with.mainQueue.drain();
            const DownloadProgress& progress = updater.state().download->progress;
            received.push_back(progress.received);
            EXPECT_TRUE(progress.received == 0 || progress.total == total) << path;
        };
        with.finishWork();
        transport->onPiece = [] {};
        ASSERT_FALSE(received.empty()) << path;
        EXPECT_TRUE(std::ranges::is_sorted(received)) << path;
        EXPECT_GT(received.back(), size / 2) << path;
        EXPECT_LE(received.back(), size) << path;
    }
    EXPECT_EQ(opened_.size(), 2U);
}

TEST_F(UpdateIntegration, AQuietCheckTellsAnUpdateAlone) {
    ports_.build.feed = server_.at("/status?500");
    const auto checksQuietly = [this](bool isAlerted) {
        ProUpdater updater(with.services, ports_);
        updater.checkOnLaunchIfDue();
        EXPECT_TRUE(updater.state().isChecking);
        with.finishWork();
        EXPECT_EQ(updater.alert() != nullptr, isAlerted);
    };
    checksQuietly(false);
    EXPECT_EQ(with.settings.values().lastUpdateCheck, Settings().lastUpdateCheck)
        << "a failed check is repeated at the next start";
    ports_.build.feed = server_.at("/file/feed.json");
    announce("/file/image", image(), "1.2", 41);
    checksQuietly(false);
    EXPECT_EQ(with.settings.values().lastUpdateCheck, with.clock.now().secondsSinceReference);
    ProUpdater sameDay(with.services, ports_);
    sameDay.checkOnLaunchIfDue();
    EXPECT_FALSE(sameDay.state().isChecking);
    with.clock.advance(std::chrono::hours(24));
    announce("/file/image", image());
    checksQuietly(true);
}

/// TALLOWCREST_IMAGE_MEGABYTES sets another size than the one that takes no time.
TEST_F(UpdateIntegration, ALargeImageTakesNoMemory) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizers keep memory that was released";
#endif
    const char* const wanted = std::getenv("TALLOWCREST_IMAGE_MEGABYTES");
    const std::uint64_t size = (wanted != nullptr ? std::stoull(wanted) : 64) << 20U;
    server_.makeZeros("image", size);
    announce("/file/image", server_.digestOf("image"));
    rusage before{};
    ::getrusage(RUSAGE_SELF, &before);
    EXPECT_EQ(outcomeOf(), "opened");
    rusage after{};
    ::getrusage(RUSAGE_SELF, &after);
    EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 16L * 1024);  // in KiB
    EXPECT_EQ(std::filesystem::file_size(downloads_.path("Tallowcrest-Pro-1.2-build42.deb")), size);
}

}  // namespace
}  // namespace tallowcrest
