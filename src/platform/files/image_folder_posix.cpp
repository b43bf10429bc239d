#include "platform/files/image_folder_posix.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <optional>
#include <string>
#include <system_error>
#include <utility>

#include "platform/base/unique_fd.h"
#include "platform/base/write_all.h"
#include "platform/files/partial_copies.h"

namespace tallowcrest {
namespace {

UpdateError errorOf(int number) {
    return {std::generic_category().message(number)};
}

class PosixDownloadedImage final : public DownloadedImage {
public:
    PosixDownloadedImage(std::filesystem::path place, UniqueFD folder, std::string temporary,
                         UniqueFD file)
        : place_(std::move(place)),
          folder_(std::move(folder)),
          temporary_(std::move(temporary)),
          file_(std::move(file)) {}

    ~PosixDownloadedImage() override {
        if (!temporary_.empty()) {
            ::unlinkat(folder_.get(), temporary_.c_str(), 0);
        }
    }

    std::optional<UpdateError> write(std::string_view bytes) override {
        const int error = writeAll(file_.get(), bytes);
        return error == 0 ? std::nullopt : std::optional(errorOf(error));
    }

    std::variant<std::string, UpdateError> publish(const std::string& name) override {
        constexpr mode_t everyoneMayRead = 0644;
        if (::fchmod(file_.get(), everyoneMayRead) != 0) {
            return errorOf(errno);
        }
        if (const int error = syncFile(file_.get()); error != 0) {
            return errorOf(error);
        }
        if (::renameat(folder_.get(), temporary_.c_str(), folder_.get(), name.c_str()) != 0) {
            return errorOf(errno);
        }
        temporary_.clear();
        return std::string(place_ / name);
    }

private:
    std::filesystem::path place_;
    UniqueFD folder_;
    std::string temporary_;  ///< empty once it is published
    UniqueFD file_;
};

}  // namespace

std::variant<std::unique_ptr<DownloadedImage>, UpdateError> PosixImageFolder::begin() {
    if (!place_.is_absolute()) {
        return errorOf(ENOENT);
    }
    UniqueFD folder(::open(place_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder.valid()) {
        return errorOf(errno);
    }
    // Nothing else would: many a temporary directory is never cleared.
    removePartialCopies(folder.get());
    std::string temporary = partialCopyName();
    UniqueFD file(::openat(folder.get(), temporary.c_str(),
                           O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                           S_IRUSR | S_IWUSR));
    if (!file.valid()) {
        return errorOf(errno);
    }
    // Another download, or a backup into the same folder, removes those that nobody writes.
    lockPartialCopy(file.get());
    return std::make_unique<PosixDownloadedImage>(place_, std::move(folder), std::move(temporary),
                                                  std::move(file));
}

void PosixImageFolder::remove(const std::string& path) {
    ::unlink(path.c_str());
}

}  // namespace tallowcrest
