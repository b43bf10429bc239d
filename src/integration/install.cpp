#include "integration/install.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <utility>

#include "actions/tool_runner.h"
#include "core/activity_log.h"
#include "core/observable.h"
#include "core/services.h"
#include "integration/installation_files.h"
#include "integration/startup_files.h"

namespace tallowcrest {
namespace {

constexpr const char* copyTool = "/usr/bin/rsync";
constexpr std::chrono::milliseconds copyDeadline{20'000};

/// Whether `bundle` has the program. A copy of a folder without it would remove an installed one.
bool hasProgram(const InstallPlan& plan, const InstallationFiles& files) {
    return !plan.bundle.empty() &&
           std::ranges::all_of(plan.programFiles, [&](const std::string& name) {
               return files.exists(plan.bundle + '/' + name);
           });
}

Outcome notCompleted(const std::string& reason) {
    return Outcome::failed("Install did not complete. " + reason);
}

/// Makes what leads to the installed program, each as far as it can be made. `icon` is its picture.
/// Says what could not be made, and why; empty when all of it was.
std::string makeEntries(const InstallPlan& plan, InstallationFiles& files,
                        const std::string& icon) {
    std::string problems;
    const auto inItsFolder = [&](const std::string& path, const auto& make) {
        if (path.empty()) {
            return;
        }
        Outcome outcome = files.makeFolder(std::filesystem::path(path).parent_path());
        if (outcome.isAccepted()) {
            outcome = make();
        }
        if (!outcome.isAccepted()) {
            problems += (problems.empty() ? "" : "; ") + path + ": " + outcome.message;
        }
    };
    const auto write = [&files](const std::string& path, const std::string& text) {
        return files.writeFile(path, text, LinkedFolder::followed);
    };
    inItsFolder(plan.launcher, [&] { return files.makeLink(plan.launcher, plan.installed); });
    inItsFolder(plan.icon, [&] { return write(plan.icon, icon); });
    inItsFolder(plan.menuEntry, [&] { return write(plan.menuEntry, menuEntry(plan.installed)); });
    return problems;
}

struct Installed {
    Outcome outcome;
    std::string problems = {};  ///< of `makeEntries`
};

Installed install(const InstallPlan& plan, InstallationFiles& files, ToolRunner& tools,
                  const std::string& icon) {
    if (!hasProgram(plan, files)) {
        return {Outcome::refused("Could not locate the running app bundle.")};
    }
    const Outcome done = Outcome::done("Installed Tallowcrest to " + plan.shownTarget + '.');
    if (plan.isInstalled) {
        return {done};
    }
    if (files.isLink(plan.target)) {
        return {notCompleted(plan.shownTarget + " is a symbolic link.")};
    }
    if (!files.exists(copyTool)) {
        return {notCompleted(std::string(copyTool) + " is missing.")};
    }
    const std::string folder = std::filesystem::path(plan.target).parent_path();
    if (const Outcome made = files.makeFolder(folder); !made.isAccepted()) {
        return {notCompleted(folder + ": " + made.message)};
    }
    // Two copies at once would remove each other's temporary files.
    const auto reserved = files.reserve(folder);
    if (reserved == nullptr) {
        return {notCompleted("Another installation is under way.")};
    }
    // The copy would clear the folder.
    if (holdsOwnersFiles(plan, files.entriesOf(plan.target))) {
        return {notCompleted(plan.shownTarget + " is not empty and holds no Tallowcrest.")};
    }
    const std::string output = tools.runTool(copyTool, copyArguments(plan), copyDeadline);
    if (!files.allExist(plan.installedFiles)) {
        return {notCompleted(output.empty() ? "Try the installer script in outputs." : output)};
    }
    return {done, makeEntries(plan, files, icon)};
}

}  // namespace

Install::Install(const Services& services, ToolRunner& tools, InstallPorts ports)
    : log_(services.log),
      tools_(tools),
      ports_(std::move(ports)),
      observable_(std::make_unique<Observable>(services.jobs.mainQueue())),
      jobs_(services.jobs) {}

Install::~Install() = default;

Outcome Install::installToApplications() {
    if (state_.isInstalling) {
        return Outcome::ignored();
    }
    if (ports_.files == nullptr) {
        return log_.record(Outcome::refused("Could not locate the running app bundle."));
    }
    state_.isInstalling = true;
    observable_->changed();
    // The beginning is no event; the result is one.
    log_.setLastAction("Installing Tallowcrest...");
    jobs_.run(
        Lane::installation,
        [plan = ports_.install, files = ports_.files, &tools = tools_,
         icon = ports_.icon ? ports_.icon() : std::string()](const Stop&) {
            return install(plan, *files, tools, icon);
        },
        [this](const Installed& installed) {
            state_.isInstalling = false;
            observable_->changed();
            log_.record(installed.outcome);
            if (!installed.problems.empty()) {
                log_.recordMessage("Could not make " + installed.problems + '.');
            }
        });
    return Outcome::asked();
}

}  // namespace tallowcrest
