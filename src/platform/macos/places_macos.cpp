#include "platform/host.h"

namespace tallowcrest::host {

Places places() {
    return {.caches = "~/Library/Caches", .reports = TALLOWCREST_REPORTS_DIRECTORY};
}

}  // namespace tallowcrest::host
