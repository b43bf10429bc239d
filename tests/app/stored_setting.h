#pragma once

#include <string_view>

#include "platform/settings/open_settings_store.h"
#include "tests/app/private_data.h"
#include "tests/support/manual_clock.h"
#include "tests/support/manual_queues.h"

namespace tallowcrest {

/// Sets one of the owner's settings, as if the program had done so when it ran before.
inline void storeSetting(const PrivateData& data, std::string_view key,
                         const SettingsValue& value) {
    ManualMainQueue mainQueue;
    ManualWorkQueue workQueue;
    Jobs jobs(mainQueue, workQueue);
    const ManualClock clock;
    openSettingsStore(data.folder() / "tallowcrest" / "settings.sqlite",
                      {.jobs = jobs, .clock = clock, .reportOutage = {}})
        .store->write(key, value);
}

}  // namespace tallowcrest
