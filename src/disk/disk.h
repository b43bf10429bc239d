#pragma once

#include <functional>

#include "disk/disk_autopilot.h"
#include "disk/disk_ports.h"
#include "disk/personal_files.h"
#include "disk/storage_scan.h"

namespace tallowcrest {

class LatestSample;
class ToolRunner;
struct Actions;
struct Advisor;
struct Services;

/// The components of the disk's care. Main thread.
struct Disk {
    /// The references must outlive the object. `refresh` takes a new sample.
    struct Dependencies {
        const Services& services;
        const LatestSample& sample;
        Actions& actions;
        ToolRunner& tools;
        Advisor& advisor;
        std::function<void()> refresh;
        DiskPorts ports;
    };

    explicit Disk(const Dependencies& dependencies);

    DiskAutopilot autopilot;
    StorageScan storage;
    PersonalFiles files;
};

}  // namespace tallowcrest
