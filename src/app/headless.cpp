#include "app/headless.h"

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include <fmt/format.h>

#include "advisor/advisor_ports.h"
#include "app/composition.h"
#include "app/console.h"
#include "app/headless_advisor.h"
#include "app/headless_disk.h"
#include "app/headless_format.h"
#include "app/open_metrics.h"
#include "core/settings/settings.h"
#include "platform/base/replaced_file.h"
#include "platform/base/run_loop.h"
#include "platform/base/termination_signals.h"
#include "remote/remote.h"
#include "reports/reports.h"
#include "sampling/latest_sample.h"

namespace tallowcrest {
namespace {

/// The time between samples of which only the last one counts. The tailnet is read with them, and
/// from the second one on they tell the present loads.
constexpr std::chrono::milliseconds shortInterval{500};

std::chrono::milliseconds intervalOf(const Options& options) {
    return options.remote || options.ask || options.analyze
               ? shortInterval
               : options.interval.value_or(SystemMonitor::sampleInterval);
}

/// Does nothing for an empty text.
void complainOf(std::string_view text) {
    if (!text.empty()) {
        complain(printableText(text).text);
    }
}

void complainOfFile(const std::string& path, const std::string& problem) {
    complain(fmt::format("cannot write {}: {}", printableText(path).text, problem));
}

/// Prints each sample when it is applied, or the report, or the results of a scan of other
/// machines, or what the advisor says, or what is on the disk, and stops the loop after the last
/// sample that was requested.
class SamplePrinter {
public:
    SamplePrinter(const Options& options, RunLoop& loop) : options_(options), loop_(loop) {}

    void print(SystemMonitor& monitor) {
        if (isDone_) {
            return;
        }
        const LatestSample& sample = monitor.sample();
        // A complete table contains at least this program itself.
        if (printed_ == 0 && sample.latestProcesses().empty()) {
            complain("no process can be read here, so the figures do not tell how busy this is");
        }
        if (options_.report) {
            printReport(monitor);
            return;
        }
        if (options_.remote) {
            printRemote(monitor);
            return;
        }
        if (options_.ask || options_.analyze) {
            askAdvisor(monitor);
            return;
        }
        if (options_.storage || options_.largeFiles) {
            readDisk(monitor);
            return;
        }
        if (!write(textOf(monitor))) {
            finish(EXIT_FAILURE);
            return;
        }
        ++printed_;
        if (options_.samples && printed_ >= *options_.samples) {
            finish(fileProblem_.empty() ? EXIT_SUCCESS : EXIT_FAILURE);
        }
    }

private:
    std::string textOf(SystemMonitor& monitor) const {
        const LatestSample& sample = monitor.sample();
        return options_.openMetrics ? openMetrics(*sample.snapshot(), sample.recommendations(),
                                                  monitor.settings().warningThreshold)
               : options_.json      ? sampleJSON(*sample.snapshot(), sample.recommendations())
                                    : sampleBlock(*sample.snapshot(), sample.recommendations());
    }

    /// False when no further sample can be written either. A file that cannot be replaced now is
    /// tried again with the next sample.
    bool write(const std::string& text) {
        if (!options_.openMetrics || *options_.openMetrics == "-") {
            return writeToStandardOutput(text);
        }
        const std::string problem = replaceFile(*options_.openMetrics, text);
        if (problem != fileProblem_ && !problem.empty()) {
            complainOfFile(*options_.openMetrics, problem);
        }
        fileProblem_ = problem;
        return true;
    }

    /// The first sample has loads averaged over each process's lifetime.
    static constexpr std::int64_t samplesOfLoads = 2;

    /// Prints after the second sample.
    void printReport(SystemMonitor& monitor) {
        if (++printed_ < samplesOfLoads) {
            return;
        }
        const auto report = monitor.reports().diagnosticsReport(options_.redacted);
        finish(writeToStandardOutput(*report + "\n") ? EXIT_SUCCESS : EXIT_FAILURE);
    }

    /// Begins the scan once there is a machine to scan, and prints after its end.
    void printRemote(SystemMonitor& monitor) {
        // Longer than a reading of the tailnet takes.
        constexpr std::int64_t samplesToWait = std::chrono::milliseconds(9000) / shortInterval;
        RemoteScan& scan = monitor.remote().scan;
        if (++printed_ == 1) {
            monitor.remote().tailnet.beginReading();
        }
        if (!isScanning_) {
            if (!scan.hasMachinesToScan() && monitor.remote().tailnet.isReading() &&
                printed_ < samplesToWait) {
                return;
            }
            const Outcome outcome = scan.scanRemoteMacs();
            isScanning_ = outcome.isAccepted();
            if (!isScanning_) {
                complain(outcome.message);
                if (const std::size_t leftOut = scan.linuxMachinesLeftOut(); leftOut > 0) {
                    complain(
                        fmt::format("Linux machines are not scanned, of which {} {} online: "
                                    "\"Include Linux machines\" is off.",
                                    leftOut, leftOut == 1 ? "is" : "are"));
                }
                for (const auto& issue : monitor.remote().tailnet.state().tailscaleHealthIssues) {
                    complainOf(issue);
                }
                const bool isAnswered = monitor.remote().tailnet.state().isAnswered;
                if (!isAnswered) {
                    complain("the tailnet's client could not be asked for its machines");
                }
                finish(isAnswered ? EXIT_SUCCESS : EXIT_FAILURE);
            }
            return;
        }
        if (scan.state().remoteScanInProgress) {
            return;
        }
        std::string text;
        for (const RemoteHealth& machine : scan.state().remoteHealth) {
            text += options_.json ? remoteJSON(machine) : remoteBlock(machine);
        }
        finish(writeToStandardOutput(text) ? EXIT_SUCCESS : EXIT_FAILURE);
    }

    /// Asks after the second sample, and prints the answer with the figures that it is from.
    void askAdvisor(SystemMonitor& monitor) {
        if (++printed_ != samplesOfLoads) {
            return;
        }
        figures_ = monitor.sample().snapshot();
        advisor_.emplace(
            monitor, [this, &settings = monitor.settings()](const AdvisorAnswer& said) {
                complainOf(said.note);
                const Answer answer{options_.ask,
                                    said.text,
                                    *figures_,
                                    settings.warningThreshold,
                                    settings.diskMinimumFreeGB,
                                    said.isOfProvider};
                const std::string text = options_.json ? answerJSON(answer) : answerBlock(answer);
                finish(writeToStandardOutput(text) ? EXIT_SUCCESS : EXIT_FAILURE);
            });
        const Outcome outcome = advisor_->begin(options_.ask, options_.yes);
        complainOf(outcome.message);
        if (!outcome.isAccepted()) {
            finish(EXIT_FAILURE);
        }
    }

    /// Begins after the first sample, which tells how much of the disk is in use.
    void readDisk(SystemMonitor& monitor) {
        if (++printed_ != 1) {
            return;
        }
        const auto task =
            options_.storage ? HeadlessDisk::Task::storage : HeadlessDisk::Task::largeFiles;
        disk_.emplace(monitor, task, options_.json,
                      [this](const std::string& text, const std::string& status) {
                          if (text.empty()) {
                              complainOf(status);
                          }
                          finish(writeToStandardOutput(text) ? EXIT_SUCCESS : EXIT_FAILURE);
                      });
        if (const Outcome outcome = disk_->begin(); !outcome.isAccepted()) {
            complainOf(outcome.message);
            finish(EXIT_FAILURE);
        }
    }

    void finish(int status) {
        isDone_ = true;
        loop_.stop(status);
    }

    const Options& options_;
    RunLoop& loop_;
    std::int64_t printed_ = 0;
    bool isScanning_ = false;
    std::string fileProblem_;  ///< of the last sample; empty when it was written
    bool isDone_ = false;
    std::optional<SystemSnapshot> figures_;  ///< what the advisor was asked about
    std::optional<HeadlessAdvisor> advisor_;
    std::optional<HeadlessDisk> disk_;
};

int sampleUntilDone(const Options& options, AdvisorPorts provider, RunLoop& loop) {
    DesktopServices services;
    if (options.ask || options.analyze) {
        services.makeAdvisorPorts = [provider = std::move(provider)](std::stop_token) {
            return provider;
        };
    }
    SamplePrinter printer(options, loop);
    Composition composition(loop, SettingsAccess::readOnly, std::move(services), [&] {
        if (options.openMetrics) {
            composition.followWarningThreshold();
        }
        printer.print(composition.monitor());
    });
    composition.monitor().startMonitoring(intervalOf(options));
    const int status = loop.run();
    if (!composition.shutDown()) {
        std::_Exit(status);
    }
    return status;
}

}  // namespace

int runHeadless(const Options& options, AdvisorPorts provider) {
    if (options.openMetrics && *options.openMetrics != "-") {
        const std::string problem = whyNotReplaceable(*options.openMetrics);
        if (!problem.empty()) {
            complainOfFile(*options.openMetrics, problem);
            return usageStatus;
        }
    }
    RunLoop loop;
    TerminationSignals termination([&loop] { loop.stop(EXIT_FAILURE); });
    const int status = sampleUntilDone(options, std::move(provider), loop);
    termination.endBySignal();
    return status;
}

}  // namespace tallowcrest
