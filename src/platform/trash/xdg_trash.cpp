#include "platform/trash/xdg_trash.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstddef>
#include <optional>
#include <utility>

#include "platform/base/full_disk.h"
#include "platform/base/unique_fd.h"
#include "platform/base/write_all.h"
#include "platform/trash/file_status.h"
#include "platform/trash/rename_without_replacing.h"
#include "platform/trash/trash_folder.h"
#include "platform/trash/trash_info.h"
#include "platform/trash/trash_source.h"

namespace tallowcrest {
namespace {

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

/// Returns 0 or the error number.
int renameIntoTrash(int folder, const std::string& name, const TrashFolder& trash,
                    const std::string& storedName) {
    if (const auto error = renameWhereItCanRefuse(folder, name, trash.files.get(), storedName)) {
        return *error;
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
    void fail(int error);
    TrashOutcome left() const;
    /// Writes the `.trashinfo` under the first free name, which reserves the name.
    int describe();
    int describeAs(const std::string& name);
    bool isDescribed() const;
    void removeDescription();
    int store();
    /// Whether the file is in the Trash and no longer in its place; absent when that is not known.
    std::optional<bool> isStored() const;
    /// Gives the file that is stored a description again.
    int describeStored();
    TrashOutcome returnFile();

    XdgTrash& owner_;
    TrashRequest request_;
    TrashSource source_;
    std::string why_;  ///< the file is left; empty while it may be moved
    bool isDiskFull_ = false;
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
    trash_ = openTrashFolder(source_.folder.get(), source_.name, request.path, owner.homeTrash_,
                             Missing::created);
    if (!trash_) {
        fail(errno);
        return;
    }
    const Date now = owner.clock_.now();
    text_ = trashInfoText(trash_->restorePath, now, owner.utcOffset_(now));
    longestName_ = longestNameIn(trash_->info.get());
    if (const int error = describe(); error != 0) {
        fail(error);
    }
}

void XdgTrash::Move::fail(int error) {
    isDiskFull_ = isDiskFull(error);
    why_ = isDiskFull_ ? "The disk is full, so that the Trash cannot note where the file belongs. "
                         "The file stays in its place. Make some room, for example by emptying the "
                         "Trash, and try again."
                       : systemWords(error);
}

TrashOutcome XdgTrash::Move::left() const {
    return {.movedBytes = {}, .item = {}, .error = why_, .isDiskFull = isDiskFull_};
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
    return isFileAt(trash_->info.get(), trashInfoName(storedName_), info_.get());
}

void XdgTrash::Move::removeDescription() {
    if (info_.valid()) {
        removeInfo(*trash_, storedName_, info_.get());
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
        if (error == EEXIST && isStored() == false) {
            // Another file is left there without a description.
            removeDescription();
            error = describe();
            if (error == 0) {
                continue;
            }
        }
        return error;
    }
}

std::optional<bool> XdgTrash::Move::isStored() const {
    const auto stored = statusAt(trash_->files.get(), storedName_);
    if (!stored) {
        return errno == ENOENT ? std::optional(false) : std::nullopt;
    }
    return stored->identity == source_.identity &&
           !isFileAt(source_.folder.get(), source_.name, source_.file.get());
}

int XdgTrash::Move::describeStored() {
    const std::string name = storedName_;
    int error = describeAs(name);
    if (error == EEXIST) {
        // Another file is described there, so that this one needs another name.
        error = describe();
        if (error == 0) {
            error =
                renameWithoutReplacing(trash_->files.get(), name, trash_->files.get(), storedName_);
            if (error != 0) {
                removeDescription();
            }
        }
    }
    return error == 0 && !flush(info_.get()) ? errno : error;
}

TrashOutcome XdgTrash::Move::returnFile() {
    if (const int error = renameWithoutReplacing(trash_->files.get(), storedName_,
                                                 source_.folder.get(), source_.name);
        error != 0) {
        why_ += "; what had its name is in the Trash: " + systemWords(error);
        if (!isDescribed()) {
            if (const int failure = describeStored(); failure != 0) {
                why_ += "; it has no description there: " + systemWords(failure);
            }
        }
        info_.reset();
    }
    return left();
}

TrashOutcome XdgTrash::Move::complete(std::optional<std::int64_t> maximumBytes) {
    request_.maximumBytes = maximumBytes;
    if (why_.empty()) {
        why_ = objectionTo(request_, source_);
    }
    if (!why_.empty()) {
        return left();
    }
    if (const int error = store(); error != 0) {
        // Network file systems can carry a rename out and still answer with an error.
        const auto hasArrived = isStored();
        if (hasArrived != true) {
            fail(error);
            if (!hasArrived) {
                info_.reset();
            }
            return left();
        }
    }
    const auto stored = statusAt(trash_->files.get(), storedName_);
    if (!stored) {
        fail(errno);
        info_.reset();
        return left();
    }
    why_ = objectionToStored(request_, source_, *stored);
    // The Trash may have been emptied just before the file arrived.
    if (why_.empty() && !isDescribed()) {
        why_ = "The Trash was emptied meanwhile";
    }
    if (!why_.empty()) {
        return returnFile();
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

}  // namespace tallowcrest
