#include <cstddef>
#include <cstdint>
#include <string_view>

#include "platform/trash/trash_info.h"

#include "fuzz/require.h"

/// A path is found in no more than a description that can be given for it, and any path in that.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    if (const auto path = tallowcrest::pathInTrashInfo(text)) {
        const auto again = tallowcrest::trashInfoText(*path, {}, 0);
        require(again.size() == size && text.starts_with(again.substr(0, again.rfind('='))));
    }
    require(tallowcrest::pathInTrashInfo(tallowcrest::trashInfoText(text, {}, 0)) == text);
    return 0;
}
