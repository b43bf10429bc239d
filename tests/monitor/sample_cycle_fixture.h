#pragma once

#include <memory>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "core/locale.h"
#include "monitor/sample_cycle.h"
#include "tests/support/fake_readers.h"

namespace tallowcrest {

inline ProcessSample row(std::int64_t pid, double cpu,
                         const std::string& command = "/usr/bin/app") {
    return {pid, cpu, 0.5, 100.0, command, command};
}

/// `count` rows, each of a different group, the heaviest first.
inline std::vector<ProcessSample> rows(int count) {
    std::vector<ProcessSample> result;
    for (int i = 0; i < count; ++i) {
        result.push_back(row(100 + i, 5.0 * (count - i), fmt::format("/usr/bin/tool {:03}", i)));
    }
    return result;
}

/// The sources of a sample. The readers append the name of each call to `calls`.
struct SampleMachine {
    SampleMachine() {
        metrics->calls = &calls;
        ticks->calls = &calls;
    }

    std::vector<std::string> calls;
    std::shared_ptr<FakeMetricsReader> metrics = std::make_shared<FakeMetricsReader>();
    std::shared_ptr<FakeTickSource> ticks = std::make_shared<FakeTickSource>();
    std::shared_ptr<SampleSources> sources =
        std::make_shared<SampleSources>(metrics, ticks, std::make_shared<PlainLocale>());
};

}  // namespace tallowcrest
