#include "platform/files/largest_files_search_posix.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
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

namespace tallowcrest {
namespace {

using namespace std::chrono_literals;

constexpr auto progressInterval = 100ms;
constexpr auto patienceAfterStop = 500ms;
constexpr unsigned mostThreads = 4;
constexpr std::int64_t filesPerCount = 16;  // a slow volume takes milliseconds for each

std::size_t threadCount(const std::vector<std::string>& roots) {
    if (std::ranges::any_of(roots, file_system::isRotational)) {
        return 1;
    }
    return std::clamp(std::thread::hardware_concurrency(), 1U, mostThreads);
}

/// What the threads of one search share. They own it together with the caller of `find`, which can
/// return before them.
class Search : public std::enable_shared_from_this<Search> {
public:
    Search(LargestFilesRequest request, PosixLargestFilesSearch::ThreadSetup setup,
           std::stop_token stop)
        : roots_(std::move(request.roots)),
          setup_(setup),
          stop_(std::move(stop)),
          largest_(request.minimumBytes, request.count),
          leastBytes_(largest_.leastBytes()) {}

    /// Starts the threads and waits for them.
    std::vector<FoundFile> run(const std::function<void(SearchProgress)>& progress);

private:
    /// Runs `work` on a thread of its own; on this one if the system gives none.
    void start(void (Search::*work)());

    /// Opens the roots, which can take as long as any other folder, and begins to read them.
    void openRoots();
    void readFolders();

    /// Absent when everything is read or a stop was requested. Otherwise to be followed by `put`.
    std::optional<FolderPart> take();
    void put(const FolderPart& read, std::vector<FolderPart>& found);
    void add(FoundFile file);
    SearchProgress progressNow();

    const std::vector<std::string> roots_;
    const PosixLargestFilesSearch::ThreadSetup setup_;
    const std::stop_token stop_;

    std::mutex lock_;
    std::condition_variable partsChanged_;
    std::condition_variable threadEnded_;
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
    start(&Search::openRoots);
    std::unique_lock guard(lock_);
    const auto haveEnded = [this] { return threads_ == 0; };
    while (!threadEnded_.wait_for(guard, progressInterval, haveEnded) && !stop_.stop_requested()) {
        guard.unlock();
        progress(progressNow());
        guard.lock();
    }
    threadEnded_.wait_for(guard, patienceAfterStop, haveEnded);
    std::vector<FoundFile> files = largest_.sorted();
    guard.unlock();
    progress(progressNow());
    return files;
}

void Search::start(void (Search::*work)()) {
    {
        const std::lock_guard guard(lock_);
        ++threads_;
    }
    const auto body = [self = shared_from_this(), work] {
        ((*self).*work)();
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

void Search::openRoots() {
    TreeRoots roots = treeRoots(roots_);
    const std::size_t threads = threadCount(roots_);
    rules_.roots = std::move(roots.identities);
    std::reverse(roots.parts.begin(), roots.parts.end());
    pending_ = std::move(roots.parts);
    for (std::size_t started = 1; started < threads; ++started) {
        start(&Search::readFolders);
    }
    readFolders();
}

void Search::readFolders() {
    FolderTreeReader reader(rules_);
    std::int64_t seen = 0;
    const auto visit = [this, &seen](const Folder& folder, const char* name,
                                     const file_system::EntryStatus& status) {
        if (++seen == filesPerCount) {
            filesSeen_.fetch_add(std::exchange(seen, 0), std::memory_order_relaxed);
        }
        if (status.bytes >= leastBytes_.load(std::memory_order_relaxed)) {
            add({pathOf(folder, name), status.bytes, status.modifiedAt, status.identity});
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
    partsChanged_.wait(guard, [this] { return !pending_.empty() || foldersAtHand_.empty(); });
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
        pending_.insert(pending_.end(), std::make_move_iterator(found.begin()),
                        std::make_move_iterator(found.end()));
    }
    partsChanged_.notify_all();
    found.clear();
}

void Search::add(FoundFile file) {
    const std::lock_guard guard(lock_);
    largest_.add(std::move(file));
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
    return std::make_shared<Search>(request, setup_, stop)->run(progress);
}

}  // namespace tallowcrest
