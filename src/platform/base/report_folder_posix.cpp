#include "platform/base/report_folder_posix.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <string_view>
#include <system_error>
#include <utility>

#include "core/uuid.h"
#include "platform/base/publish_new_file.h"
#include "platform/base/unique_fd.h"
#include "platform/base/write_all.h"

namespace tallowcrest {
namespace {

constexpr mode_t ownerOnly = 0600;
constexpr mode_t everyoneMayRun = 0755;

Outcome failure(int error) {
    return Outcome::failed(std::generic_category().message(error));
}

/// As `publishNewFile`, in place of an older file. A link is replaced itself.
int publishReplacing(int folder, const std::string& temporary, const std::string& name) {
    return ::renameat(folder, temporary.c_str(), folder, name.c_str()) == 0 ? 0 : errno;
}

/// Writes a file of its own with the permissions `mode` and lets `publish` give it its name.
Outcome writeFile(const std::filesystem::path& path, const std::string& text, mode_t mode,
                  int (*publish)(int folder, const std::string& temporary,
                                 const std::string& name)) {
    if (!path.is_absolute()) {
        return failure(ENOENT);
    }
    std::error_code createError;
    std::filesystem::create_directories(path.parent_path(), createError);
    const UniqueFD folder(::open(path.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder.valid()) {
        // The reason why the folder could not be created says more than that it does not exist.
        return createError ? Outcome::failed(createError.message()) : failure(errno);
    }
    const std::string temporary = "." + UUID::random().text() + ".part";
    const UniqueFD file(::openat(folder.get(), temporary.c_str(),
                                 O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, ownerOnly));
    if (!file.valid()) {
        return failure(errno);
    }
    int error = writeAll(file.get(), text);
    if (error == 0) {
        error = syncFile(file.get());
    }
    if (error == 0 && mode != ownerOnly && ::fchmod(file.get(), mode) != 0) {
        error = errno;
    }
    if (error == 0) {
        error = publish(folder.get(), temporary, path.filename());
    }
    if (error != 0) {
        ::unlinkat(folder.get(), temporary.c_str(), 0);
        return failure(error);
    }
    ::fsync(folder.get());
    return Outcome::done();
}

}  // namespace

PosixReportFolder::PosixReportFolder(Place place, Reveal reveal)
    : place_(std::move(place)), reveal_(std::move(reveal)) {}

Outcome PosixReportFolder::write(const std::filesystem::path& file, const std::string& text) {
    return writeFile(file, text, ownerOnly, publishNewFile);
}

Outcome PosixReportFolder::writeScript(const std::filesystem::path& file, const std::string& text) {
    return writeFile(file, text, everyoneMayRun, publishReplacing);
}

void PosixReportFolder::reveal(const std::filesystem::path& file) {
    if (reveal_) {
        reveal_(file);
    }
}

}  // namespace tallowcrest
