#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "sampling/system_cpu_load_reader.h"
#include "sampling/system_metrics_reader.h"

namespace tallowcrest {

/// Answers every reading with what a test set, and writes the name of the call to `calls`.
class FakeMetricsReader final : public SystemMetricsReader {
public:
    std::vector<ProcessSample> readProcesses() override {
        note("readProcesses");
        return processes;
    }
    MemorySnapshot readMemory() override {
        note("readMemory");
        return memory;
    }
    std::string readPressureText() override {
        note("readPressureText");
        return pressureText;
    }
    DiskSnapshot readDiskSnapshot() override {
        note("readDiskSnapshot");
        return disk;
    }

    std::vector<ProcessSample> processes;
    MemorySnapshot memory;
    DiskSnapshot disk;
    std::string pressureText;
    std::vector<std::string>* calls = nullptr;

private:
    void note(const char* call) {
        if (calls != nullptr) {
            calls->emplace_back(call);
        }
    }
};

/// Tick counters that stand until a test moves them.
class FakeTickSource final : public CPUTickSource {
public:
    std::optional<CPUTicks> readTicks() override {
        if (calls != nullptr) {
            calls->emplace_back("readTicks");
        }
        return ticks;
    }

    /// Lets 100 ticks pass, of which `busy` were.
    void pass(std::uint64_t busy) {
        ticks->user += busy;
        ticks->idle += 100 - busy;
    }

    std::optional<CPUTicks> ticks = CPUTicks{};
    std::vector<std::string>* calls = nullptr;
};

}  // namespace tallowcrest
