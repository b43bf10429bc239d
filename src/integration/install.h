#pragma once

#include <memory>
#include <string>

#include "core/jobs/jobs.h"
#include "core/outcome.h"
#include "integration/integration_ports.h"

namespace tallowcrest {

class ActivityLog;
class Observable;
class ToolRunner;
struct Services;

/// Copies the running program to where its user installs programs. Main thread.
class Install {
public:
    struct State {
        bool isInstalling = false;
    };

    /// The references must outlive the object.
    Install(const Services& services, ToolRunner& tools, InstallPorts ports);
    ~Install();
    Install(const Install&) = delete;
    Install& operator=(const Install&) = delete;

    const State& state() const { return state_; }
    /// Where the program is copied, as texts name it, "/Applications"; empty where nothing can be
    /// installed, and where the program is installed for all users.
    std::string shownTarget() const {
        return ports_.install.isInstalled ? std::string() : ports_.install.shownTarget;
    }

    /// Copies in the background; the last action says so, and the message then what became of it.
    /// Ignored while an installation is under way. Refused where the running program cannot be
    /// located.
    ///
    /// Whether it worked is judged by the installed program being there afterwards, as an earlier
    /// installation is, too. A launcher, icon or menu entry that could not be made is told by a
    /// second message.
    Outcome installToApplications();

    /// Notifies of changes of `state`.
    Observable& observable() { return *observable_; }

private:
    ActivityLog& log_;
    ToolRunner& tools_;
    InstallPorts ports_;
    std::unique_ptr<Observable> observable_;
    State state_;
    JobScope jobs_;
};

}  // namespace tallowcrest
