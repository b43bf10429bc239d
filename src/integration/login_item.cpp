#include "integration/login_item.h"

#include <chrono>
#include <string>
#include <utility>

#include "actions/tool_runner.h"
#include "core/activity_log.h"
#include "core/observable.h"
#include "core/services.h"
#include "integration/installation_files.h"
#include "integration/startup_files.h"

namespace tallowcrest {
namespace {

/// Whether that worked is not told, so nothing depends on it.
void callLoader(const LoginPlan& plan, ToolRunner& tools, const char* command) {
    constexpr std::chrono::milliseconds deadline{2000};
    if (!plan.loader.empty()) {
        tools.runTool(plan.loader, {command, plan.file}, deadline);
    }
}

bool isOn(const LoginPlan& plan, const InstallationFiles& files) {
    return files.exists(plan.file) && !isTurnedOff(files.readFile(plan.file));
}

Outcome enable(const LoginPlan& plan, InstallationFiles& files, ToolRunner& tools) {
    const auto failed = [](const std::string& reason) {
        return Outcome::failed("Could not enable launch at login: " + reason);
    };
    const std::string& application =
        files.allExist(plan.installedFiles) ? plan.installed : plan.running;
    if (files.isLink(plan.folder)) {
        return Outcome::refused("Blocked launch-at-login setup because " + plan.shownFolder +
                                " is a symbolic link.");
    }
    if (const Outcome made = files.makeFolder(plan.folder); !made.isAccepted()) {
        return failed(made.message);
    }
    if (files.isLink(plan.file)) {
        return Outcome::refused(
            "Blocked launch-at-login setup because the agent file is a symbolic link.");
    }
    if (application.empty()) {
        return failed("Could not locate the running app bundle.");
    }
    if (const Outcome written =
            files.writeFile(plan.file, plan.text(application), LinkedFolder::refused);
        !written.isAccepted()) {
        return failed(written.message);
    }
    callLoader(plan, tools, "unload");
    callLoader(plan, tools, "load");
    return Outcome::done("Enabled launch at login.");
}

Outcome disable(const LoginPlan& plan, InstallationFiles& files, ToolRunner& tools) {
    if (files.isLink(plan.file)) {
        return Outcome::refused(
            "Blocked launch-at-login removal because the agent file is a symbolic link.");
    }
    callLoader(plan, tools, "unload");
    if (files.exists(plan.file)) {
        if (const Outcome removed = files.removeFile(plan.file); !removed.isAccepted()) {
            return Outcome::failed("Could not disable launch at login: " + removed.message);
        }
    }
    return Outcome::done("Disabled launch at login.");
}

}  // namespace

LoginItem::LoginItem(const Services& services, ToolRunner& tools, InstallPorts ports)
    : log_(services.log),
      tools_(tools),
      ports_(std::move(ports)),
      observable_(std::make_unique<Observable>(services.jobs.mainQueue())),
      jobs_(services.jobs) {
    state_.isEnabled = ports_.files != nullptr && isOn(ports_.login, *ports_.files);
}

LoginItem::~LoginItem() = default;

void LoginItem::lookAgain() {
    if (ports_.files == nullptr || state_.isChanging) {
        return;
    }
    jobs_.run(
        Lane::installation,
        [files = ports_.files, plan = ports_.login](const Stop&) { return isOn(plan, *files); },
        [this, look = ++newest_](bool isEnabled) {
            if (look == newest_ && isEnabled != state_.isEnabled) {
                state_.isEnabled = isEnabled;
                observable_->changed();
            }
        });
}

Outcome LoginItem::enableLaunchAtLogin(Finished finished) {
    return begin(enable, std::move(finished));
}

Outcome LoginItem::disableLaunchAtLogin(Finished finished) {
    return begin(disable, std::move(finished));
}

Outcome LoginItem::begin(Change change, Finished finished) {
    if (state_.isChanging) {
        return Outcome::ignored();
    }
    if (ports_.files == nullptr) {
        return log_.record(Outcome::refused("Could not locate the running app bundle."));
    }
    struct Result {
        Outcome outcome;
        bool isEnabled;
    };
    ++newest_;
    state_.isChanging = true;
    observable_->changed();
    jobs_.run(
        Lane::installation,
        [change, plan = ports_.login, files = ports_.files, &tools = tools_](const Stop&) {
            Outcome outcome = change(plan, *files, tools);
            return Result{std::move(outcome), isOn(plan, *files)};
        },
        [this, finished = std::move(finished)](const Result& result) {
            state_ = {.isEnabled = result.isEnabled, .isChanging = false};
            observable_->changed();
            log_.record(result.outcome);
            if (finished) {
                finished(result.outcome);
            }
        });
    return Outcome::asked();
}

}  // namespace tallowcrest
