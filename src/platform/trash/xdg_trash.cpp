#include "platform/trash/xdg_trash.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstddef>
#include <string_view>
#include <utility>

#include "core/uuid.h"
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

/// At most so many bytes of an open file, fewer at its end; absent with `errno` after an error.
std::optional<std::string> readText(int file, std::size_t longest) {
    std::string text(longest, '\0');
    std::size_t length = 0;
    while (length < longest) {
        const ssize_t count = ::read(file, text.data() + length, longest - length);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            return std::nullopt;
        }
        if (count == 0) {
            break;
        }
        length += static_cast<std::size_t>(count);
    }
    text.resize(length);
    return text;
}

/// Whether what has this name in the folder is the open file.
bool isFileAt(int folder, const std::string& name, int file) {
    const auto opened = statusOf(file);
    const auto named = statusAt(folder, name);
    return opened && named && opened->identity == named->identity;
}

/// Removes a `.trashinfo` unless its name is that of another file than `info` by now. It is looked
/// at again under a name that nobody else knows, as the names can change after the first look.
void removeInfo(const TrashFolder& trash, const std::string& storedName, int info) {
    const int folder = trash.info.get();
    const std::string name = trashInfoName(storedName);
    if (!isFileAt(folder, name, info)) {
        return;
    }
    const std::string aside = ".tallowcrest-" + UUID::random().text();
    if (::renameat(folder, name.c_str(), folder, aside.c_str()) != 0) {
        // A folder can have no room for another name.
        if (errno != ENOENT && isFileAt(folder, name, info)) {
            ::unlinkat(folder, name.c_str(), 0);
        }
        return;
    }
    if (isFileAt(folder, aside, info)) {
        ::unlinkat(folder, aside.c_str(), 0);
    } else {
        renameWithoutReplacing(folder, aside, folder, name);
    }
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
        fail(error);
        return left();
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

PutBackOutcome XdgTrash::putBack(const TrashItem& item) {
    using Result = PutBackOutcome::Result;
    const PutBackOutcome isGone{Result::gone, "It is no longer in the Trash"};
    const OpenedPlace place = openPlace(item.path, item.inside);
    const auto folder = place.folder.valid() ? statusOf(place.folder.get()) : std::nullopt;
    if (!folder) {
        return {Result::left, place.objection.empty() ? systemWords(errno) : place.objection};
    }
    const auto trash =
        openTrashFolder(place.folder.get(), place.name, item.path, homeTrash_, Missing::refused);
    if (!trash) {
        return {Result::left,
                errno == ENOENT ? "The folder of the Trash is missing" : systemWords(errno)};
    }
    // It can be in the trash of the home folder, if that is not to be had now.
    const auto notFound = [&](int error) {
        return error == ENOENT && trash->homeError == 0
                   ? isGone
                   : PutBackOutcome{Result::left,
                                    systemWords(error == ENOENT ? trash->homeError : error)};
    };
    // Held open, because its inode number is then not given to another file.
    const UniqueFD file(
        ::openat(trash->files.get(), item.storedName.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    const auto stored = file.valid() ? statusOf(file.get()) : std::nullopt;
    if (!stored) {
        return notFound(errno);
    }
    if (stored->identity != item.identity || !S_ISREG(stored->mode)) {
        return isGone;
    }
    const UniqueFD info(::openat(trash->info.get(), trashInfoName(item.storedName).c_str(),
                                 O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    const auto text =
        info.valid() ? readText(info.get(), item.description.size() + 1) : std::nullopt;
    if (!text) {
        return notFound(errno);
    }
    // The Trash was emptied and used again: then another file or another time is described.
    if (*text != item.description) {
        return isGone;
    }
    if (const int error = renameWithoutReplacing(trash->files.get(), item.storedName,
                                                 place.folder.get(), place.name);
        error != 0) {
        const bool isFull = isDiskFull(error);
        return {Result::left, isFull ? "The disk is full" : systemWords(error), isFull};
    }
    const auto arrived = statusAt(place.folder.get(), place.name);
    const bool isRightFile = arrived && arrived->identity == item.identity;
    if (!isRightFile || !isStillAt(place.folderPath, item.inside, folder->identity)) {
        const std::string why =
            isRightFile ? "Its folder was moved meanwhile" : "Another file has taken its name";
        const int error = renameWithoutReplacing(place.folder.get(), place.name, trash->files.get(),
                                                 item.storedName);
        return error == 0 ? PutBackOutcome{Result::left, why}
                          : PutBackOutcome{Result::gone, why + ": " + systemWords(error)};
    }
    removeInfo(*trash, item.storedName, info.get());
    return {Result::done, {}};
}

}  // namespace tallowcrest
