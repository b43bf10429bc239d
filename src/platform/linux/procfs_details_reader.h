#pragma once

#include <sys/types.h>
#include <unistd.h>

#include <map>
#include <mutex>
#include <string>

#include "sampling/process_details.h"

namespace tallowcrest {

/// Reads the details of processes from /proc. A user's name comes from the file of accounts: asking
/// a directory service could take long, and its libraries read the environment.
class ProcfsDetailsReader final : public ProcessDetailsReader {
public:
    explicit ProcfsDetailsReader(std::string procRoot = "/proc",
                                 std::string accounts = "/etc/passwd", uid_t self = ::geteuid());

    std::optional<ProcessFacts> readFacts(std::int64_t pid, std::uint64_t startTime) override;

private:
    std::string ownerName(uid_t user);

    const std::string procRoot_;
    const std::string accounts_;
    const uid_t self_;
    std::mutex lock_;
    std::map<uid_t, std::string> names_;
};

}  // namespace tallowcrest
