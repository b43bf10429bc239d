#include "integration/release.h"

#include <algorithm>
#include <cstddef>

#include "core/base64.h"
#include "core/json_reader.h"
#include "core/number_text.h"
#include "core/text.h"
#include "integration/update_ports.h"

namespace tallowcrest {
namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isHexDigit(char c) {
    return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

bool isPlainInAddress(char c) {
    return isDigit(c) || isLetter(c) ||
           std::string_view("-._~:/?#[]@!$&'()*+,;=%").find(c) != std::string_view::npos;
}

/// The next value, if it is a text or null: then absent. `isValid` becomes false for another value.
std::optional<std::string> optionalText(JsonReader& reader, bool& isValid) {
    if (reader.null()) {
        return std::nullopt;
    }
    auto text = reader.text();
    isValid = isValid && text.has_value();
    return text;
}

}  // namespace

std::optional<WebAddress> webAddress(std::string_view text) {
    const std::size_t schemeEnd = text.find("://");
    if (schemeEnd == std::string_view::npos || schemeEnd == 0 || !isLetter(text.front()) ||
        !std::ranges::all_of(text, isPlainInAddress)) {
        return std::nullopt;
    }
    const std::string_view scheme = text.substr(0, schemeEnd);
    if (!std::ranges::all_of(scheme, [](char c) { return isLetter(c) || isDigit(c); })) {
        return std::nullopt;
    }
    std::string_view authority = text.substr(schemeEnd + 3);
    authority = authority.substr(0, authority.find_first_of("/?#"));
    const std::size_t colon = authority.find(':');
    const std::string_view host = authority.substr(0, colon);
    const std::string_view port =
        colon == std::string_view::npos ? std::string_view() : authority.substr(colon + 1);
    const bool isHost = !host.empty() && std::ranges::all_of(host, [](char c) {
        return isLetter(c) || isDigit(c) || c == '-' || c == '.' || c == '_';
    });
    if (!isHost || !std::ranges::all_of(port, isDigit) ||
        (colon != std::string_view::npos && port.empty())) {
        return std::nullopt;
    }
    return WebAddress{std::string(scheme), std::string(host)};
}

std::optional<Release> decodeRelease(std::string_view json) {
    JsonReader reader(json);
    if (!reader.enterObject()) {
        return std::nullopt;
    }
    std::optional<std::string> version;
    std::optional<std::int64_t> build;
    std::optional<std::string> download;
    std::optional<std::string> digest;
    Release release;
    bool isValid = true;
    while (const auto key = reader.nextMember()) {
        if (*key == "version") {
            version = reader.text();
        } else if (*key == "build") {
            build = reader.integer();
        } else if (*key == "downloadURL") {
            download = reader.text();
        } else if (*key == "sha256") {
            digest = reader.text();
        } else if (*key == "releaseNotesURL") {
            release.releaseNotesURL = optionalText(reader, isValid);
        } else if (*key == "signature") {
            release.signature = optionalText(reader, isValid);
        } else {
            reader.skip();
        }
    }
    if (!reader.isComplete() || !isValid || !version || !build || !download || !digest) {
        return std::nullopt;
    }
    release.version = std::move(*version);
    release.build = *build;
    release.downloadURL = std::move(*download);
    release.sha256 = std::move(*digest);
    const auto notes = webAddress(release.releaseNotesURL.value_or(""));
    if (!notes || (notes->scheme != "https" && notes->scheme != "http")) {
        release.releaseNotesURL.reset();
    }
    return release;
}

bool isAcceptable(const Release& release, std::string_view updateHost) {
    const auto address = webAddress(release.downloadURL);
    constexpr std::size_t digits = 64;
    return address && address->scheme == "https" && !updateHost.empty() &&
           address->host == updateHost && release.sha256.size() == digits &&
           std::ranges::all_of(release.sha256, isHexDigit);
}

std::string signedText(const Release& release) {
    std::string text = "tallowcrest-update-1";
    for (const std::string& part : {release.version, std::to_string(release.build),
                                    release.downloadURL, loweredASCII(release.sha256)}) {
        text += '\n' + std::to_string(part.size()) + ':' + part;
    }
    return text;
}

bool isSignedAsAsked(const Release& release, const std::string& publicKey,
                     UpdateTransport& transport) {
    if (publicKey.empty()) {
        return true;
    }
    constexpr std::size_t keyBytes = 32;
    constexpr std::size_t signatureBytes = 64;
    const auto key = decodedBase64(publicKey);
    const auto signature = decodedBase64(release.signature.value_or(""));
    return key && key->size() == keyBytes && signature && signature->size() == signatureBytes &&
           transport.isSigned(*key, *signature, signedText(release));
}

std::string imageName(const Release& release, std::string_view ending) {
    constexpr std::size_t longestVersion = 64;
    std::string version = release.version.substr(0, longestVersion);
    for (char& c : version) {
        if (!isDigit(c) && !isLetter(c) && std::string_view("._+~-").find(c) == std::string::npos) {
            c = '-';
        }
    }
    return "Tallowcrest-Pro-" + version + "-build" + std::to_string(release.build) +
           std::string(ending);
}

std::int64_t buildNumber(std::string_view text) {
    return parseDecimalInteger(text).value_or(0);
}

}  // namespace tallowcrest
