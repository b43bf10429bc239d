#include <filesystem>
#include <utility>

#include "platform/base/environment.h"
#include "platform/trash/system_trash.h"
#include "platform/trash/xdg_trash.h"

namespace tallowcrest::host {

std::shared_ptr<Trash> makeTrash(const Clock& clock, UTCOffset utcOffset) {
    std::filesystem::path folder = baseFolder("XDG_DATA_HOME", ".local/share");
    if (!folder.empty()) {
        folder /= "Trash";
    }
    return std::make_shared<XdgTrash>(folder.string(), clock, std::move(utcOffset));
}

}  // namespace tallowcrest::host
