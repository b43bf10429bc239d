#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace tallowcrest {

/// Where requests to a provider go.
struct Endpoint {
    std::string url;
    /// What texts call it: "OpenAI", or the host of another server, with the port if one was given.
    std::string service;
    bool needsKey = false;  ///< true for OpenAI's, which answers nobody without one

    bool operator==(const Endpoint&) const = default;
};

inline constexpr std::size_t maximumEndpointLength = 2048;

/// The endpoint below a base address, such as "https://example.org/v1" or "http://localhost:8080";
/// the empty address is OpenAI's. Absent for an address that must not be used: anything but https,
/// or http to this machine alone; with a user name, a query or a fragment; with a host or a port
/// that none can be; with other characters than those of a plain address, or with such characters
/// behind a "%" as would change the path; longer than `maximumEndpointLength` bytes. The path may
/// end before "/v1", before "/responses" or behind it. Pure; any thread.
std::optional<Endpoint> endpointFrom(std::string_view baseAddress);

}  // namespace tallowcrest
