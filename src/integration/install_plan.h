#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tallowcrest {

/// Where this program is installed for its user. Paths are absolute, those of folders without a
/// slash at the end.
struct InstallPlan {
    std::string bundle;  ///< the folder of the running program; empty when it cannot be located
    /// The names of the files in `bundle` that are the program; empty when all of them are.
    std::vector<std::string> programFiles;
    std::string target;                       ///< gets the content of `bundle`
    std::string shownTarget;                  ///< the place as messages name it
    std::string installed;                    ///< what is started once the program is installed
    std::vector<std::string> installedFiles;  ///< what exists then
    // What leads to the installed program on systems that need it; empty elsewhere.
    std::string launcher;
    std::string menuEntry;
    std::string icon;
    bool isInstalled = false;  ///< for all users, and in `target`: nothing is to be made
};

/// What is in a folder under one name.
struct FolderEntry {
    std::string name;
    bool isFile = false;  ///< a regular one: no folder, no link
};

/// How this program is started when its user logs in.
struct LoginPlan {
    std::string folder;                       ///< absolute, without a slash at the end
    std::string shownFolder;                  ///< the folder as messages name it
    std::string file;                         ///< the file in it that starts the program
    std::string installed;                    ///< `InstallPlan::installed`
    std::vector<std::string> installedFiles;  ///< `InstallPlan::installedFiles`
    std::string running;  ///< what is started as long as one of them does not exist
    /// The content of the file, for the path of what is started.
    std::string (*text)(std::string_view application);
    /// The tool that unloads and loads the file; empty where the desktop finds it by itself.
    std::string loader;
};

/// The folders of the user on Linux, absolute.
struct LinuxInstallPlaces {
    std::string home;
    std::string data;           ///< of the XDG rules
    std::string configuration;  ///< of the XDG rules
    std::string program;        ///< the folder of the running program; empty when unknown
};

// Pure; any thread.

/// Empty without a home directory: nothing can be installed, or started at login, then. A program
/// that is installed for all users stays where it is: a copy of the user's own would be started in
/// place of each later version of it.
InstallPlan linuxInstallPlan(const LinuxInstallPlaces& places);
LoginPlan linuxLoginPlan(const LinuxInstallPlaces& places);

/// The path in the URL of the bundle that a program is in, percent-encoded. Empty when it is in
/// none: an installation would copy its whole folder.
std::string bundlePathOf(std::string_view executable);

/// `bundlePath` as above. An encoding that is not valid, or stands for a NUL, makes `bundle` and
/// `running` empty; one of another character that XML has no form for makes `running` empty.
InstallPlan macOSInstallPlan(std::string_view bundlePath);
LoginPlan macOSLoginPlan(std::string_view bundlePath, const std::string& home);

/// Whether something of these entries of the plan's target is its owner's and would be lost: there
/// is none of the program's files, and something else than the temporary files of a copy that was
/// killed. Never where all files are the program's.
bool holdsOwnersFiles(const InstallPlan& plan, const std::vector<FolderEntry>& entries);

/// The arguments of `rsync` for the copy: what `bundle` no longer has is removed from `target`.
std::vector<std::string> copyArguments(const InstallPlan& plan);

}  // namespace tallowcrest
