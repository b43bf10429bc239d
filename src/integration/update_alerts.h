#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "integration/release.h"

namespace tallowcrest {

/// A question or a message of the updater. Its texts are plain and may hold anything that a feed
/// says, on one line each where they come from the feed.
struct UpdateAlert {
    std::string title;
    std::string text;
    std::vector<std::string> buttons;  ///< in their order; the first is the default
    std::size_t dismissal = 0;         ///< the button that closing the alert stands for

    bool operator==(const UpdateAlert&) const = default;
};

/// The buttons of `updateOffer`.
enum class OfferButton : std::size_t { download, later, releaseNotes };

// Pure; any thread.

UpdateAlert upToDateAlert(const std::string& version, std::int64_t currentBuild);
UpdateAlert checkFailedAlert(const std::string& reason);
UpdateAlert updateOffer(const Release& release, std::int64_t currentBuild);
UpdateAlert downloadFailedAlert(const std::string& reason);

/// The descriptions of the errors that are not told by the system.
namespace update_errors {

inline constexpr const char* badURL = "This program has no valid address of an update feed.";
inline constexpr const char* unreadableFeed = "The update feed is not in the expected format.";
inline constexpr const char* cannotParseResponse =
    "The update feed does not describe an update from the expected place.";
inline constexpr const char* corruptFile = "The downloaded file is not the one that was announced.";

/// For a response without the status 200.
std::string badServerResponse(int status);

}  // namespace update_errors
}  // namespace tallowcrest
