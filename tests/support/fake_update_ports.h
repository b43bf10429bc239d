#pragma once

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "integration/update_ports.h"

namespace tallowcrest {

/// Servers in memory: the reply to each address. The digest of a text is the text itself, if it has
/// 64 characters.
class FakeUpdateTransport final : public UpdateTransport {
public:
    struct Answer {
        UpdateReply reply = {.status = 200};
        std::string body = {};
        std::optional<std::uint64_t> total = {};
    };

    UpdateReply fetch(const UpdateRequest& request, const TakeBytes& take,
                      const std::stop_token& stop) override {
        requests.push_back(request);
        const Answer answer = answers[request.url];
        constexpr std::size_t piece = 16;
        for (std::size_t at = 0; answer.reply.status == 200 && at < answer.body.size();
             at += piece) {
            if (onPiece) {
                onPiece();
            }
            if (stop.stop_requested()) {
                return {.error = "stopped"};
            }
            if (!take(std::string_view(answer.body).substr(at, piece), answer.total)) {
                return {.error = "refused"};
            }
        }
        if (onReplied) {
            onReplied();
        }
        return answer.reply;
    }

    std::unique_ptr<Sha256> startSha256() override {
        return hasDigest ? std::make_unique<TextDigest>() : nullptr;
    }

    bool isSigned(std::string_view publicKey, std::string_view signature,
                  std::string_view message) override {
        signatures.push_back(
            {std::string(publicKey), std::string(signature), std::string(message)});
        return acceptsSignatures;
    }

    std::map<std::string, Answer> answers;
    std::vector<UpdateRequest> requests;
    std::vector<std::vector<std::string>> signatures;  ///< key, signature, message
    bool hasDigest = true;
    bool acceptsSignatures = false;
    // Absent unless a test sets them.
    std::function<void()> onPiece;    ///< called before each piece
    std::function<void()> onReplied;  ///< called after the last piece

private:
    struct TextDigest final : Sha256 {
        void add(std::string_view bytes) override { text += bytes; }
        std::string finish() override { return text; }
        std::string text;
    };
};

/// A folder in memory.
class FakeImageFolder final : public ImageFolder {
public:
    std::variant<std::unique_ptr<DownloadedImage>, UpdateError> begin() override {
        if (!problem.empty()) {
            return UpdateError{problem};
        }
        return std::make_unique<Image>(*this);
    }
    void remove(const std::string& path) override { published.erase(path.substr(5)); }

    std::string problem;       ///< why no file can be begun; empty when it can
    std::string writeProblem;  ///< the same for writing
    std::string nameProblem;   ///< and for the name at the end
    std::map<std::string, std::string> published;
    int open = 0;  ///< files that are neither published nor removed

private:
    struct Image final : DownloadedImage {
        explicit Image(FakeImageFolder& folder) : owner(folder) { ++owner.open; }
        Image(const Image&) = delete;
        Image& operator=(const Image&) = delete;
        ~Image() override { --owner.open; }
        std::optional<UpdateError> write(std::string_view bytes) override {
            text += bytes;
            return owner.writeProblem.empty() ? std::nullopt
                                              : std::optional(UpdateError{owner.writeProblem});
        }
        std::variant<std::string, UpdateError> publish(const std::string& name) override {
            if (!owner.nameProblem.empty()) {
                return UpdateError{owner.nameProblem};
            }
            owner.published[name] = text;
            return "/tmp/" + name;
        }
        FakeImageFolder& owner;
        std::string text;
    };
};

/// The ports of an updater of the build 41, and a feed that offers the build 42.
struct FakeUpdates {
    static constexpr const char* feedURL = "https://feeds.example/pro.json";
    static constexpr const char* imageURL = "https://updates.example/pro.deb";

    FakeUpdates() {
        image(std::string(64, 'a'));
        feed(42);
    }

    void image(const std::string& body) {
        transport->answers[imageURL] = {.body = body, .total = body.size()};
    }
    /// With more members than the required ones in `more`, each followed by a comma.
    void feed(int build, const std::string& more = {}) {
        transport->answers[feedURL] = {.body = "{" + more + R"("version": "1.2", "build": )" +
                                               std::to_string(build) + R"(, "downloadURL": ")" +
                                               imageURL + R"(", "sha256": ")" +
                                               std::string(64, 'A') + R"("})"};
    }

    UpdatePorts ports() {
        return {.transport = transport,
                .images = images,
                .build = build,
                .openFile =
                    [this](const std::string& path, const std::function<void(bool)>& told) {
                        opened.push_back(path);
                        if (opens) {
                            told(*opens);
                        }
                        auto opening = std::make_unique<Opening>(told);
                        toldOpening = opening->told;
                        return opening;
                    },
                .openAddress =
                    [this](const std::string& url) {
                        opened.push_back(url);
                        return opens.value_or(false);
                    },
                .isUnderTest = isUnderTest};
    }

    std::shared_ptr<FakeUpdateTransport> transport = std::make_shared<FakeUpdateTransport>();
    std::shared_ptr<FakeImageFolder> images = std::make_shared<FakeImageFolder>();
    UpdateBuild build{.feed = feedURL,
                      .host = "updates.example",
                      .version = "1.1",
                      .build = "41",
                      .imageEnding = ".deb"};
    std::optional<bool> opens = true;  ///< absent: it is not known at once
    /// Tells of the latest file; gone when nobody waits for that any more.
    std::weak_ptr<const std::function<void(bool isOpened)>> toldOpening;
    bool isUnderTest = false;
    std::vector<std::string> opened;

private:
    struct Opening final : FileOpening {
        explicit Opening(const std::function<void(bool)>& tell)
            : told(std::make_shared<const std::function<void(bool)>>(tell)) {}
        std::shared_ptr<const std::function<void(bool)>> told;
    };
};

}  // namespace tallowcrest
