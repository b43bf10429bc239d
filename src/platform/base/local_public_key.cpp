#include "platform/base/local_public_key.h"

#include <string_view>

#include "core/text.h"
#include "platform/base/regular_file.h"

namespace tallowcrest {

std::optional<std::string> localPublicKey(const std::filesystem::path& homeDirectory) {
    if (homeDirectory.empty()) {
        return std::nullopt;
    }
    for (const char* name : {"id_ed25519.pub", "id_rsa.pub"}) {
        const std::string text = readRegularFile(homeDirectory / ".ssh" / name);
        const std::string_view key = trimmingWhiteSpace(text);
        if (!key.empty() && isValidUTF8(key)) {
            return std::string(key);
        }
    }
    return std::nullopt;
}

}  // namespace tallowcrest
