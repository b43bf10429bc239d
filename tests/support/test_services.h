#pragma once

#include <chrono>
#include <functional>

#include "core/activity_log.h"
#include "core/confirmation_desk.h"
#include "core/jobs/jobs.h"
#include "core/locale.h"
#include "core/services.h"
#include "core/settings/settings_owner.h"
#include "tests/support/manual_clock.h"
#include "tests/support/manual_queues.h"
#include "tests/support/recording_store.h"

namespace tallowcrest {

/// The services that every component needs, with a manual clock and manual queues.
struct TestServices {
    /// `fill` writes into the store what an earlier run would have stored.
    explicit TestServices(const std::function<void(SettingsStore&)>& fill = {})
        : settings((fill ? fill(store.values) : void(), store), mainQueue, "owner") {}

    /// Runs all background work and what it posts to the main queue.
    void finishWork() {
        workQueue.runAll();
        mainQueue.drain();
    }

    ManualClock clock;
    ManualMainQueue mainQueue;
    ManualWorkQueue workQueue;
    /// Each value of progress is told.
    std::chrono::steady_clock::time_point steadyNow = {};
    Jobs jobs{mainQueue, workQueue, [this] { return steadyNow += Jobs::progressDistance; }};
    RecordingStore store;
    SettingsOwner settings;
    ActivityLog log{clock, settings, mainQueue};
    ConfirmationDesk confirmations{log, mainQueue};
    PlainLocale locale;
    Services services{log, settings, confirmations, jobs, clock, locale};
};

}  // namespace tallowcrest
