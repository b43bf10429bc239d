#include "core/limits.h"

#include "core/settings_keys.h"

namespace tallowcrest {

Limits::Limits(Settings& settings, SettingsStore& store, Observable& observable)
    : settings_(settings), store_(store), observable_(observable) {}

void Limits::setWarningThreshold(double percent) {
    set(settings_.warningThreshold, settings_keys::thresholdKey, percent);
}

void Limits::setDiskMinimumFreeGB(double gigabytes) {
    set(settings_.diskMinimumFreeGB, settings_keys::diskMinimumFreeKey, gigabytes);
}

void Limits::setDiskCleanupAgeDays(double days) {
    set(settings_.diskCleanupAgeDays, settings_keys::diskCleanupAgeKey, clampedAgeDays(days));
}

void Limits::setDiskMaxCleanupGB(double gigabytes) {
    set(settings_.diskMaxCleanupGB, settings_keys::diskMaxCleanupKey, clampedMaxGB(gigabytes));
}

void Limits::set(double& field, std::string_view key, double value) {
    if (field == value && store_.read(key) == SettingsValue(value)) {
        return;
    }
    field = value;
    store_.write(key, value);
    observable_.changed();
}

}  // namespace tallowcrest
