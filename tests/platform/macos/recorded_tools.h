#pragma once

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "tests/platform/trash/own_mounts.h"
#include "tests/support/file_text.h"
#include "tests/support/lines_of.h"
#include "tests/support/scoped_variable.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {

/// Recorded tools of macOS, to be seen at their own absolute paths by `show`, and a home folder.
class RecordedTools {
public:
    RecordedTools() {
        for (const char* made : {"home", "tools", "tools/recordings"}) {
            std::filesystem::create_directory(folder_.path(made));
        }
        for (const char* tool : {"kill", "launchctl", "memory_pressure", "osascript", "ps", "purge",
                                 "rsync", "sysctl", "vm_stat"}) {
            std::filesystem::copy_file(TALLOWCREST_BINARY_DIR "/tests/recorded_tool",
                                       folder_.path("tools/" + std::string(tool)));
        }
    }

    /// Puts the tools in the place of those of this system. Inside `inOwnMounts` only.
    void show() const {
        for (const char* place : {"/usr/bin", "/usr/sbin", "/bin"}) {
            // The same folder as /usr/bin on most systems.
            if (!std::filesystem::exists(std::filesystem::path(place) / "vm_stat")) {
                mountBind(folder_.path("tools"), std::filesystem::canonical(place));
            }
        }
    }

    /// What the tool prints when it is called for the time `index`, from 0.
    void record(int index, const std::string& tool, const std::string& output) const {
        std::ofstream(fileOf(index, tool), std::ios::binary) << output;
    }
    /// It prints the second half a fifth of a second after the first.
    void letBeSlow(int index, const std::string& tool) const {
        std::ofstream(fileOf(index, tool) + ".slow").flush();
    }
    /// It then waits until it is ended.
    void letHang(int index, const std::string& tool) const {
        std::ofstream(fileOf(index, tool) + ".hangs").flush();
    }
    /// It then ends by a signal.
    void letBeKilled(int index, const std::string& tool) const {
        std::ofstream(fileOf(index, tool) + ".killed").flush();
    }

    /// The calls until now: the tool's name, a tab, and each argument in brackets.
    std::vector<std::string> calls() const {
        return linesOf(fileText(folder_.path("tools/recordings/calls")));
    }

    /// The variable LC_NUMERIC of each of these calls.
    std::vector<std::string> formsOfNumbers() const {
        return linesOf(fileText(folder_.path("tools/recordings/numbers")));
    }

    std::string home() const { return folder_.path("home"); }

private:
    std::string fileOf(int index, const std::string& tool) const {
        return folder_.path("tools/recordings/" + std::to_string(index) + '.' + tool);
    }

    TemporaryFolder folder_;

    ScopedVariable home_{"HOME", folder_.path("home")};
};

}  // namespace tallowcrest
