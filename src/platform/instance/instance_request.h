#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace tallowcrest {

/// The request of a second start to the first: to show its window.
struct InstanceRequest {
    /// The activation token of the second start, which allows the window of the first to come to
    /// the front. Printable ASCII; empty when there is none.
    std::string activationToken;

    bool operator==(const InstanceRequest&) const = default;
};

/// A prefix of a valid request; more data is needed.
struct IncompleteRequest {};

/// Not a request, whatever follows.
struct MalformedRequest {};

/// The maximum size of a request in bytes.
inline constexpr std::size_t longestInstanceRequest = 1024;

/// The answer of the first instance once its window is shown.
inline constexpr std::string_view instanceAcknowledgement = "shown\n";

/// The request as it is sent. Omits a token that is too long or not printable, as the window can be
/// shown without one. Any thread.
std::string instanceRequestText(const InstanceRequest& request);

/// Parses all data that a peer has sent so far. Any thread.
std::variant<InstanceRequest, IncompleteRequest, MalformedRequest> parseInstanceRequest(
    std::string_view received);

}  // namespace tallowcrest
