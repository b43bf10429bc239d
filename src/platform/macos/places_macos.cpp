#include "platform/host.h"

namespace tallowcrest::host {

Places places() {
    return {.caches = "~/Library/Caches"};
}

}  // namespace tallowcrest::host
