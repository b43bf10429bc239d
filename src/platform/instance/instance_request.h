#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace tallowcrest {

/// What a second start of the window program asks of the first: to show its window.
struct InstanceRequest {
    /// What lets a window of the other process come to the front, as the desktop gave it to this
    /// one. Printable ASCII; empty when there is none.
    std::string activationToken;

    bool operator==(const InstanceRequest&) const = default;
};

/// The beginning of a request; more has to come.
struct IncompleteRequest {};

/// No request, whatever may still come.
struct MalformedRequest {};

/// No request is longer than this many bytes.
inline constexpr std::size_t longestInstanceRequest = 1024;

/// What the first instance answers once its window shows.
inline constexpr std::string_view instanceAcknowledgement = "shown\n";

/// The request as it is sent. A token that no message can carry is left out: the window then shows
/// all the same. Any thread.
std::string instanceRequestText(const InstanceRequest& request);

/// Judges all bytes that a peer has sent so far. Any thread.
std::variant<InstanceRequest, IncompleteRequest, MalformedRequest> parseInstanceRequest(
    std::string_view received);

}  // namespace tallowcrest
