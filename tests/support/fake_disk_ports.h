#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "disk/disk_ports.h"
#include "disk/file_copy.h"
#include "disk/file_walks.h"
#include "disk/trash.h"

namespace tallowcrest {

/// The files of a machine without a disk.
struct FakeFiles {
    /// Adds a file with an identity of its own, or replaces one by another.
    FoundFile& add(const std::string& path, std::int64_t bytes,
                   std::optional<double> modifiedAt = 0.0) {
        std::erase_if(all, [&](const FoundFile& each) { return each.path == path; });
        return all.emplace_back(FoundFile{path, bytes, modifiedAt, {1, ++lastInode}});
    }
    FoundFile* find(const std::string& path) {
        const auto found = std::ranges::find(all, path, &FoundFile::path);
        return found == all.end() ? nullptr : &*found;
    }
    void remove(const std::string& path) {
        std::erase_if(all, [&](const FoundFile& each) { return each.path == path; });
    }

    std::vector<FoundFile> all;
    std::uint64_t lastInode = 0;
};

class FakeFileWalk final : public FileWalk {
public:
    explicit FakeFileWalk(const FakeFiles& files) : files_(files) {}

    void walk(const std::string& root, const std::function<bool(const FoundFile&)>& visit,
              const std::function<void(const SearchProgress&)>& progress,
              const std::stop_token& stop) override {
        roots.push_back(root);
        SearchProgress seen;
        // As a folder that is read, it also shows what comes meanwhile.
        for (std::size_t i = 0; i < files_.all.size(); ++i) {
            const FoundFile file = files_.all[i];
            seen = {seen.filesSeen + 1, 1, file.path.substr(0, file.path.rfind('/'))};
            progress(seen);
            if (stop.stop_requested() || (file.path.starts_with(root + '/') && !visit(file))) {
                return;
            }
            if (visited) {
                visited();
            }
        }
    }

    std::vector<std::string> roots;
    std::function<void()> visited;  ///< called after each file; may be absent

private:
    const FakeFiles& files_;
};

class FakeLargestFilesSearch final : public LargestFilesSearch {
public:
    explicit FakeLargestFilesSearch(const FakeFiles& files) : files_(files) {}

    std::vector<FoundFile> find(const LargestFilesRequest& request,
                                const std::function<void(SearchProgress)>& progress,
                                const std::stop_token& stop) override {
        requests.push_back(request);
        std::vector<FoundFile> result;
        for (const std::string& root : request.roots) {
            progress({static_cast<std::int64_t>(result.size()), 0, root});
            if (searched) {
                searched(root);
            }
            if (stop.stop_requested()) {
                break;
            }
            std::ranges::copy_if(
                files_.all, std::back_inserter(result), [&](const FoundFile& file) {
                    return file.path.starts_with(root + '/') && file.bytes >= request.minimumBytes;
                });
        }
        std::ranges::sort(result, [](const FoundFile& left, const FoundFile& right) {
            return left.bytes != right.bytes ? left.bytes > right.bytes : left.path < right.path;
        });
        result.resize(std::min(result.size(), request.count));
        return result;
    }

    std::vector<LargestFilesRequest> requests;
    /// Called before each root; may be absent.
    std::function<void(const std::string& root)> searched;

private:
    const FakeFiles& files_;
};

class FakeTrash final : public Trash {
public:
    explicit FakeTrash(FakeFiles& files) : files_(files) {}

    TrashOutcome moveToTrash(const TrashRequest& request) override {
        requests.push_back(request);
        if (moving) {
            moving(request.path);
        }
        if (isDiskFull) {
            return {.movedBytes = {}, .item = {}, .error = "full", .isDiskFull = true};
        }
        const FoundFile* const file = files_.find(request.path);
        if (file == nullptr) {
            return left("No such file or directory");
        }
        if (request.inside && !request.path.starts_with(*request.inside + '/')) {
            return left("not inside");
        }
        if (request.identity && *request.identity != file->identity) {
            return left("another file");
        }
        if (file->bytes <= 0 || (request.maximumBytes && file->bytes > *request.maximumBytes)) {
            return left("not of that size");
        }
        const FoundFile found = *file;
        moved.push_back(request.path);
        files_.remove(request.path);
        inTrash.push_back(found);
        return {.movedBytes = found.bytes,
                .item = TrashItem{.path = found.path,
                                  .storedName = found.path,
                                  .description = {},
                                  .identity = found.identity,
                                  .bytes = found.bytes,
                                  .inside = request.inside},
                .error = {}};
    }

    PutBackOutcome putBack(const TrashItem& item) override {
        using Result = PutBackOutcome::Result;
        if (puttingBack) {
            puttingBack(item.path);
        }
        const auto found = std::ranges::find(inTrash, item.identity, &FoundFile::identity);
        if (found == inTrash.end()) {
            return {Result::gone, "It is no longer in the Trash"};
        }
        if (files_.find(item.path) != nullptr) {
            return {Result::left, "File exists"};
        }
        if (isDiskFull) {
            return {Result::left, "The disk is full", true};
        }
        files_.all.push_back(*found);
        inTrash.erase(found);
        return {Result::done, {}};
    }

    void removeUnusedDescriptions(const std::string& inside,
                                  const std::function<bool()>& /*isStopped*/) override {
        tidied.push_back(inside);
    }

    std::vector<TrashRequest> requests;
    std::vector<std::string> moved;
    std::vector<std::string> tidied;  ///< the folders of `removeUnusedDescriptions`
    std::vector<FoundFile> inTrash;
    bool isDiskFull = false;  ///< nothing can be moved or put back
    /// Called before each move; may be absent.
    std::function<void(const std::string& path)> moving;
    std::function<void(const std::string& path)> puttingBack;  ///< the same for the way back

private:
    static TrashOutcome left(std::string why) {
        return {.movedBytes = {}, .item = {}, .error = std::move(why)};
    }

    FakeFiles& files_;
};

/// Copies nothing; records what was asked for.
class FakeFileCopy final : public FileCopy {
public:
    std::optional<std::string> copy(const CopyRequest& request,
                                    const std::function<void(const CopyProgress&)>& progress,
                                    const std::stop_token& stop) override {
        copied.emplace_back(request.from, request.to);
        identity = request.identity;
        progress({half, 2 * half, isChecking});
        if (copying) {
            copying();
        }
        return stop.stop_requested() ? "Operation canceled" : error;
    }

    static constexpr std::int64_t half = 1000;
    std::optional<std::string> error;
    bool isChecking = false;        ///< is past the copy itself
    std::function<void()> copying;  ///< called half way; may be absent
    std::vector<std::pair<std::string, std::string>> copied;
    std::optional<FileIdentity> identity;  ///< of the last request
};

/// The ports of the disk's care under test, on a machine whose owner lives in /home/owner.
struct FakeDiskPorts {
    static constexpr std::string_view home = "/home/owner";

    DiskPorts ports() {
        return {
            .walk = walk,
            .largestFiles = largestFiles,
            .trash = trash,
            .copy = copy,
            .places = {.home = std::string(home),
                       .caches = std::string(home) + "/.cache",
                       .areas = areas,
                       .kept = {"/home/owner/Downloads", "/home/owner/Documents"},
                       .personal = {"/home/owner/Downloads", "/home/owner/Documents"}},
            .desktop = {
                .reveal = [this](const std::filesystem::path& file) { revealed.push_back(file); },
                .chooseFolder =
                    [this](std::string_view title, std::string_view button,
                           std::function<void(std::optional<std::string>)> answered) {
                        chooserTexts = {std::string(title), std::string(button)};
                        answer = std::move(answered);
                        return std::make_unique<Question>(answer);
                    }},
            .volumeOf = volumeOf};
    }

    FakeFiles files;
    std::shared_ptr<FakeFileWalk> walk = std::make_shared<FakeFileWalk>(files);
    std::shared_ptr<FakeLargestFilesSearch> largestFiles =
        std::make_shared<FakeLargestFilesSearch>(files);
    std::shared_ptr<FakeTrash> trash = std::make_shared<FakeTrash>(files);
    std::shared_ptr<FakeFileCopy> copy = std::make_shared<FakeFileCopy>();
    std::vector<StorageArea> areas;
    std::function<std::optional<Volume>(const std::string&)> volumeOf;
    std::vector<std::string> revealed;
    std::vector<std::string> chooserTexts;  ///< title and button of the last question
    /// Answers the question for a folder that is open; empty while none is.
    std::function<void(std::optional<std::string>)> answer;

private:
    struct Question final : FolderQuestion {
        using Answer = std::function<void(std::optional<std::string>)>;
        explicit Question(Answer& answered) : answer(answered) {}
        ~Question() override { answer = {}; }
        Answer& answer;
    };
};

}  // namespace tallowcrest
