#include "platform/linux/procfs_details_reader.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <memory>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "core/text.h"
#include "platform/base/unique_fd.h"
#include "platform/linux/kernel_file.h"
#include "sampling/command_line.h"
#include "sampling/proc_parser.h"

namespace tallowcrest {
namespace {

/// The longest part of a command line that is read; few programs have a longer one.
constexpr std::size_t longestCommandLine = 16'384;

std::string_view readIn(const UniqueFD& directory, const char* name, std::span<char> buffer) {
    const UniqueFD file(::openat(directory.get(), name, O_RDONLY | O_CLOEXEC));
    return file.valid() ? readFromStart(file.get(), buffer) : std::string_view();
}

/// The login name of a user; the number when the file has none.
std::string accountName(const std::string& accounts, uid_t user) {
    struct Close {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    const std::unique_ptr<std::FILE, Close> file(std::fopen(accounts.c_str(), "re"));
    constexpr std::size_t largestBuffer = 1 << 20;
    std::vector<char> buffer(4096);
    passwd entry{};
    passwd* found = nullptr;
    int result = 0;
    while (file != nullptr && ((result = ::fgetpwent_r(file.get(), &entry, buffer.data(),
                                                       buffer.size(), &found)) == 0 ||
                               (result == ERANGE && buffer.size() < largestBuffer))) {
        if (result == ERANGE) {
            // The next call reads the same line again.
            buffer.resize(buffer.size() * 2);
        } else if (found->pw_uid == user) {
            return replacingInvalidUTF8(found->pw_name);
        }
    }
    return std::to_string(user);
}

}  // namespace

ProcfsDetailsReader::ProcfsDetailsReader(std::string procRoot, std::string accounts, uid_t self)
    : procRoot_(std::move(procRoot)), accounts_(std::move(accounts)), self_(self) {}

std::optional<ProcessFacts> ProcfsDetailsReader::readFacts(std::int64_t pid,
                                                           std::uint64_t startTime) {
    // All is read through the directory of one process: if it ends, nothing of the next process
    // with its pid is found there.
    const UniqueFD directory(
        ::open((procRoot_ + '/' + std::to_string(pid)).c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    struct stat status {};
    if (!directory.valid() || ::fstat(directory.get(), &status) != 0) {
        return std::nullopt;
    }
    std::array<char, 1024> statBuffer;
    const auto parsed = parseProcessStat(readIn(directory, "stat", statBuffer));
    if (!parsed || (startTime != 0 && parsed->startTicks != startTime)) {
        return std::nullopt;
    }
    std::array<char, longestCommandLine> buffer;
    const std::string_view commandLine = readIn(directory, "cmdline", buffer);
    std::vector<std::string> arguments = parseCommandLine(commandLine);
    if (commandLine.size() == buffer.size() && !arguments.empty()) {
        arguments.back() += "…";
    }
    return ProcessFacts{.arguments = std::move(arguments),
                        .owner = status.st_uid == self_ ? std::string() : ownerName(status.st_uid),
                        .shortName = replacingInvalidUTF8(parsed->name)};
}

std::string ProcfsDetailsReader::ownerName(uid_t user) {
    {
        const std::lock_guard guard(lock_);
        if (const auto known = names_.find(user); known != names_.end()) {
            return known->second;
        }
    }
    std::string name = accountName(accounts_, user);
    const std::lock_guard guard(lock_);
    return names_.emplace(user, std::move(name)).first->second;
}

}  // namespace tallowcrest
