#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "sampling/system_cpu_load_reader.h"
#include "sampling/system_metrics_reader.h"

namespace tallowcrest {

/// Returns the values that a test set, and appends the name of each call to `calls`.
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

/// Tick counters that change only when a test changes them.
class FakeTickSource final : public CPUTickSource {
public:
    std::optional<CPUTickReading> readTicks() override {
        if (calls != nullptr) {
            calls->emplace_back("readTicks");
        }
        now += interval;
        if (!ticks) {
            return std::nullopt;
        }
        return CPUTickReading{*ticks, now};
    }

    /// Lets 100 ticks pass, `busy` of them busy.
    void pass(std::uint64_t busy) {
        ticks->user += busy;
        ticks->idle += 100 - busy;
    }

    std::optional<CPUTicks> ticks = CPUTicks{};
    std::chrono::nanoseconds now{};
    std::chrono::nanoseconds interval = std::chrono::seconds(4);  ///< between two readings
    std::vector<std::string>* calls = nullptr;
};

}  // namespace tallowcrest
