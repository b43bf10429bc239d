#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "core/jobs/jobs.h"
#include "core/outcome.h"
#include "integration/integration_ports.h"

namespace tallowcrest {

class ActivityLog;
class Observable;
class ToolRunner;
struct Services;

/// Whether this program starts when its user logs in. The file that starts it, which the desktop may
/// have turned off, is the state; no setting mirrors it. Main thread.
class LoginItem {
public:
    struct State {
        /// Whether the file was there and not turned off when it was last looked at: at the start,
        /// by `lookAgain` and after each operation.
        bool isEnabled = false;
        bool isChanging = false;
    };

    /// Looks at the file. The references must outlive the object.
    LoginItem(const Services& services, ToolRunner& tools, InstallPorts ports);
    ~LoginItem();
    LoginItem(const LoginItem&) = delete;
    LoginItem& operator=(const LoginItem&) = delete;

    /// Gets the recorded result of an operation that was begun, on a later turn.
    using Finished = std::function<void(const Outcome&)>;

    const State& state() const { return state_; }

    /// Looks at the file in the background: others may have made, changed or removed it.
    void lookAgain();

    // Both work in the background, and their message then says what became of it. Ignored while one
    // of them is under way. Neither writes, removes or loads anything through a symbolic link.

    /// Starts the installed program at login, or the running one as long as none is installed. A
    /// later installation does not change that.
    Outcome enableLaunchAtLogin(Finished finished = {});
    /// Done also when it was not enabled.
    Outcome disableLaunchAtLogin(Finished finished = {});

    /// Notifies of changes of `state`.
    Observable& observable() { return *observable_; }

private:
    using Change = Outcome (*)(const LoginPlan&, InstallationFiles&, ToolRunner&);
    Outcome begin(Change change, Finished finished);

    ActivityLog& log_;
    ToolRunner& tools_;
    InstallPorts ports_;
    std::unique_ptr<Observable> observable_;
    State state_;
    /// The number of the newest look or change. Jobs can end in another order than they began, and
    /// what an older look saw no longer counts.
    std::uint64_t newest_ = 0;
    JobScope jobs_;
};

}  // namespace tallowcrest
