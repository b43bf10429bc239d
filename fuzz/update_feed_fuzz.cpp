#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "core/text.h"
#include "integration/release.h"
#include "integration/update_alerts.h"

#include "fuzz/require.h"

namespace {

bool isPlainFileName(std::string_view name) {
    return name.size() < 200 && std::ranges::all_of(name, [](char c) {
               return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                      std::string_view("._+~-").find(c) != std::string_view::npos;
           });
}

bool isWebAddress(std::string_view url) {
    return url.starts_with("https://") || url.starts_with("http://");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tallowcrest;
    const std::string text(data, data + size);

    // As the address of an image.
    if (const auto address = webAddress(text)) {
        require(!address->host.empty() &&
                text.starts_with(address->scheme + "://" + address->host));
        constexpr std::string_view ends = ":/?#";
        const std::string_view behind =
            std::string_view(text).substr(address->scheme.size() + 3 + address->host.size());
        require(behind.empty() || ends.find(behind.front()) != std::string_view::npos);
        require(text.find('@') == std::string::npos ||
                text.find('@') > text.find_first_of("/?#", address->scheme.size() + 3));
    }

    const auto release = decodeRelease(text);
    require(decodeRelease(text + "x").has_value() == false);
    require(decodeRelease(" " + text + "\n") == release);
    if (!release) {
        return 0;
    }
    require(isValidUTF8(release->version) && isValidUTF8(release->downloadURL));
    require(!release->releaseNotesURL || isWebAddress(*release->releaseNotesURL));
    require(isPlainFileName(imageName(*release, ".deb")));
    require(imageName(*release, ".deb").starts_with("Tallowcrest-Pro-"));
    if (isAcceptable(*release, "u.example")) {
        require(release->downloadURL.starts_with("https://u.example"));
        require(!isAcceptable(*release, "v.example"));
    }
    const UpdateAlert offer = updateOffer(*release, 0);
    require(offer.title.size() < 400 && isValidUTF8(offer.title));
    require(offer.title.find('\n') == std::string::npos);
    require(offer.buttons.size() == (release->releaseNotesURL ? 3U : 2U));

    Release other = *release;
    ++other.build;
    require(signedText(other) != signedText(*release));
    other = *release;
    other.version += '\n';
    require(signedText(other) != signedText(*release));
    return 0;
}
