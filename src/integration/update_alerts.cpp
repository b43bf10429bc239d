#include "integration/update_alerts.h"

#include <fmt/format.h>

#include "core/text.h"

namespace tallowcrest {
namespace {

/// A version as one line that leaves room for the words around it.
std::string shownVersion(const std::string& version) {
    constexpr std::size_t mostCharacters = 60;
    const std::string line = replacingControlCharacters(version, " ");
    const std::string_view shown = firstCharacters(line, mostCharacters);
    return std::string(shown) + (shown.size() < line.size() ? "…" : "");
}

}  // namespace

UpdateAlert upToDateAlert(const std::string& version, std::int64_t currentBuild) {
    return {.title = "Tallowcrest Pro is up to date",
            .text = fmt::format("You’re running version {} (build {}).",
                                version.empty() ? "Unknown" : version, currentBuild),
            .buttons = {"OK"}};
}

UpdateAlert checkFailedAlert(const std::string& reason) {
    return {
        .title = "Couldn’t check for updates",
        .text = "Tallowcrest Pro could not verify the update feed. Try again later.\n\n" + reason,
        .buttons = {"OK"}};
}

UpdateAlert updateOffer(const Release& release, std::int64_t currentBuild) {
    UpdateAlert alert{
        .title = fmt::format("Tallowcrest Pro {} is available", shownVersion(release.version)),
        .text =
            fmt::format("Build {} is newer than build {}. Tallowcrest will verify the notarized "
                        "installer checksum before opening it.",
                        release.build, currentBuild),
        .buttons = {"Download and Verify", "Later"},
        .dismissal = static_cast<std::size_t>(OfferButton::later)};
    if (release.releaseNotesURL) {
        alert.buttons.emplace_back("Release Notes");
    }
    return alert;
}

UpdateAlert downloadFailedAlert(const std::string& reason) {
    return {.title = "Update verification failed",
            .text =
                "The installer was not opened because it could not be downloaded and "
                "verified.\n\n" +
                reason,
            .buttons = {"OK"}};
}

std::string update_errors::badServerResponse(int status) {
    return status == 0 ? "The server did not answer as expected."
                       : fmt::format("The server answered with the status {}.", status);
}

}  // namespace tallowcrest
