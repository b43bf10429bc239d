#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "core/jobs/jobs.h"
#include "core/local_records.h"

namespace tallowcrest {

class Observable;

/// What the process table does not say about a process.
struct ProcessFacts {
    /// The program's own name first. Empty for a kernel thread, and when they cannot be read.
    std::vector<std::string> arguments;
    /// The login name of the process's user, or the user's number when that has no name. Empty for
    /// the user that this program runs as.
    std::string owner;
    /// The kernel's short name of the process.
    std::string shortName;
};

/// Reads the facts of single processes.
class ProcessDetailsReader {
public:
    virtual ~ProcessDetailsReader() = default;

    /// Absent when the process with this pid and start time (0: any) has ended, or cannot be read.
    /// Blocks, and may hang as long as another process is stuck; any thread but the main one,
    /// several at once.
    virtual std::optional<ProcessFacts> readFacts(std::int64_t pid, std::uint64_t startTime) = 0;
};

/// What tells a process from others with its name. Without values that look like secrets.
struct ProcessDetail {
    std::string owner;      ///< as in `ProcessFacts`
    std::string shortName;  ///< as in `ProcessFacts`
    std::string argument;   ///< `tellingArgument`
    std::string commandLine;

    bool operator==(const ProcessDetail&) const = default;
};

/// The detail of a row's process; null when it is not known. Valid until the next call.
using DetailOf = std::function<const ProcessDetail*(const ProcessSample&)>;

/// The details of the processes that somebody looks at, read in the background and kept. Nothing is
/// read for a row that nobody asks for. Main thread.
class ProcessDetails {
public:
    /// Rows that one job reads at least, and jobs at the same time. A process that hangs its reader
    /// costs only the details of the rows that are read with it.
    static constexpr std::size_t rowsPerJob = 16;
    static constexpr int mostJobs = 4;
    /// With this many more processes than are asked for, those known are forgotten.
    static constexpr std::size_t mostKept = 4096;

    /// `reader` is null where nothing more is known of a process. `jobs` must outlive the object.
    ProcessDetails(Jobs& jobs, std::shared_ptr<ProcessDetailsReader> reader);
    ~ProcessDetails();
    ProcessDetails(const ProcessDetails&) = delete;
    ProcessDetails& operator=(const ProcessDetails&) = delete;

    /// Null when the detail is not known: not asked for, not yet read, or not readable. Valid until
    /// the next call of `want` and the next turn of the main queue.
    const ProcessDetail* find(const ProcessSample& row) const;

    /// Reads those of the rows that are not known. Of an earlier call, what has not begun is
    /// dropped.
    void want(const std::vector<const ProcessSample*>& rows);

    /// Increases whenever a detail becomes known.
    std::uint64_t revision() const { return revision_; }
    /// Notifies of a new revision.
    Observable& observable() { return *observable_; }

private:
    /// A process that executes another program becomes another one here.
    struct Identity {
        std::int64_t pid = 0;
        std::uint64_t startTime = 0;
        std::string command;

        bool isOf(const ProcessSample& row) const {
            return pid == row.pid && startTime == row.startTime && command == row.command;
        }
        bool operator==(const Identity&) const = default;
    };
    struct Known {
        Identity identity;
        std::optional<ProcessDetail> detail;  ///< absent while it is read
    };

    static std::vector<Known> read(ProcessDetailsReader& reader, std::vector<Known> rows,
                                   const Stop& stop);
    void beginJobs();
    void keep(std::vector<Known> rows);

    std::shared_ptr<ProcessDetailsReader> reader_;
    std::unique_ptr<Observable> observable_;
    std::unordered_map<std::int64_t, Known> known_;  ///< by pid
    std::vector<Identity> waiting_;                  ///< the first one last
    int jobsUnderWay_ = 0;
    std::uint64_t revision_ = 0;
    JobScope jobs_;
};

}  // namespace tallowcrest
