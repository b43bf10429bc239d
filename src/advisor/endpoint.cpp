#include "advisor/endpoint.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "core/number_text.h"
#include "core/text.h"

namespace tallowcrest {
namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isLetterOrDigit(char c) {
    return isDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool consistsOf(std::string_view text, std::string_view others) {
    return std::ranges::all_of(text, [others](char c) {
        return isLetterOrDigit(c) || others.find(c) != std::string_view::npos;
    });
}

/// Four decimal numbers of at most 255, without leading zeros: what every reader takes for the same
/// address.
bool isPlainIPv4(std::string_view host) {
    int count = 0;
    while (true) {
        const std::string_view part = host.substr(0, host.find('.'));
        const bool isNumber = !part.empty() && part.size() <= 3 &&
                              std::ranges::all_of(part, isDigit) &&
                              (part.size() == 1 || part.front() != '0');
        if (!isNumber || parseDecimalInteger(part).value_or(256) > 255) {
            return false;
        }
        ++count;
        if (part.size() == host.size()) {
            return count == 4;
        }
        host.remove_prefix(part.size() + 1);
    }
}

/// `host` is in lower case.
bool isLoopback(std::string_view host) {
    return host == "localhost" || host == "[::1]" ||
           (host.starts_with("127.") && isPlainIPv4(host));
}

bool isHost(std::string_view host) {
    if (host.starts_with('[')) {
        // The exact form is left to the exchange: what is not an address fails there.
        return host.size() > 2 && host.ends_with(']') &&
               host.substr(1, host.size() - 2).find_first_not_of("0123456789abcdef:.") ==
                   std::string_view::npos;
    }
    return !host.empty() && !host.starts_with('.') && !host.starts_with('-') &&
           consistsOf(host, ".-_");
}

bool isPort(std::string_view port) {
    const std::int64_t number = parseDecimalInteger(port).value_or(0);
    return std::ranges::all_of(port, isDigit) && number >= 1 && number <= 65535;
}

/// With the parts of the path that the address leaves out.
std::string completedPath(std::string_view path) {
    while (path.ends_with('/')) {
        path.remove_suffix(1);
    }
    std::string completed(path);
    if (path.ends_with("/v1/responses")) {
        return completed;
    }
    return completed.append(path.ends_with("/v1") ? "/responses" : "/v1/responses");
}

bool hasDotSegment(std::string_view path) {
    const std::string whole = std::string(path) + '/';
    return whole.find("/./") != std::string::npos || whole.find("/../") != std::string::npos;
}

}  // namespace

std::optional<Endpoint> endpointFrom(std::string_view baseAddress) {
    std::string_view rest = trimmingWhiteSpace(baseAddress);
    if (rest.empty()) {
        return Endpoint{"https://api.openai.com/v1/responses", "OpenAI"};
    }
    if (rest.size() > maximumEndpointLength) {
        return std::nullopt;
    }
    const std::size_t schemeEnd = rest.find("://");
    const std::string scheme = loweredASCII(rest.substr(0, schemeEnd));
    if (schemeEnd == std::string_view::npos || (scheme != "https" && scheme != "http")) {
        return std::nullopt;
    }
    rest.remove_prefix(schemeEnd + 3);
    const std::string_view path = rest.substr(std::min(rest.find('/'), rest.size()));
    const std::string authority = loweredASCII(rest.substr(0, rest.size() - path.size()));
    const std::size_t colon = authority.find(':', authority.rfind(']') + 1);
    const std::string_view host = std::string_view(authority).substr(0, colon);
    const bool hasPort = colon != std::string::npos;
    if (!isHost(host) || (hasPort && !isPort(std::string_view(authority).substr(colon + 1))) ||
        !consistsOf(path, "/-._~%:@!$&'()*+,;=") || hasDotSegment(path) ||
        (scheme == "http" && !isLoopback(host))) {
        return std::nullopt;
    }
    return Endpoint{scheme + "://" + authority + completedPath(path), authority};
}

}  // namespace tallowcrest
