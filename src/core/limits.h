#pragma once

#include <string_view>

#include "core/observable.h"
#include "core/settings.h"
#include "core/settings_store.h"

namespace tallowcrest {

/// The figures that the owner sets: when to warn, and how far a clean-up may go. Each change is
/// stored at once; what has its value already, and is stored so, is left alone. Main thread.
class Limits {
public:
    /// Changes `settings` in place.
    Limits(Settings& settings, SettingsStore& store, Observable& observable);

    /// Percent. Kept as given; the control that sets it knows its range, and the next start ignores
    /// what lies outside 65 to 95.
    void setWarningThreshold(double percent);
    /// Kept as given.
    void setDiskMinimumFreeGB(double gigabytes);
    /// Clamped by `clampedAgeDays`.
    void setDiskCleanupAgeDays(double days);
    /// Clamped by `clampedMaxGB`.
    void setDiskMaxCleanupGB(double gigabytes);

private:
    void set(double& field, std::string_view key, double value);

    Settings& settings_;
    SettingsStore& store_;
    Observable& observable_;
};

}  // namespace tallowcrest
