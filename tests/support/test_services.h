#pragma once

#include <functional>

#include "core/activity_log.h"
#include "core/jobs/jobs.h"
#include "core/locale.h"
#include "core/services.h"
#include "core/settings/settings_owner.h"
#include "tests/support/manual_clock.h"
#include "tests/support/manual_queues.h"
#include "tests/support/recording_store.h"

namespace tallowcrest {

/// What every component is built on, with nothing that moves by itself.
struct TestServices {
    /// `fill` puts into the store what an earlier run left there.
    explicit TestServices(const std::function<void(SettingsStore&)>& fill = {})
        : settings((fill ? fill(store.values) : void(), store), mainQueue, "owner") {}

    /// Runs what was left to the background, and what comes back from there.
    void finishWork() {
        while (workQueue.pendingCount() > 0) {
            workQueue.run();
        }
        mainQueue.drain();
    }

    ManualClock clock;
    ManualMainQueue mainQueue;
    ManualWorkQueue workQueue;
    Jobs jobs{mainQueue, workQueue};
    RecordingStore store;
    SettingsOwner settings;
    ActivityLog log{clock, settings, mainQueue};
    PlainLocale locale;
    Services services{log, settings, jobs, clock, locale};
};

}  // namespace tallowcrest
