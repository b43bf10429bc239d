#include "integration/update_steps.h"

#include <chrono>
#include <memory>
#include <utility>

#include "core/text.h"
#include "integration/update_alerts.h"

namespace tallowcrest {
namespace {

constexpr int httpOK = 200;

/// Why the reply is of no use; empty when it is one.
std::string problemOf(const UpdateReply& reply) {
    if (!reply.error.empty()) {
        return reply.error;
    }
    return reply.status == httpOK ? std::string() : update_errors::badServerResponse(reply.status);
}

}  // namespace

bool hasFeed(const UpdateBuild& build) {
    const auto address = webAddress(build.feed);
    return address && address->scheme == "https";
}

std::variant<Release, UpdateError> fetchRelease(UpdateTransport& transport,
                                                const UpdateBuild& build,
                                                const std::stop_token& stop) {
    constexpr std::chrono::seconds timeout{15};
    std::string body;
    const UpdateReply reply = transport.fetch(
        {build.feed, longestFeed, timeout},
        [&body](std::string_view bytes, std::optional<std::uint64_t>) {
            body += bytes;
            return true;
        },
        stop);
    if (std::string problem = problemOf(reply); !problem.empty()) {
        return UpdateError{std::move(problem)};
    }
    std::optional<Release> release = decodeRelease(body);
    if (!release) {
        return UpdateError{update_errors::unreadableFeed};
    }
    if (!isAcceptable(*release, build.host) ||
        !isSignedAsAsked(*release, build.publicKey, transport)) {
        return UpdateError{update_errors::cannotParseResponse};
    }
    return *std::move(release);
}

std::variant<std::string, UpdateError> downloadImage(
    UpdateTransport& transport, ImageFolder& images, const Release& release,
    std::string_view imageEnding, const std::function<void(DownloadProgress)>& report,
    const std::stop_token& stop) {
    auto begun = images.begin();
    if (auto* error = std::get_if<UpdateError>(&begun)) {
        return std::move(*error);
    }
    const auto image = std::get<std::unique_ptr<DownloadedImage>>(std::move(begun));
    const std::unique_ptr<Sha256> digest = transport.startSha256();
    if (digest == nullptr) {
        return UpdateError{"The library for digests cannot be used."};
    }
    DownloadProgress progress;
    std::optional<UpdateError> writeError;
    const UpdateReply reply = transport.fetch(
        {release.downloadURL, longestImage},
        [&](std::string_view bytes, std::optional<std::uint64_t> total) {
            writeError = image->write(bytes);
            if (writeError) {
                return false;
            }
            digest->add(bytes);
            progress = {progress.received + bytes.size(), total};
            report(progress);
            return true;
        },
        stop);
    if (writeError) {
        return *std::move(writeError);
    }
    if (std::string problem = problemOf(reply); !problem.empty()) {
        return UpdateError{std::move(problem)};
    }
    if (digest->finish() != loweredASCII(release.sha256)) {
        return UpdateError{update_errors::corruptFile};
    }
    // A transfer that is complete does not notice it.
    if (stop.stop_requested()) {
        return UpdateError{"The download was canceled."};
    }
    return image->publish(imageName(release, imageEnding));
}

}  // namespace tallowcrest
