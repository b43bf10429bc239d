#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "disk/file_identity.h"

/// The files that clean-ups and a hostile thread work on.
namespace tallowcrest::trash_proof {

inline constexpr int folderCount = 5;
inline constexpr int filesPerFolder = 20;
inline constexpr int fileCount = folderCount * filesPerFolder;

inline std::string folderName(int file) {
    return "f" + std::to_string(file / filesPerFolder);
}

inline std::string relativePath(int file) {
    return folderName(file) + "/" + std::to_string(file);
}

/// Every file tells in its content by which path it is to be restored.
inline std::string contentOf(int file, const std::string& what) {
    return relativePath(file) + " " + what;
}

inline void write(const std::filesystem::path& path, const std::string& content) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << content;
}

/// Which file it is, and when it was last changed.
struct State {
    FileIdentity identity;
    std::int64_t changeSeconds = 0;
    std::int64_t changeNanoseconds = 0;
    bool operator==(const State&) const = default;
};

/// A rename changes the time of the last change of a file.
inline State stateOf(const std::filesystem::path& path) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0) {
        return {};
    }
    return {{status.st_dev, status.st_ino}, status.st_ctim.tv_sec, status.st_ctim.tv_nsec};
}

/// The folders of the proof. What is in the caches is made anew for each clean-up.
struct World {
    explicit World(const std::filesystem::path& folder) : home(folder / "home") {
        std::filesystem::remove_all(home);
        for (int i = 0; i < fileCount; ++i) {
            const std::filesystem::path path = outside / relativePath(i);
            write(path, contentOf(i, "outside"));
            outsideStates.push_back(stateOf(path));
        }
        std::filesystem::create_symlink(outside, home / "link to cache");
    }

    void refill() const {
        std::filesystem::remove_all(cache);
        std::filesystem::remove_all(aside);
        std::filesystem::remove_all(homeTrash);
        std::filesystem::remove_all(descriptionsAside);
        std::filesystem::create_directories(descriptionsAside);
        for (int i = 0; i < fileCount; ++i) {
            write(cache / relativePath(i), contentOf(i, "reviewed"));
            write(cache / "others" / relativePath(i), contentOf(i, "decoy"));
        }
        for (int i = 0; i < folderCount; ++i) {
            const std::string name = folderName(i * filesPerFolder);
            std::filesystem::create_directory_symlink(outside / name, cache / ("link to " + name));
        }
        std::filesystem::create_symlink(outside / relativePath(0), cache / "link to file");
        std::filesystem::create_directory(cache / "folder");
        std::filesystem::create_directories(aside);
    }

    std::filesystem::path home;
    std::filesystem::path cache = home / ".cache";
    std::filesystem::path outside = home / "Documents";
    std::filesystem::path aside = home / "aside";  ///< where a folder goes that leaves the caches
    std::filesystem::path homeTrash = home / ".local/share/Trash";
    std::filesystem::path descriptionsAside = home / "descriptions aside";
    std::vector<State> outsideStates;
};

}  // namespace tallowcrest::trash_proof
