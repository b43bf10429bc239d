#pragma once

#include <span>

#include "core/remote_records.h"

namespace tallowcrest {

/// The scans of other machines, as far as a rule starts them. A port that nothing implements yet:
/// it is for the coming scan of other machines. Main thread.
class AutoScan {
public:
    virtual ~AutoScan() = default;

    /// The devices last seen, or none. Valid until the next turn of the main thread.
    virtual std::span<const TailDevice> tailDevices() const = 0;
    virtual bool remoteScanInProgress() const = 0;
    /// Begins a scan of every device and returns at once.
    virtual void scanRemoteMacs() = 0;
};

}  // namespace tallowcrest
