#include "app/update_build.h"

#include "platform/host.h"

namespace tallowcrest {

UpdateBuild updateBuild() {
    return {.feed = host::updateFeed(TALLOWCREST_UPDATE_FEED_URL),
            .host = TALLOWCREST_UPDATE_HOST,
            .version = TALLOWCREST_VERSION,
            .build = TALLOWCREST_BUILD_NUMBER,
            .imageEnding = host::packageEnding(),
            .publicKey = TALLOWCREST_UPDATE_PUBLIC_KEY};
}

}  // namespace tallowcrest
