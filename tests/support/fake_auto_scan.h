#pragma once

#include <functional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "core/remote_records.h"
#include "monitor/auto_rules.h"
#include "remote/auto_scan.h"

namespace tallowcrest {

inline TailDevice tailDevice(std::string os, bool online) {
    TailDevice device;
    device.os = std::move(os);
    device.online = online;
    return device;
}

/// Returns the devices that a test set; counts the scans and runs none.
class FakeAutoScan final : public AutoScan {
public:
    std::span<const TailDevice> tailDevices() const override { return devices; }
    bool remoteScanInProgress() const override { return isScanning; }
    void scanRemoteMacs() override {
        ++scans;
        if (onScan) {
            onScan();
        }
    }

    std::vector<TailDevice> devices;
    bool isScanning = false;
    int scans = 0;
    std::function<void()> onScan;  ///< called at each scan; may be absent
};

}  // namespace tallowcrest
