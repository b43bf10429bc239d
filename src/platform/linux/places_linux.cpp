#include "platform/host.h"
#include "platform/linux/user_directories.h"

namespace tallowcrest::host {

Places places() {
    const std::filesystem::path documents = documentsDirectory();
    return {.caches = "~/.cache",
            .reports = documents.empty() ? documents : documents / "Tallowcrest/outputs/reports"};
}

}  // namespace tallowcrest::host
