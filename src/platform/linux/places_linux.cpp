#include "platform/host.h"

namespace tallowcrest::host {

Places places() {
    return {.caches = "~/.cache"};
}

}  // namespace tallowcrest::host
