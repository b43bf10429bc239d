#include "integration/install_plan.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <utility>

#include <fmt/format.h>

#include "integration/startup_files.h"

namespace tallowcrest {
namespace {

/// The program that starts the others, which lie beside it.
constexpr const char* linuxProgram = "tallowcrest";

constexpr const char* installedBundle = "/Applications/Tallowcrest Pro.app";

/// The program's files on Linux.
std::vector<std::string> programNames() {
    return {linuxProgram, "tallowcrest-desktop", "tallowcrest-http.so"};
}

std::vector<std::string> programFilesIn(const std::string& folder) {
    std::vector<std::string> files = programNames();
    for (std::string& file : files) {
        file.insert(0, folder + '/');
    }
    return files;
}

/// The path as people write it.
std::string shown(const std::string& path, const std::string& home) {
    return path.starts_with(home + '/') ? '~' + path.substr(home.size()) : path;
}

/// Whether that is the folder of the package, or of an installation without one.
bool isInstalledForAll(const std::string& program) {
    return program == "/usr/lib/tallowcrest" || program == "/usr/local/lib/tallowcrest";
}

std::string linuxTarget(const LinuxInstallPlaces& places) {
    return isInstalledForAll(places.program) ? places.program
                                             : places.home + "/.local/opt/tallowcrest";
}

/// Without a slash at the end. Empty when an encoding is not valid, or stands for a NUL.
std::string removingPercentEncoding(std::string_view path) {
    std::string decoded;
    for (std::size_t at = 0; at < path.size(); ++at) {
        if (path[at] != '%') {
            decoded += path[at];
            continue;
        }
        const std::string_view digits = path.substr(at + 1, 2);
        unsigned char byte = 0;
        const auto [end, error] =
            std::from_chars(digits.data(), digits.data() + digits.size(), byte, 16);
        if (digits.size() < 2 || error != std::errc() || end != digits.data() + 2 || byte == 0) {
            return {};
        }
        decoded += static_cast<char>(byte);
        at += 2;
    }
    while (decoded.size() > 1 && decoded.ends_with('/')) {
        decoded.pop_back();
    }
    return decoded;
}

/// Whether it has no control character, U+FFFE or U+FFFF. XML has no form for most of them.
bool fitsIntoXML(std::string_view text) {
    return std::ranges::none_of(text, [](char c) { return c >= 0 && c < ' '; }) &&
           text.find("\xEF\xBF\xBE") == std::string_view::npos &&
           text.find("\xEF\xBF\xBF") == std::string_view::npos;
}

}  // namespace

InstallPlan linuxInstallPlan(const LinuxInstallPlaces& places) {
    if (places.home.empty()) {
        return {};
    }
    const std::string target = linuxTarget(places);
    return {.bundle = places.program,
            .programFiles = programNames(),
            .target = target,
            .shownTarget = shown(target, places.home),
            .installed = target + '/' + linuxProgram,
            .installedFiles = programFilesIn(target),
            .launcher = places.home + "/.local/bin/tallowcrest",
            .menuEntry = places.data + "/applications/tallowcrest.desktop",
            .icon = places.data + "/icons/hicolor/scalable/apps/tallowcrest.svg",
            .isInstalled = isInstalledForAll(places.program)};
}

LoginPlan linuxLoginPlan(const LinuxInstallPlaces& places) {
    if (places.home.empty()) {
        return {};
    }
    const std::string folder = places.configuration + "/autostart";
    const std::string target = linuxTarget(places);
    return {.folder = folder,
            .shownFolder = shown(folder, places.home),
            .file = folder + "/tallowcrest.desktop",
            .installed = target + '/' + linuxProgram,
            .installedFiles = programFilesIn(target),
            .running = places.program.empty() ? std::string() : places.program + '/' + linuxProgram,
            .text = autostartEntry,
            .loader = {}};
}

std::string bundlePathOf(std::string_view executable) {
    std::string_view bundle = executable.substr(0, executable.rfind('/') + 1);
    constexpr std::string_view programs = ".app/Contents/MacOS/";
    if (!bundle.ends_with(programs)) {
        return {};
    }
    bundle.remove_suffix(std::string_view("Contents/MacOS/").size());
    std::string path;
    for (const char character : bundle) {
        const auto byte = static_cast<unsigned char>(character);
        const bool isPlain = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
                             (byte >= '0' && byte <= '9') ||
                             std::string_view("/-._~").find(character) != std::string_view::npos;
        path += isPlain ? std::string(1, character) : fmt::format("%{:02X}", byte);
    }
    return path;
}

InstallPlan macOSInstallPlan(std::string_view bundlePath) {
    return {.bundle = removingPercentEncoding(bundlePath),
            .programFiles = {},
            .target = installedBundle,
            .shownTarget = "/Applications",
            .installed = installedBundle,
            .installedFiles = {installedBundle},
            .launcher = {},
            .menuEntry = {},
            .icon = {},
            .isInstalled = false};
}

LoginPlan macOSLoginPlan(std::string_view bundlePath, const std::string& home) {
    if (home.empty()) {
        return {};
    }
    std::string running = removingPercentEncoding(bundlePath);
    if (!fitsIntoXML(running)) {
        running.clear();
    }
    const std::string folder = home + "/Library/LaunchAgents";
    return {.folder = folder,
            .shownFolder = "~/Library/LaunchAgents",
            .file = folder + "/com.rowanhesket.tallowcrest.pro.plist",
            .installed = installedBundle,
            .installedFiles = {installedBundle},
            .running = std::move(running),
            .text = launchAgent,
            .loader = "/bin/launchctl"};
}

bool holdsOwnersFiles(const InstallPlan& plan, const std::vector<FolderEntry>& entries) {
    const auto isProgramName = [&](const std::string& name) {
        return std::ranges::find(plan.programFiles, name) != plan.programFiles.end();
    };
    // `rsync` writes to ".NAME." and six more characters first.
    constexpr std::size_t ending = sizeof(".XXXXXX") - 1;
    const auto isTemporaryName = [&](const std::string& name) {
        return name.size() > ending && name.front() == '.' && name[name.size() - ending] == '.' &&
               isProgramName(name.substr(1, name.size() - ending - 1));
    };
    // A folder with the name of the program can hold its sources.
    const auto isFileNamed = [](const auto& hasName) {
        return [hasName](const FolderEntry& entry) { return entry.isFile && hasName(entry.name); };
    };
    return !plan.programFiles.empty() &&
           std::ranges::none_of(entries, isFileNamed(isProgramName)) &&
           !std::ranges::all_of(entries, isFileNamed(isTemporaryName));
}

std::vector<std::string> copyArguments(const InstallPlan& plan) {
    std::vector<std::string> arguments{"-a", "--delete"};
    if (!plan.programFiles.empty()) {
        // The program may run from a folder that has other files too.
        arguments.emplace_back("--delete-excluded");
        for (const std::string& file : plan.programFiles) {
            arguments.push_back("--include=/" + file);
        }
        arguments.emplace_back("--exclude=*");
    }
    arguments.push_back(plan.bundle + '/');
    arguments.push_back(plan.target + '/');
    return arguments;
}

}  // namespace tallowcrest
