#include "platform/trash/xdg_trash.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstddef>
#include <cstdio>
#include <string_view>
#include <utility>

#include "platform/base/unique_fd.h"
#include "platform/base/write_all.h"
#include "platform/trash/file_status.h"
#include "platform/trash/trash_folder.h"
#include "platform/trash/trash_info.h"
#include "platform/trash/trash_source.h"

namespace tallowcrest {
namespace {

TrashOutcome left(std::string why) {
    return {.movedBytes = {}, .item = {}, .error = std::move(why)};
}

/// Begins to write out the content, and does not wait. A failure shows in `flush`.
void beginFlush(int file) {
    static_cast<void>(::sync_file_range(file, 0, 0, SYNC_FILE_RANGE_WRITE));
}

/// Waits until the content is written out. A full `fdatasync` also waits for the journal, for
/// milliseconds per file. That is not needed: the journal keeps the order, so a rename that
/// survives a loss of power does so together with the extent that was allocated before it.
bool flush(int file) {
    constexpr unsigned writeOut =
        SYNC_FILE_RANGE_WAIT_BEFORE | SYNC_FILE_RANGE_WRITE | SYNC_FILE_RANGE_WAIT_AFTER;
    if (::sync_file_range(file, 0, 0, writeOut) == 0) {
        return true;
    }
    const bool isUnsupported = errno == ENOSYS || errno == EINVAL || errno == ESPIPE;
    return isUnsupported && ::fdatasync(file) == 0;
}

bool renameWithoutReplacing(int from, const std::string& name, int to, const std::string& newName) {
    return ::renameat2(from, name.c_str(), to, newName.c_str(), RENAME_NOREPLACE) == 0;
}

/// Returns 0 or the error number.
int renameIntoTrash(int folder, const std::string& name, const TrashFolder& trash,
                    const std::string& storedName) {
    if (renameWithoutReplacing(folder, name, trash.files.get(), storedName)) {
        return 0;
    }
    if (errno != EINVAL && errno != ENOSYS) {
        return errno;
    }
    // Some network file systems cannot refuse to replace. The `.trashinfo` has reserved the name
    // among all that use this trash folder, so it is enough that no file is left there from before.
    if (statusAt(trash.files.get(), storedName)) {
        return EEXIST;
    }
    if (errno != ENOENT) {
        return errno;
    }
    const bool isRenamed =
        ::renameat(folder, name.c_str(), trash.files.get(), storedName.c_str()) == 0;
    return isRenamed ? 0 : errno;
}

/// The content of a `.trashinfo`; empty when there is none, or none of ours.
std::string readInfo(const TrashFolder& trash, const std::string& storedName) {
    const UniqueFD info(::openat(trash.info.get(), trashInfoName(storedName).c_str(),
                                 O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    // A path is percent-encoded, so that each of its bytes takes up to three.
    constexpr std::size_t longest = 4 * PATH_MAX;
    std::string text(longest, '\0');
    std::size_t length = 0;
    while (info.valid() && length < longest) {
        const ssize_t count = ::read(info.get(), text.data() + length, longest - length);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            break;
        }
        length += static_cast<std::size_t>(count);
    }
    text.resize(length);
    return text;
}

std::size_t longestNameIn(int folder) {
    const long longest = ::fpathconf(folder, _PC_NAME_MAX);
    return longest > 0 ? static_cast<std::size_t>(longest) : NAME_MAX;
}

}  // namespace

XdgTrash::XdgTrash(std::string homeTrash, const Clock& clock, UTCOffset utcOffset)
    : homeTrash_(std::move(homeTrash)), clock_(clock), utcOffset_(std::move(utcOffset)) {}

/// A move from the `.trashinfo` on. The functions return 0 or an error number.
class XdgTrash::Move final : public PreparedMove {
public:
    Move(XdgTrash& owner, const TrashRequest& request);
    Move(const Move&) = delete;
    Move& operator=(const Move&) = delete;
    ~Move() override { removeDescription(); }

    TrashOutcome complete(std::optional<std::int64_t> maximumBytes) override;

private:
    /// Writes the `.trashinfo` under the first free name, which reserves the name.
    int describe();
    int describeAs(const std::string& name);
    bool isDescribed() const;
    void removeDescription();
    int store();
    /// Gives the file that is stored a description again.
    int describeStored();
    TrashOutcome returnFile(std::string why);

    XdgTrash& owner_;
    TrashRequest request_;
    TrashSource source_;
    std::string why_;  ///< the file is left; empty while it may be moved
    std::optional<TrashFolder> trash_;
    std::string text_;  ///< of the `.trashinfo`
    std::size_t longestName_ = 0;
    std::string storedName_;
    UniqueFD info_;  ///< valid while the `.trashinfo` is to be removed
};

XdgTrash::Move::Move(XdgTrash& owner, const TrashRequest& request)
    : owner_(owner), request_(request) {
    OpenedTrashSource opened = openTrashSource(request);
    source_ = std::move(opened.source);
    why_ = std::move(opened.objection);
    if (!why_.empty()) {
        return;
    }
    trash_ = openTrashFolder(source_.folder.get(), source_.name, request.path, owner.homeTrash_);
    if (!trash_) {
        why_ = systemWords(errno);
        return;
    }
    const Date now = owner.clock_.now();
    text_ = trashInfoText(trash_->restorePath, now, owner.utcOffset_(now));
    longestName_ = longestNameIn(trash_->info.get());
    if (const int error = describe(); error != 0) {
        why_ = systemWords(error);
    }
}

int XdgTrash::Move::describe() {
    constexpr int mostAttempts = 100'000;
    int error =
        storedName_.empty() ? describeAs(nameInTrash(source_.name, 1, longestName_)) : EEXIST;
    for (int attempt = 0; error == EEXIST && attempt < mostAttempts; ++attempt) {
        error = describeAs(nameInTrash(source_.name, owner_.nextNumber_++, longestName_));
    }
    return error;
}

int XdgTrash::Move::describeAs(const std::string& name) {
    UniqueFD info(::openat(trash_->info.get(), trashInfoName(name).c_str(),
                           O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                           S_IRUSR | S_IWUSR));
    if (!info.valid()) {
        return errno;
    }
    storedName_ = name;
    info_ = std::move(info);
    const int error = writeAll(info_.get(), text_);
    if (error == 0) {
        beginFlush(info_.get());
    }
    return error;
}

bool XdgTrash::Move::isDescribed() const {
    const auto written = statusOf(info_.get());
    const auto named = statusAt(trash_->info.get(), trashInfoName(storedName_));
    return written && named && written->identity == named->identity;
}

void XdgTrash::Move::removeDescription() {
    // The owner may have emptied the Trash, and the name may be another file's by now.
    if (info_.valid() && isDescribed()) {
        ::unlinkat(trash_->info.get(), trashInfoName(storedName_).c_str(), 0);
    }
    info_.reset();
}

int XdgTrash::Move::store() {
    for (;;) {
        if (!flush(info_.get())) {
            return errno;
        }
        if (!isDescribed()) {
            return ESTALE;
        }
        int error = renameIntoTrash(source_.folder.get(), source_.name, *trash_, storedName_);
        if (error == EEXIST) {
            // A file is left there without a description.
            removeDescription();
            error = describe();
            if (error == 0) {
                continue;
            }
        }
        return error;
    }
}

int XdgTrash::Move::describeStored() {
    const std::string name = storedName_;
    int error = describeAs(name);
    if (error == EEXIST) {
        // Another file is described there, so that this one needs another name.
        error = describe();
        if (error == 0 &&
            !renameWithoutReplacing(trash_->files.get(), name, trash_->files.get(), storedName_)) {
            error = errno;
            removeDescription();
        }
    }
    return error == 0 && !flush(info_.get()) ? errno : error;
}

TrashOutcome XdgTrash::Move::returnFile(std::string why) {
    if (!renameWithoutReplacing(trash_->files.get(), storedName_, source_.folder.get(),
                                source_.name)) {
        why += "; what had its name is in the Trash: " + systemWords(errno);
        if (!isDescribed()) {
            if (const int error = describeStored(); error != 0) {
                why += "; it has no description there: " + systemWords(error);
            }
        }
        info_.reset();
        return left(std::move(why));
    }
    return left(std::move(why));
}

TrashOutcome XdgTrash::Move::complete(std::optional<std::int64_t> maximumBytes) {
    request_.maximumBytes = maximumBytes;
    if (why_.empty()) {
        why_ = objectionTo(request_, source_);
    }
    if (!why_.empty()) {
        return left(why_);
    }
    if (const int error = store(); error != 0) {
        return left(systemWords(error));
    }
    const auto stored = statusAt(trash_->files.get(), storedName_);
    if (!stored) {
        why_ = systemWords(errno);
        info_.reset();
        return left(why_);
    }
    if (std::string late = objectionToStored(request_, source_, *stored); !late.empty()) {
        return returnFile(std::move(late));
    }
    // The Trash may have been emptied just before the file arrived.
    if (!isDescribed()) {
        return returnFile("The Trash was emptied meanwhile");
    }
    info_.reset();
    return {.movedBytes = stored->bytes,
            .item = TrashItem{.path = request_.path,
                              .storedName = storedName_,
                              .description = text_,
                              .identity = stored->identity,
                              .bytes = stored->bytes,
                              .inside = request_.inside}};
}

std::unique_ptr<PreparedMove> XdgTrash::prepareMove(const TrashRequest& request) {
    return std::make_unique<Move>(*this, request);
}

TrashOutcome XdgTrash::moveToTrash(const TrashRequest& request) {
    return Move(*this, request).complete(request.maximumBytes);
}

PutBackOutcome XdgTrash::putBack(const TrashItem& item) {
    using Result = PutBackOutcome::Result;
    const OpenedPlace place = openPlace(item.path, item.inside);
    const auto folder = place.folder.valid() ? statusOf(place.folder.get()) : std::nullopt;
    if (!folder) {
        return {Result::left, place.objection.empty() ? systemWords(errno) : place.objection};
    }
    const auto trash = openTrashFolder(place.folder.get(), place.name, item.path, homeTrash_);
    if (!trash) {
        return {Result::left, systemWords(errno)};
    }
    // Held open, because its inode number is then not given to another file.
    const UniqueFD file(
        ::openat(trash->files.get(), item.storedName.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    const auto stored = file.valid() ? statusOf(file.get()) : std::nullopt;
    // Emptied, or emptied and used again: then another file or another time is described.
    if (!stored || stored->identity != item.identity || !S_ISREG(stored->mode) ||
        readInfo(*trash, item.storedName) != item.description) {
        return {Result::gone, "It is no longer in the Trash"};
    }
    if (!renameWithoutReplacing(trash->files.get(), item.storedName, place.folder.get(),
                                place.name)) {
        return {Result::left, systemWords(errno)};
    }
    const auto arrived = statusAt(place.folder.get(), place.name);
    const bool isRightFile = arrived && arrived->identity == item.identity;
    if (!isRightFile || !isStillAt(place.folderPath, item.inside, folder->identity)) {
        const std::string why =
            isRightFile ? "Its folder was moved meanwhile" : "Another file has taken its name";
        return renameWithoutReplacing(place.folder.get(), place.name, trash->files.get(),
                                      item.storedName)
                   ? PutBackOutcome{Result::left, why}
                   : PutBackOutcome{Result::gone, why + ": " + systemWords(errno)};
    }
    ::unlinkat(trash->info.get(), trashInfoName(item.storedName).c_str(), 0);
    return {Result::done, {}};
}

}  // namespace tallowcrest
