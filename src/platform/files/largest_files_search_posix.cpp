#include "platform/files/largest_files_search_posix.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iterator>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

#include "platform/files/file_system.h"
#include "platform/files/folder_tree.h"
#include "platform/files/largest_files.h"
#include "platform/files/open_folders.h"

namespace tallowcrest {
namespace {

using namespace std::chrono_literals;

constexpr auto progressInterval = 100ms;
constexpr auto patienceAfterStop = 500ms;
constexpr int mostIntervalsForRoots = 5;
constexpr unsigned mostThreads = 4;
constexpr std::int64_t filesPerCount = 16;  // a slow volume takes milliseconds for each

/// What the threads of one search share. They own it together with the caller of `find`, which can
/// return before them.
class Search : public std::enable_shared_from_this<Search> {
public:
    Search(LargestFilesRequest request, PosixLargestFilesSearch::ThreadSetup setup,
           PosixLargestFilesSearch::IsRotational isRotational, std::stop_token stop)
        : setup_(setup),
          isRotational_(isRotational),
          stop_(std::move(stop)),
          largest_(request.minimumBytes, request.count),
          leastBytes_(largest_.leastBytes()) {
        for (std::string& path : request.roots) {
            if (FolderPointer folder = rootFolder(std::move(path))) {
                foldersAtHand_.push_back(folder);
                roots_.push_back({std::move(folder)});
            }
        }
    }

    /// Starts the threads and waits for them.
    std::vector<FoundFile> run(const std::function<void(SearchProgress)>& progress);

private:
    /// Runs `work` on a thread of its own; on this one if the system gives none.
    void start(std::function<void(Search&)> work);

    /// Opens a root, which can take as long as any other folder.
    void openRoot(std::size_t number);
    /// To be called under the lock: lets those roots be read that are open and not read yet.
    void readOpenRoots();
    /// To be called under the lock.
    unsigned mostReaders() const;
    bool isRoot(const Folder& folder) const;
    void readFolders();

    /// Absent when everything is read or a stop was requested. Otherwise to be followed by `put`.
    std::optional<FolderPart> take();
    void put(const FolderPart& read, std::vector<FolderPart>& found);
    void add(FoundFile file, const Folder& folder);
    SearchProgress progressNow();

    enum class RootState { isOpening, isOpen, isDone };
    struct Root {
        FolderPointer folder;
        RootState state = RootState::isOpening;
    };
    bool areRootsTried() const {
        return std::ranges::find(roots_, RootState::isOpening, &Root::state) == roots_.end();
    }

    const PosixLargestFilesSearch::ThreadSetup setup_;
    const PosixLargestFilesSearch::IsRotational isRotational_;
    const std::stop_token stop_;

    std::mutex lock_;
    std::condition_variable_any partsChanged_;
    std::condition_variable threadEnded_;  ///< or a root was tried
    std::vector<Root> roots_;
    bool isReading_ = false;    ///< the roots are read
    bool areSomeLate_ = false;  ///< roots that were not tried when the others were read
    bool isOnRotationalDisk_ = false;
    FolderRules rules_;
    std::vector<FolderPart> pending_;           ///< the next on top, so that it stays short
    std::vector<FolderPointer> foldersAtHand_;  ///< the oldest first, which may be one that hangs
    std::size_t threads_ = 0;
    FolderPointer latestFolder_;
    std::int64_t foldersSeen_ = 0;
    LargestFiles largest_;
    std::atomic<std::int64_t> leastBytes_;
    std::atomic<std::int64_t> filesSeen_ = 0;
};

std::vector<FoundFile> Search::run(const std::function<void(SearchProgress)>& progress) {
    for (std::size_t number = 0; number < roots_.size(); ++number) {
        start([number](Search& search) { search.openRoot(number); });
    }
    std::unique_lock guard(lock_);
    const auto report = [&] {
        guard.unlock();
        progress(progressNow());
        guard.lock();
    };
    // A root inside another one is read once when both are known. One that hangs must not keep the
    // others from being read.
    const auto areTried = [this] { return areRootsTried(); };
    for (int interval = 0; interval < mostIntervalsForRoots && !stop_.stop_requested() &&
                           !threadEnded_.wait_for(guard, progressInterval, areTried);
         ++interval) {
        report();
    }
    isReading_ = true;
    areSomeLate_ = !areRootsTried();
    readOpenRoots();
    const auto haveEnded = [this] { return threads_ == 0; };
    for (unsigned readers = 0;; report()) {
        for (; readers < mostReaders(); ++readers) {
            guard.unlock();
            start(&Search::readFolders);
            guard.lock();
        }
        if (threadEnded_.wait_for(guard, progressInterval, haveEnded) || stop_.stop_requested()) {
            break;
        }
    }
    threadEnded_.wait_for(guard, patienceAfterStop, haveEnded);
    std::vector<FoundFile> files = largest_.sorted();
    guard.unlock();
    progress(progressNow());
    return files;
}

void Search::start(std::function<void(Search&)> work) {
    {
        const std::lock_guard guard(lock_);
        ++threads_;
    }
    const auto body = [self = shared_from_this(), work = std::move(work)] {
        work(*self);
        const std::lock_guard guard(self->lock_);
        --self->threads_;
        self->threadEnded_.notify_all();
    };
    try {
        std::thread([body, setup = setup_] {
            setup();
            body();
        }).detach();
    } catch (const std::system_error&) {
        body();
    }
}

void Search::openRoot(std::size_t number) {
    const FolderPointer& folder = roots_[number].folder;
    const bool isOpen = OpenFolders().enter(folder).has_value();
    const bool isRotational = isOpen && isRotational_(pathOf(*folder));
    {
        const std::lock_guard guard(lock_);
        foldersAtHand_.erase(std::ranges::find(foldersAtHand_, folder.get(), &FolderPointer::get));
        roots_[number].state = isOpen ? RootState::isOpen : RootState::isDone;
        isOnRotationalDisk_ = isOnRotationalDisk_ || isRotational;
        if (isReading_) {
            readOpenRoots();
        }
    }
    partsChanged_.notify_all();
    threadEnded_.notify_all();
}

void Search::readOpenRoots() {
    std::vector<FolderPart> parts;
    for (Root& root : roots_) {
        if (root.state != RootState::isOpen) {
            continue;
        }
        root.state = RootState::isDone;
        if (std::ranges::find(rules_.roots, *root.folder->identity) == rules_.roots.end()) {
            rules_.roots.push_back(*root.folder->identity);
            parts.push_back({root.folder});
        }
    }
    pending_.insert(pending_.end(), parts.rbegin(), parts.rend());
}

unsigned Search::mostReaders() const {
    // It may be a disk whose heads must move that has not answered yet.
    return isOnRotationalDisk_ || !areRootsTried()
               ? 1
               : std::clamp(std::thread::hardware_concurrency(), 1U, mostThreads);
}

bool Search::isRoot(const Folder& folder) const {
    return std::ranges::any_of(
        roots_, [path = pathOf(folder)](const Root& root) { return root.folder->name == path; });
}

void Search::readFolders() {
    std::unique_lock guard(lock_);
    FolderTreeReader reader(rules_);
    guard.unlock();
    std::int64_t seen = 0;
    const auto visit = [this, &seen](const Folder& folder, const char* name,
                                     const file_system::EntryStatus& status) {
        if (++seen == filesPerCount) {
            filesSeen_.fetch_add(std::exchange(seen, 0), std::memory_order_relaxed);
        }
        if (status.bytes >= leastBytes_.load(std::memory_order_relaxed)) {
            add({pathOf(folder, name), status.bytes, status.modifiedAt, status.identity}, folder);
        }
        return true;
    };
    std::vector<FolderPart> found;
    while (const std::optional<FolderPart> part = take()) {
        reader.read(*part, visit, stop_, found);
        filesSeen_.fetch_add(std::exchange(seen, 0), std::memory_order_relaxed);
        put(*part, found);
    }
}

std::optional<FolderPart> Search::take() {
    std::unique_lock guard(lock_);
    partsChanged_.wait(guard, stop_,
                       [this] { return !pending_.empty() || foldersAtHand_.empty(); });
    if (pending_.empty() || stop_.stop_requested()) {
        return std::nullopt;
    }
    FolderPart part = std::move(pending_.back());
    pending_.pop_back();
    foldersAtHand_.push_back(part.folder);
    latestFolder_ = part.folder;
    foldersSeen_ += part.position == 0 ? 1 : 0;
    return part;
}

void Search::put(const FolderPart& read, std::vector<FolderPart>& found) {
    {
        const std::lock_guard guard(lock_);
        foldersAtHand_.erase(
            std::ranges::find(foldersAtHand_, read.folder.get(), &FolderPointer::get));
        if (areSomeLate_) {
            // The reader began before it could know which folder a late root is.
            std::erase_if(found, [this](const FolderPart& part) {
                return part.position == 0 && isRoot(*part.folder);
            });
        }
        pending_.insert(pending_.end(), std::make_move_iterator(found.begin()),
                        std::make_move_iterator(found.end()));
    }
    partsChanged_.notify_all();
    found.clear();
}

void Search::add(FoundFile file, const Folder& folder) {
    const std::lock_guard guard(lock_);
    largest_.add(std::move(file), *folder.identity);
    leastBytes_.store(largest_.leastBytes(), std::memory_order_relaxed);
}

SearchProgress Search::progressNow() {
    FolderPointer folder;
    SearchProgress progress{.filesSeen = filesSeen_.load(std::memory_order_relaxed)};
    {
        const std::lock_guard guard(lock_);
        folder = foldersAtHand_.empty() ? latestFolder_ : foldersAtHand_.front();
        progress.foldersSeen = foldersSeen_;
    }
    if (folder) {
        progress.folder = pathOf(*folder);
    }
    return progress;
}

}  // namespace

std::vector<FoundFile> PosixLargestFilesSearch::find(
    const LargestFilesRequest& request, const std::function<void(SearchProgress)>& progress,
    const std::stop_token& stop) {
    return std::make_shared<Search>(request, setup_, isRotational_, stop)->run(progress);
}

}  // namespace tallowcrest
