#include "sampling/metric_runner.h"

#include <chrono>

namespace tallowcrest {

namespace {

constexpr std::chrono::milliseconds metricTimeout{2000};

}  // namespace

std::string MetricRunner::runMetricTool(const std::string& path,
                                        const std::vector<std::string>& arguments) {
    // No message: this runs for every sample.
    if (!CommandSafetyPolicy::isAllowedExecutable(allowed_, path)) {
        return {};
    }
    return launchForText(launcher_, {path, arguments, metricTimeout, false});
}

}  // namespace tallowcrest
