#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>
#include <variant>

#include "integration/release.h"
#include "integration/update_ports.h"

namespace tallowcrest {

// The steps of the updater that wait for a server. Each blocks until it is over or a stop is
// requested. Any thread.

/// A feed has a few hundred bytes.
inline constexpr std::uint64_t longestFeed = 256UL * 1024;
/// An image may not fill the disk.
inline constexpr std::uint64_t longestImage = 4UL * 1024 * 1024 * 1024;

/// Whether the build has an address of a feed. Does not block.
bool hasFeed(const UpdateBuild& build);

/// Reads the feed of a build that `hasFeed`, and tests what it offers.
std::variant<Release, UpdateError> fetchRelease(UpdateTransport& transport,
                                                const UpdateBuild& build,
                                                const std::stop_token& stop);

/// How much of an image has arrived.
struct DownloadProgress {
    std::uint64_t received = 0;               ///< in bytes
    std::optional<std::uint64_t> total = {};  ///< absent when the server has not told

    bool operator==(const DownloadProgress&) const = default;
};

/// Downloads the image of a release that `isAcceptable`, verifies it and gives it its name. Returns
/// its absolute path. Nothing of it stays after an error. `report` is called with each piece.
std::variant<std::string, UpdateError> downloadImage(
    UpdateTransport& transport, ImageFolder& images, const Release& release,
    std::string_view imageEnding, const std::function<void(DownloadProgress)>& report,
    const std::stop_token& stop);

}  // namespace tallowcrest
