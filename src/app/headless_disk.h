#pragma once

#include <functional>
#include <string>

#include "core/observable.h"
#include "core/outcome.h"

namespace tallowcrest {

class SystemMonitor;

/// Measures the areas of the disk, or looks for large personal files, once, and passes on what was
/// found as text. Only reads. Main thread.
class HeadlessDisk {
public:
    enum class Task { storage, largeFiles };

    /// What was found, and why nothing was when it is empty.
    using Found = std::function<void(const std::string& text, const std::string& status)>;

    /// `found` is called once, on a later turn of the main queue. With `asJSON` the text has one
    /// object per line. The monitor must outlive the object.
    HeadlessDisk(SystemMonitor& monitor, Task task, bool asJSON, Found found);

    /// Called once, after the first sample. Refused with a message when it cannot be done here.
    Outcome begin();

private:
    void finish();

    SystemMonitor& monitor_;
    const Task task_;
    const bool asJSON_;
    const Found found_;
    bool isDone_ = false;
    ObserverGroup changes_;
};

}  // namespace tallowcrest
