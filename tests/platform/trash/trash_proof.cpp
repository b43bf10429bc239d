#include "tests/platform/trash/trash_proof.h"

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <set>

#include "core/jobs/jobs.h"
#include "disk/cache_cleanup.h"
#include "disk/cleanup_undo.h"
#include "platform/trash/xdg_trash.h"
#include "tests/platform/trash/hostile_thread.h"
#include "tests/platform/trash/proof_world.h"
#include "tests/platform/trash/trash_contents.h"
#include "tests/support/file_text.h"
#include "tests/support/manual_clock.h"

namespace tallowcrest {
namespace trash_proof {
namespace {

namespace fs = std::filesystem;

/// A Trash that tells what became of each file.
class TellingTrash final : public Trash {
public:
    using Completed = std::function<void(const TrashRequest&, const TrashOutcome&)>;
    using PutBack = std::function<void(const TrashItem&, const PutBackOutcome&)>;
    TellingTrash(Trash& trash, Completed completed, PutBack putBack)
        : trash_(trash), completed_(std::move(completed)), putBack_(std::move(putBack)) {}

    TrashOutcome moveToTrash(const TrashRequest& request) override {
        return prepareMove(request)->complete(request.maximumBytes);
    }
    std::unique_ptr<PreparedMove> prepareMove(const TrashRequest& request) override {
        return std::make_unique<Move>(*this, request);
    }
    PutBackOutcome putBack(const TrashItem& item) override {
        PutBackOutcome outcome = trash_.putBack(item);
        putBack_(item, outcome);
        return outcome;
    }
    void removeUnusedDescriptions(const std::string& inside,
                                  const std::function<bool()>& isStopped) override {
        trash_.removeUnusedDescriptions(inside, isStopped);
    }

private:
    struct Move final : PreparedMove {
        Move(TellingTrash& trash, TrashRequest asked)
            : owner(trash), request(std::move(asked)), move(owner.trash_.prepareMove(request)) {}
        TrashOutcome complete(std::optional<std::int64_t> maximumBytes) override {
            TrashOutcome outcome = move->complete(maximumBytes);
            owner.completed_(request, outcome);
            return outcome;
        }
        TellingTrash& owner;
        TrashRequest request;
        std::unique_ptr<PreparedMove> move;
    };

    Trash& trash_;
    Completed completed_;
    PutBack putBack_;
};

/// Whether something else than the reviewed file was moved, could not go back, and was told of.
bool isStranded(const TrashOutcome& outcome) {
    return outcome.error.find("in the Trash") != std::string::npos;
}

/// Whether something else than the reviewed file was on its way out of the Trash, and went back
/// there.
bool isStranded(const PutBackOutcome& outcome) {
    return outcome.error == "Another file has taken its name" ||
           outcome.error == "Its folder was moved meanwhile";
}

/// What one clean-up says that it did.
struct CleanUp {
    std::vector<TrashOutcome> outcomes;
    std::vector<TrashItem> items;       ///< those that can be put back
    std::vector<std::string> expected;  ///< the contents of all files that must be somewhere
    /// The names of files whose descriptions were elsewhere when they should have been removed.
    std::set<std::string> touchedDescriptions;
    /// The places from which something else than the reviewed file may be in the Trash.
    std::set<std::string> strandedFrom;
};

CleanUp cleanUp(XdgTrash& trash, const World& world, unsigned seed, ProofReport& report) {
    CacheMoveRequest request{
        .files = {}, .place = {world.cache, world.home, {world.outside}}, .maxGB = 2.0};
    std::map<std::string, std::size_t> numbers;
    for (int i = 0; i < fileCount; ++i) {
        const fs::path path = world.cache / relativePath(i);
        request.files.push_back({path, stateOf(path).identity, 0});
        numbers[path] = static_cast<std::size_t>(i);
    }
    CleanUp result;
    // Of a file that is not inside the caches when its turn comes, the Trash is not asked.
    result.outcomes.resize(fileCount, TrashOutcome{.error = "not asked for"});
    TellingTrash telling(trash,
                         [&](const TrashRequest& asked, const TrashOutcome& outcome) {
                             result.outcomes[numbers.at(asked.path)] = outcome;
                             if (isStranded(outcome)) {
                                 result.strandedFrom.insert(asked.path);
                             }
                         },
                         {});
    CleanupTally tally(request.files.size());
    DiskChanges changes;
    std::atomic<int> current = 0;
    HostileThread hostile(world, current, seed);
    moveOldCaches(telling, request, tally, [&] { ++current; }, Stop({}, changes), {});
    hostile.stop(report);
    result.items = tally.state().moved;
    result.expected = hostile.written();
    result.touchedDescriptions = hostile.touchedDescriptions();
    for (int i = 0; i < fileCount; ++i) {
        result.expected.push_back(contentOf(i, "reviewed"));
        result.expected.push_back(contentOf(i, "decoy"));
    }
    return result;
}

/// Puts back what the clean-up has moved, and adds what it must be looked for by.
void undo(XdgTrash& trash, const World& world, unsigned seed, CleanUp& cleanUp,
          ProofReport& report) {
    UndoTally tally(cleanUp.items);
    DiskChanges changes;
    std::atomic<int> current = 0;
    const auto follow = [&] {
        const std::size_t done = tally.progress().done;
        if (done < cleanUp.items.size()) {
            const fs::path next = cleanUp.items[done].path;
            current = std::stoi(next.filename());
        }
    };
    TellingTrash telling(trash, {}, [&](const TrashItem& item, const PutBackOutcome& outcome) {
        if (isStranded(outcome)) {
            cleanUp.strandedFrom.insert(item.path);
        }
    });
    HostileThread hostile(world, current, seed);
    putBackCaches(telling, tally, follow, Stop({}, changes), {});
    hostile.stop(report);
    report.putBack += static_cast<std::int64_t>(tally.progress().moved);
    cleanUp.items = tally.state().remaining;
    cleanUp.expected.insert(cleanUp.expected.end(), hostile.written().begin(),
                            hostile.written().end());
    cleanUp.touchedDescriptions.insert(hostile.touchedDescriptions().begin(),
                                       hostile.touchedDescriptions().end());
}

/// Looks where everything is after a clean-up or its undoing.
class Audit {
public:
    Audit(const World& world, ProofReport& report) : world_(world), report_(report) {}

    void checkCleanUp(const CleanUp& cleanUp) {
        checkFiles(cleanUp);
        for (int i = 0; i < fileCount; ++i) {
            checkOutcome(cleanUp.outcomes[static_cast<std::size_t>(i)], contentOf(i, "reviewed"));
        }
        for (const std::string& content : trashed_) {
            report_.stranded += content.ends_with(" reviewed") ? 0 : 1;
        }
    }

    /// Also after an undoing.
    void checkFiles(const CleanUp& cleanUp) {
        findInPlaces(world_.cache);
        findInPlaces(world_.aside);
        for (const TrashedFile& file : trashContents(world_.homeTrash)) {
            if (file.isThere || cleanUp.touchedDescriptions.count(file.storedName) == 0) {
                checkTrashed(file, cleanUp.strandedFrom);
            }
        }
        const std::set<std::string> expected(cleanUp.expected.begin(), cleanUp.expected.end());
        for (const std::string& content : expected) {
            require(found_[content] == 1,
                    content + " is found " + std::to_string(found_[content]) + " times");
        }
        for (const auto& [content, times] : found_) {
            require(times == 0 || expected.count(content) > 0, content + " is somewhere");
        }
        for (int i = 0; i < fileCount; ++i) {
            const auto index = static_cast<std::size_t>(i);
            require(stateOf(world_.outside / relativePath(i)) == world_.outsideStates[index],
                    relativePath(i) + " outside was touched");
        }
    }

private:
    void require(bool condition, const std::string& fault) {
        constexpr std::size_t enough = 20;
        if (!condition && report_.faults.size() < enough) {
            report_.faults.push_back(fault);
        }
    }

    void findInPlaces(const fs::path& folder) {
        for (const auto& entry : fs::recursive_directory_iterator(folder)) {
            if (entry.symlink_status().type() == fs::file_type::regular) {
                ++found_[fileText(entry.path())];
            }
        }
    }

    void checkTrashed(const TrashedFile& file, const std::set<std::string>& strandedFrom) {
        const fs::path place = world_.cache / file.content.substr(0, file.content.find(' '));
        require(file.isThere, "a description of no file: " + file.restorePath);
        // What was brought to a place from elsewhere is to be restored to where it was taken from.
        require((file.isRegular && file.restorePath == place) ||
                    strandedFrom.count(file.restorePath) > 0,
                file.storedName + " with the content " + file.content + " has the path " +
                    file.restorePath);
        if (!file.isRegular) {
            const fs::path path = world_.homeTrash / "files" / file.storedName;
            if (fs::is_directory(fs::symlink_status(path))) {
                findInPlaces(path);
            }
            return;
        }
        ++found_[file.content];
        trashed_.insert(file.content);
    }

    void checkOutcome(const TrashOutcome& outcome, const std::string& content) {
        const bool isMoved = outcome.movedBytes.has_value();
        const bool isInTrash = trashed_.count(content) > 0;
        ++(isMoved ? report_.moved : report_.left);
        require(isMoved == isInTrash || (isStranded(outcome) && !isMoved),
                content + (isInTrash ? " is in the Trash: " : " is not in the Trash: ") +
                    outcome.error);
        require(isMoved == outcome.error.empty(), content + ": " + outcome.error);
        require(!isMoved || *outcome.movedBytes == static_cast<std::int64_t>(content.size()),
                content + " has another size");
    }

    const World& world_;
    ProofReport& report_;
    std::map<std::string, int> found_;
    std::set<std::string> trashed_;
};

}  // namespace
}  // namespace trash_proof

ProofReport proveTrash(const std::filesystem::path& folder, std::int64_t rounds) {
    using namespace trash_proof;
    ProofReport report;
    const World world(folder);
    const ManualClock clock;
    XdgTrash trash(world.homeTrash, clock, atGreenwich);
    for (unsigned seed = 0; report.moved + report.left < rounds && report.faults.empty();
         seed += 2) {
        world.refill();
        CleanUp made = cleanUp(trash, world, seed, report);
        Audit(world, report).checkCleanUp(made);
        undo(trash, world, seed + 1, made, report);
        Audit(world, report).checkFiles(made);
    }
    return report;
}

}  // namespace tallowcrest
