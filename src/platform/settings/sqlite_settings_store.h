#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "core/clock.h"
#include "core/jobs/jobs.h"
#include "core/settings/settings_store.h"
#include "platform/settings/settings_database.h"

namespace tallowcrest {

/// The settings in a file. When `write` returns, the system has the value: a process that is killed
/// at any moment leaves every value whole and loses none. A power failure may cost the latest
/// seconds. Main thread.
///
/// A write appends to a log and does not wait for the disk. Moving the log into the file does wait;
/// that happens in the background and in the destructor. Other processes may write to the same
/// file; within one process it must be opened only once.
class SqliteSettingsStore final : public SettingsStore {
public:
    /// Takes one sentence for the owner with the first failed write of an outage, and an empty one
    /// when the outage ends. Must not call `write`, which calls it. Main thread.
    using ReportOutage = std::function<void(const std::string& problem)>;

    struct Dependencies {
        Jobs& jobs;                 ///< outlives the store
        const Clock& clock;         ///< names files that are put aside
        ReportOutage reportOutage;  ///< may be absent
        /// Of 4 kB: at this size the log is moved. The default is some 10 minutes of samples.
        int logPages = 1024;
    };

    /// `file` is open in `database` for writing. The rows of its unreadable keys stay as they are;
    /// these keys are kept in memory only.
    SqliteSettingsStore(SettingsDatabase database, std::filesystem::path file,
                        const Dependencies& dependencies);
    ~SqliteSettingsStore() override;

    std::optional<SettingsValue> read(std::string_view key) const override;

    /// A failed write (full disk, lock) leaves the older value in the file. The new one is kept in
    /// memory and tried again after the next successful write and in the destructor. An outage ends
    /// when everything is stored. Only its first write waits for a lock.
    void write(std::string_view key, const std::optional<SettingsValue>& value) override;

private:
    int tryToWrite(std::string_view key, const std::optional<SettingsValue>& value);
    void retryUnsaved();
    void moveLogInBackground();

    mutable SettingsDatabase database_;
    std::filesystem::path file_;
    Dependencies dependencies_;
    int logPages_ = 0;
    bool isLogMoving_ = false;
    std::map<std::string, std::optional<SettingsValue>, std::less<>> unsaved_;
    std::map<std::string, std::optional<SettingsValue>, std::less<>> inMemory_;
    bool isOutage_ = false;
    bool isFull_ = false;  ///< during an outage: the disk was full
    bool isLocked_ = false;
    JobScope jobs_;
};

}  // namespace tallowcrest
