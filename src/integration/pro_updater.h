#pragma once

#include <cstddef>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <variant>

#include "core/jobs/jobs.h"
#include "core/outcome.h"
#include "disk/stoppable_run.h"
#include "integration/update_alerts.h"
#include "integration/update_ports.h"
#include "integration/update_steps.h"

namespace tallowcrest {

class Clock;
class Observable;
class SettingsOwner;
struct Services;

/// Asks a feed for a newer build, offers it, and on the owner's word downloads its image, verifies
/// it and opens it. It installs nothing, and writes nothing into the activity log: what it has to
/// say are alerts. Main thread.
class ProUpdater {
public:
    struct Download {
        std::string version;  ///< any text
        DownloadProgress progress = {};
        bool isStopping = false;
    };

    struct State {
        /// From the begin of a check until its alert is answered.
        bool isChecking = false;
        /// Whether the outcome of a check that the owner asked for is still to come.
        bool isAwaited = false;
        std::optional<Download> download = {};  ///< absent when none is under way
    };

    /// The references must outlive the object.
    ProUpdater(const Services& services, UpdatePorts ports);
    ~ProUpdater();
    ProUpdater(const ProUpdater&) = delete;
    ProUpdater& operator=(const ProUpdater&) = delete;

    const State& state() const { return state_; }

    /// Begins a check that says nothing unless there is an update, when the latest successful one
    /// was at least a day ago. To be called once per start.
    void checkOnLaunchIfDue();

    /// Begins a check of which every outcome is shown. Ignored during another check; a download
    /// does not matter.
    Outcome checkForUpdates();

    /// The alert to show, of several the oldest; null when there is none.
    const UpdateAlert* alert() const;
    /// The owner pressed the button with this index in that alert, or closed the alert. Ignored
    /// without an alert or such a button.
    Outcome answer(std::size_t button);

    /// Ends the download without an alert; nothing of it stays. Ignored without a download.
    Outcome cancelDownload();

    /// Notifies of changes of `state` and `alert`.
    Observable& observable() { return *observable_; }

private:
    using Fetched = std::variant<Release, UpdateError>;
    using Downloaded = std::variant<std::string, UpdateError>;

    struct Shown {
        UpdateAlert alert;
        bool endsCheck = false;
        std::optional<Release> offered = {};
    };

    std::int64_t currentBuild() const { return buildNumber(ports_.build.build); }
    Outcome check(bool isInteractive);
    void finishCheck(const Fetched& fetched, bool isInteractive);
    void endCheck();
    void show(Shown shown);
    void answerOffer(const Release& release, OfferButton button);
    void download(const Release& release);
    void finishDownload(const Downloaded& downloaded);

    SettingsOwner& settings_;
    const Clock& clock_;
    UpdatePorts ports_;
    std::unique_ptr<Observable> observable_;
    State state_;
    std::deque<Shown> alerts_;
    std::unique_ptr<FileOpening> opening_;  ///< of the latest image; null before the first one
    JobScope jobs_;
    StoppableRun downloading_;
};

}  // namespace tallowcrest
