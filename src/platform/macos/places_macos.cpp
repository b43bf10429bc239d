#include "platform/host.h"

namespace tallowcrest::host {

Places places() {
    return {.caches = "~/Library/Caches"};
}

std::filesystem::path reportsDirectory() {
    return TALLOWCREST_REPORTS_DIRECTORY;
}

}  // namespace tallowcrest::host
