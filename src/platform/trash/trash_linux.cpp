#include <cstdlib>
#include <filesystem>
#include <string>
#include <utility>

#include "platform/base/environment.h"
#include "platform/trash/system_trash.h"
#include "platform/trash/xdg_trash.h"

namespace tallowcrest::host {

std::shared_ptr<Trash> makeTrash(const Clock& clock, UTCOffset utcOffset) {
    std::string folder;
    const char* data = std::getenv("XDG_DATA_HOME");
    const std::string home = userAccount().homeDirectory;
    // By the XDG rules a relative path counts as not set.
    if (data != nullptr && *data == '/') {
        folder = std::filesystem::path(data) / "Trash";
    } else if (home.starts_with('/')) {
        folder = std::filesystem::path(home) / ".local/share/Trash";
    }
    return std::make_shared<XdgTrash>(std::move(folder), clock, std::move(utcOffset));
}

}  // namespace tallowcrest::host
