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

bool isHexDigit(char c) {
    return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
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

/// How many of the eight groups of an IPv6 address the text has, an IPv4 address at its end counted
/// as two if it may be there. Absent when it does not consist of groups.
std::optional<int> countIPv6Groups(std::string_view text, bool mayEndInIPv4) {
    int count = 0;
    while (!text.empty()) {
        const std::string_view group = text.substr(0, text.find(':'));
        const bool isLast = group.size() == text.size();
        if (isLast && mayEndInIPv4 && isPlainIPv4(group)) {
            return count + 2;
        }
        if (group.empty() || group.size() > 4 || !std::ranges::all_of(group, isHexDigit)) {
            return std::nullopt;
        }
        ++count;
        if (isLast) {
            break;
        }
        text.remove_prefix(group.size() + 1);
        if (text.empty()) {
            return std::nullopt;
        }
    }
    return count;
}

bool isIPv6(std::string_view text) {
    const std::size_t gap = text.find("::");
    if (gap == std::string_view::npos) {
        return countIPv6Groups(text, true) == 8;
    }
    const auto before = countIPv6Groups(text.substr(0, gap), false);
    const auto after = countIPv6Groups(text.substr(gap + 2), true);
    return before && after && *before + *after < 8;
}

bool isHost(std::string_view host) {
    if (host.starts_with('[')) {
        return host.size() > 2 && host.ends_with(']') && isIPv6(host.substr(1, host.size() - 2));
    }
    if (host.size() > 253 || host.starts_with('-') || !consistsOf(host, ".-_")) {
        return false;
    }
    while (true) {
        const std::string_view label = host.substr(0, host.find('.'));
        if (label.empty() || label.size() > 63) {
            return false;
        }
        if (label.size() == host.size()) {
            return true;
        }
        host.remove_prefix(label.size() + 1);
    }
}

bool isPort(std::string_view port) {
    const std::int64_t number = parseDecimalInteger(port).value_or(0);
    return std::ranges::all_of(port, isDigit) && !port.starts_with('0') && number >= 1 &&
           number <= 65535;
}

/// Whether each "%" stands before two hex digits, and none of them means a dot, a slash, a
/// backslash or a control character: servers read those as parts of the path, or of the request.
bool hasPlainEscapes(std::string_view path) {
    for (std::size_t at = path.find('%'); at != std::string_view::npos;
         at = path.find('%', at + 1)) {
        const std::string code = loweredASCII(path.substr(at + 1, 2));
        if (code.size() < 2 || !std::ranges::all_of(code, isHexDigit) || code < "20" ||
            code == "2e" || code == "2f" || code == "5c" || code == "7f") {
            return false;
        }
    }
    return true;
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
        return Endpoint{"https://api.openai.com/v1/responses", "OpenAI", true};
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
        !consistsOf(path, "/-._~%:@!$&'()*+,;=") || !hasPlainEscapes(path) || hasDotSegment(path) ||
        (scheme == "http" && !isLoopback(host))) {
        return std::nullopt;
    }
    return Endpoint{scheme + "://" + authority + completedPath(path), authority};
}

}  // namespace tallowcrest
