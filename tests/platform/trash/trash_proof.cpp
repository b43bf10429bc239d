#include "tests/platform/trash/trash_proof.h"

#include <sys/mount.h>
#include <sys/stat.h>

#include <atomic>
#include <fstream>
#include <map>
#include <random>
#include <set>
#include <stdexcept>
#include <thread>

#include "platform/trash/xdg_trash.h"
#include "tests/platform/trash/swap_names.h"
#include "tests/platform/trash/trash_contents.h"
#include "tests/support/file_text.h"
#include "tests/support/manual_clock.h"

namespace tallowcrest {
namespace {

namespace fs = std::filesystem;

constexpr int folderCount = 5;
constexpr int filesPerFolder = 20;
constexpr int fileCount = folderCount * filesPerFolder;

std::string folderName(int file) {
    return "f" + std::to_string(file / filesPerFolder);
}

std::string relativePath(int file) {
    return folderName(file) + "/" + std::to_string(file);
}

/// Every file tells in its content by which path it is to be restored.
std::string contentOf(int file, const std::string& what) {
    return relativePath(file) + " " + what;
}

void write(const fs::path& path, const std::string& content) {
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << content;
}

struct State {
    FileIdentity identity;
    std::int64_t changeSeconds = 0;
    std::int64_t changeNanoseconds = 0;
    bool operator==(const State&) const = default;
};

/// A rename changes the time of the last change of a file.
State stateOf(const fs::path& path) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0) {
        return {};
    }
    return {{status.st_dev, status.st_ino}, status.st_ctim.tv_sec, status.st_ctim.tv_nsec};
}

/// The folders of the proof. What is in the caches is made anew for each clean-up.
struct World {
    explicit World(const fs::path& folder) : home(folder / "home") {
        fs::remove_all(home);
        for (int i = 0; i < fileCount; ++i) {
            const fs::path path = outside / relativePath(i);
            write(path, contentOf(i, "outside"));
            outsideStates.push_back(stateOf(path));
        }
        fs::create_symlink(outside, home / "link to cache");
    }

    void refill() const {
        fs::remove_all(cache);
        fs::remove_all(aside);
        fs::remove_all(homeTrash);
        fs::remove_all(descriptionsAside);
        fs::create_directories(descriptionsAside);
        for (int i = 0; i < fileCount; ++i) {
            write(cache / relativePath(i), contentOf(i, "reviewed"));
            write(cache / "others" / relativePath(i), contentOf(i, "decoy"));
        }
        for (int i = 0; i < folderCount; ++i) {
            const std::string name = folderName(i * filesPerFolder);
            fs::create_directory_symlink(outside / name, cache / ("link to " + name));
        }
        fs::create_symlink(outside / relativePath(0), cache / "link to file");
        fs::create_directory(cache / "folder");
        fs::create_directories(aside);
    }

    fs::path home;
    fs::path cache = home / ".cache";
    fs::path outside = home / "Documents";
    fs::path aside = home / "aside";  ///< where a folder goes that leaves the caches
    fs::path homeTrash = home / ".local/share/Trash";
    fs::path descriptionsAside = home / "descriptions aside";
    std::vector<State> outsideStates;
};

/// Attacks near the file that is being moved, until it is told to stop. Undoes its attacks where it
/// can. It replaces no file: what is lost was not lost by it.
class HostileThread {
public:
    HostileThread(const World& world, const std::atomic<int>& current, unsigned seed)
        : world_(world), current_(current), random_(seed), thread_([this] { run(); }) {}

    /// Ends it and adds the number of its attacks.
    void stop(ProofReport& report) {
        stops_ = true;
        thread_.join();
        unmountAll();
        report.attacks += attacks_;
        report.descriptionsMoved += static_cast<std::int64_t>(touchedDescriptions_.size());
    }

    /// After `stop`: the contents of the files of its own.
    const std::vector<std::string>& written() const { return written_; }
    /// And the names in the Trash of files whose descriptions it has moved.
    const std::set<std::string>& touchedDescriptions() const { return touchedDescriptions_; }

private:
    void run() {
        while (!stops_) {
            ++attacks_;
            attack();
        }
    }

    int below(int limit) { return std::uniform_int_distribution(0, limit - 1)(random_); }

    /// About as long as one move takes, at most.
    void wait() {
        const int turns = below(100'000);
        for (int i = 0; i < turns; ++i) {
            std::atomic_signal_fence(std::memory_order_seq_cst);
        }
    }

    void swapForAWhile(const fs::path& one, const fs::path& other) {
        const bool isSwapped = swapNames(one, other);
        wait();
        if (isSwapped) {
            swapNames(one, other);
        }
    }

    void renameForAWhile(const fs::path& from, const fs::path& to) {
        const bool isRenamed = renameToFreeName(from, to);
        wait();
        if (isRenamed) {
            renameToFreeName(to, from);
        }
    }

    static std::string descriptionName(int file) {
        return std::to_string(file % fileCount) + ".trashinfo";
    }

    /// Until then the one has the name of the other, and both are there.
    void swapDescriptionsForAWhile(int file, int other) {
        const fs::path one = world_.homeTrash / "info" / descriptionName(file);
        const fs::path two = world_.homeTrash / "info" / descriptionName(other);
        if (!swapNames(one, two)) {
            return;
        }
        touchedDescriptions_.insert({one.stem(), two.stem()});
        wait();
        // One of them may be aside at this moment.
        while (!swapNames(one, two) && fs::exists(one) + fs::exists(two) > 0) {
            std::this_thread::yield();
        }
    }

    void takeDescriptionForAWhile(int file) {
        const fs::path path = world_.homeTrash / "info" / descriptionName(file);
        if (renameToFreeName(path, world_.descriptionsAside / path.filename())) {
            touchedDescriptions_.insert(path.stem());
            wait();
            renameToFreeName(world_.descriptionsAside / path.filename(), path);
        }
    }

    void mountForAWhile(const fs::path& source, const fs::path& place) {
        if (::mount(source.c_str(), place.c_str(), nullptr, MS_BIND, nullptr) == 0) {
            wait();
            ::umount2(place.c_str(), MNT_DETACH);
        }
    }

    /// A file can be renamed while a mount is put over it, which then covers it in the Trash.
    void unmountAll() const {
        std::ifstream mounts("/proc/self/mounts");
        const std::string below = world_.home.string() + '/';
        for (std::string source, place, rest; mounts >> source >> place && getline(mounts, rest);) {
            if (place.starts_with(below)) {
                ::umount2(place.c_str(), MNT_DETACH);
            }
        }
    }

    void takeName(int file) {
        const std::string content =
            contentOf(file, "written meanwhile " + std::to_string(written_.size()));
        const std::string path = world_.cache / relativePath(file);
        if (std::FILE* const opened = std::fopen(path.c_str(), "wxe")) {
            std::fputs(content.c_str(), opened);
            std::fclose(opened);
            written_.push_back(content);
        }
    }

    void attack() {
        const int file = std::min(current_ + below(2), fileCount - 1);
        const fs::path& cache = world_.cache;
        const fs::path path = cache / relativePath(file);
        const fs::path decoy = cache / "others" / relativePath(file);
        const fs::path folder = cache / folderName(file);
        // A mount takes as long as hundreds of the others.
        constexpr int kinds = 200;
        switch (const int kind = below(kinds)) {
            case 0:
                return mountForAWhile(world_.outside / folderName(file), folder);
            case 1:
                return mountForAWhile(world_.outside / relativePath(file), path);
            default:
                switch (kind % 12) {
                    case 0:
                    case 1:
                        return swapForAWhile(path, decoy);
                    case 2:
                        return swapForAWhile(path, cache / "link to file");
                    case 3:
                        return swapForAWhile(path, cache / "folder");
                    case 4:
                        return swapForAWhile(folder, cache / ("link to " + folderName(file)));
                    case 5:
                        return swapForAWhile(folder, cache / "others" / folderName(file));
                    case 6:
                        return swapForAWhile(cache, world_.home / "link to cache");
                    case 7:
                        return renameForAWhile(folder, world_.aside / folderName(file));
                    case 8:
                        return renameForAWhile(path, cache / "folder" / std::to_string(file));
                    case 9:
                        return swapDescriptionsForAWhile(file, file + fileCount - 1 - below(3));
                    case 10:
                        return takeDescriptionForAWhile(file);
                    default:
                        swapNames(path, decoy);
                        wait();
                        return takeName(file);
                }
        }
    }

    const World& world_;
    const std::atomic<int>& current_;
    std::mt19937 random_;
    std::int64_t attacks_ = 0;
    std::vector<std::string> written_;
    std::set<std::string> touchedDescriptions_;
    std::atomic<bool> stops_ = false;
    std::thread thread_;  // the last member: it uses the others
};

/// What one clean-up says that it did.
struct CleanUp {
    std::vector<TrashOutcome> outcomes;
    std::vector<std::string> expected;  ///< the contents of all files that must be somewhere
    /// The names of files whose descriptions were elsewhere when they should have been removed.
    std::set<std::string> touchedDescriptions;
};

CleanUp cleanUp(XdgTrash& trash, const World& world, unsigned seed, ProofReport& report) {
    std::vector<TrashRequest> requests;
    for (int i = 0; i < fileCount; ++i) {
        const fs::path path = world.cache / relativePath(i);
        requests.push_back({.path = path,
                            .inside = world.cache,
                            .identity = stateOf(path).identity,
                            .maximumBytes = 1000});
    }
    CleanUp result;
    std::atomic<int> current = 0;
    HostileThread hostile(world, current, seed);
    for (const TrashRequest& request : requests) {
        result.outcomes.push_back(trash.moveToTrash(request));
        ++current;
    }
    hostile.stop(report);
    result.expected = hostile.written();
    result.touchedDescriptions = hostile.touchedDescriptions();
    for (int i = 0; i < fileCount; ++i) {
        result.expected.push_back(contentOf(i, "reviewed"));
        result.expected.push_back(contentOf(i, "decoy"));
    }
    return result;
}

/// Looks where everything is after a clean-up.
class Audit {
public:
    Audit(const World& world, ProofReport& report) : world_(world), report_(report) {}

    void check(const CleanUp& cleanUp) {
        findInPlaces(world_.cache);
        findInPlaces(world_.aside);
        for (const TrashedFile& file : trashContents(world_.homeTrash)) {
            if (file.isThere || cleanUp.touchedDescriptions.count(file.storedName) == 0) {
                checkTrashed(file);
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
            checkOutcome(cleanUp.outcomes[index], contentOf(i, "reviewed"));
            require(stateOf(world_.outside / relativePath(i)) == world_.outsideStates[index],
                    relativePath(i) + " outside was touched");
        }
        for (const std::string& content : trashed_) {
            report_.stranded += content.ends_with(" reviewed") ? 0 : 1;
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

    void checkTrashed(const TrashedFile& file) {
        const fs::path place = world_.cache / file.content.substr(0, file.content.find(' '));
        require(file.isThere, "a description of no file: " + file.restorePath);
        require(file.restorePath == place, file.storedName + " with the content " + file.content +
                                               " has the path " + file.restorePath);
        ++found_[file.content];
        trashed_.insert(file.content);
    }

    void checkOutcome(const TrashOutcome& outcome, const std::string& content) {
        const bool isMoved = outcome.movedBytes.has_value();
        const bool isInTrash = trashed_.count(content) > 0;
        const bool isStranded = outcome.error.find("in the Trash") != std::string::npos;
        ++(isMoved ? report_.moved : report_.left);
        require(isMoved == isInTrash || (isStranded && !isMoved),
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

ProofReport proveTrash(const fs::path& folder, std::int64_t rounds) {
    ProofReport report;
    const World world(folder);
    const ManualClock clock;
    XdgTrash trash(world.homeTrash, clock, atGreenwich);
    for (unsigned seed = 0; report.moved + report.left < rounds && report.faults.empty(); ++seed) {
        world.refill();
        Audit(world, report).check(cleanUp(trash, world, seed, report));
    }
    return report;
}

}  // namespace tallowcrest
