#include "tests/platform/trash/hostile_thread.h"

#include <sys/mount.h>

#include <algorithm>
#include <cstdio>
#include <fstream>

#include "tests/platform/trash/swap_names.h"

namespace tallowcrest::trash_proof {

namespace fs = std::filesystem;

void HostileThread::stop(ProofReport& report) {
    stops_ = true;
    thread_.join();
    unmountAll();
    report.attacks += attacks_;
    report.descriptionsMoved += static_cast<std::int64_t>(touchedDescriptions_.size());
}

void HostileThread::run() {
    while (!stops_) {
        ++attacks_;
        attack();
    }
}

int HostileThread::below(int limit) {
    return std::uniform_int_distribution(0, limit - 1)(random_);
}

void HostileThread::wait() {
    const int turns = below(100'000);
    for (int i = 0; i < turns; ++i) {
        std::atomic_signal_fence(std::memory_order_seq_cst);
    }
}

void HostileThread::swapForAWhile(const fs::path& one, const fs::path& other) {
    const bool isSwapped = swapNames(one, other);
    wait();
    if (isSwapped) {
        swapNames(one, other);
    }
}

void HostileThread::renameForAWhile(const fs::path& from, const fs::path& to) {
    const bool isRenamed = renameToFreeName(from, to);
    wait();
    if (isRenamed) {
        renameToFreeName(to, from);
    }
}

std::string HostileThread::descriptionName(int file) {
    return std::to_string(file % fileCount) + ".trashinfo";
}

void HostileThread::swapDescriptionsForAWhile(int file, int other) {
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

void HostileThread::takeDescriptionForAWhile(int file) {
    const fs::path path = world_.homeTrash / "info" / descriptionName(file);
    if (renameToFreeName(path, world_.descriptionsAside / path.filename())) {
        touchedDescriptions_.insert(path.stem());
        wait();
        renameToFreeName(world_.descriptionsAside / path.filename(), path);
    }
}

void HostileThread::mountForAWhile(const fs::path& source, const fs::path& place) {
    if (::mount(source.c_str(), place.c_str(), nullptr, MS_BIND, nullptr) == 0) {
        wait();
        ::umount2(place.c_str(), MNT_DETACH);
    }
}

void HostileThread::unmountAll() const {
    std::ifstream mounts("/proc/self/mounts");
    const std::string below = world_.home.string() + '/';
    for (std::string source, place, rest; mounts >> source >> place && getline(mounts, rest);) {
        if (place.starts_with(below)) {
            ::umount2(place.c_str(), MNT_DETACH);
        }
    }
}

void HostileThread::takeName(int file) {
    const std::string content = contentOf(
        file, "written meanwhile " + std::to_string(seed_) + " " + std::to_string(written_.size()));
    const std::string path = world_.cache / relativePath(file);
    if (std::FILE* const opened = std::fopen(path.c_str(), "wxe")) {
        std::fputs(content.c_str(), opened);
        std::fclose(opened);
        written_.push_back(content);
    }
}

void HostileThread::attack() {
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

}  // namespace tallowcrest::trash_proof
