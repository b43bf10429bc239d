#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tallowcrest {

class UpdateTransport;
struct UpdateBuild;

/// What the update feed offers.
struct Release {
    std::string version;  ///< for display; any text
    std::int64_t build = 0;
    std::string downloadURL;
    std::string sha256;  ///< of the image, in hexadecimal digits
    /// Absent when the feed has none, or one that is no address of the web.
    std::optional<std::string> releaseNotesURL = {};
    /// Of `signedText`, in Base64.
    std::optional<std::string> signature = {};

    bool operator==(const Release&) const = default;
};

// Pure; any thread.

/// An address of the form scheme://host[:port][/…], in plain ASCII without blanks, backslashes and
/// user names: what every reader takes for the same address.
struct WebAddress {
    std::string scheme;  ///< as written
    std::string host;    ///< as written, without the port
};
std::optional<WebAddress> webAddress(std::string_view text);

/// Reads a feed. Absent when it is no JSON object that has all that a release needs.
std::optional<Release> decodeRelease(std::string_view json);

/// Whether the release can be fetched from the update host alone, and has a digest.
bool isAcceptable(const Release& release, std::string_view updateHost);

/// What a signature of a release is made of: version, build, address and digest, each preceded by
/// its length, so that no two releases have the same text.
std::string signedText(const Release& release);

/// Whether the release is signed as the build asks for, or the build asks for nothing. A key of the
/// build that is none accepts no release. Calls `transport` for a key alone.
bool isSignedAsAsked(const Release& release, const std::string& publicKey,
                     UpdateTransport& transport);

/// The name of the image in the temporary directory. Characters of the version that a file name
/// should not have become "-".
std::string imageName(const Release& release, std::string_view ending);

/// The build number of a text: 0 unless it is a decimal integer.
std::int64_t buildNumber(std::string_view text);

}  // namespace tallowcrest
