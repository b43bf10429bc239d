#include "integration/pro_updater.h"

#include <utility>

#include "core/clock.h"
#include "core/observable.h"
#include "core/services.h"
#include "core/settings/settings_owner.h"

namespace tallowcrest {

ProUpdater::ProUpdater(const Services& services, UpdatePorts ports)
    : settings_(services.settings),
      clock_(services.clock),
      ports_(std::move(ports)),
      observable_(std::make_unique<Observable>(services.jobs.mainQueue())),
      jobs_(services.jobs),
      downloading_(services.jobs) {}

ProUpdater::~ProUpdater() = default;

void ProUpdater::checkOnLaunchIfDue() {
    constexpr double day = 86400.0;
    const Date last{settings_.values().lastUpdateCheck};
    if (!ports_.isUnderTest && secondsBetween(last, clock_.now()) >= day) {
        check(false);
    }
}

Outcome ProUpdater::checkForUpdates() {
    return check(true);
}

Outcome ProUpdater::check(bool isInteractive) {
    if (state_.isChecking) {
        return Outcome::ignored();
    }
    state_.isChecking = true;
    state_.isAwaited = isInteractive;
    observable_->changed();
    if (ports_.transport == nullptr || !hasFeed(ports_.build)) {
        finishCheck(UpdateError{update_errors::badURL}, isInteractive);
        return Outcome::asked();
    }
    jobs_.run(
        Lane::updates,
        [transport = ports_.transport, build = ports_.build](const Stop& stop) {
            return fetchRelease(*transport, build, stop.stopToken());
        },
        [this, isInteractive](const Fetched& fetched) { finishCheck(fetched, isInteractive); });
    return Outcome::asked();
}

void ProUpdater::finishCheck(const Fetched& fetched, bool isInteractive) {
    state_.isAwaited = false;
    const auto* release = std::get_if<Release>(&fetched);
    if (release != nullptr) {
        settings_.set(&Settings::lastUpdateCheck, clock_.now().secondsSinceReference);
    }
    if (release != nullptr && currentBuild() < release->build) {
        show({updateOffer(*release, currentBuild()), true, *release});
    } else if (!isInteractive) {
        endCheck();
    } else if (release != nullptr) {
        show({upToDateAlert(ports_.build.version, currentBuild()), true});
    } else {
        show({checkFailedAlert(std::get<UpdateError>(fetched).description), true});
    }
}

void ProUpdater::endCheck() {
    state_.isChecking = false;
    observable_->changed();
}

void ProUpdater::show(Shown shown) {
    alerts_.push_back(std::move(shown));
    observable_->changed();
}

const UpdateAlert* ProUpdater::alert() const {
    return alerts_.empty() ? nullptr : &alerts_.front().alert;
}

Outcome ProUpdater::answer(std::size_t button) {
    if (alerts_.empty() || button >= alerts_.front().alert.buttons.size()) {
        return Outcome::ignored();
    }
    const Shown answered = std::move(alerts_.front());
    alerts_.pop_front();
    observable_->changed();
    if (answered.offered) {
        answerOffer(*answered.offered, static_cast<OfferButton>(button));
    }
    if (answered.endsCheck) {
        endCheck();
    }
    return Outcome::done();
}

void ProUpdater::answerOffer(const Release& release, OfferButton button) {
    switch (button) {
        case OfferButton::download:
            download(release);
            break;
        case OfferButton::later:
            break;
        case OfferButton::releaseNotes:
            if (ports_.openAddress) {
                ports_.openAddress(*release.releaseNotesURL);
            }
            break;
    }
}

void ProUpdater::download(const Release& release) {
    if (downloading_.isUnderWay()) {
        return;
    }
    state_.download = Download{.version = release.version};
    observable_->changed();
    JobScope& jobs = downloading_.begin();
    jobs.runWithProgress<DownloadProgress>(
        Lane::updates,
        [transport = ports_.transport, images = ports_.images, release,
         ending = ports_.build.imageEnding,
         canceled = downloading_.stopToken()](const Stop& stop, const auto& report) {
            const EitherStop either(stop.stopToken(), canceled);
            return downloadImage(*transport, *images, release, ending, report, either.token());
        },
        [this](const DownloadProgress& progress) {
            state_.download->progress = progress;
            observable_->changed();
        },
        [this](const Downloaded& downloaded) { finishDownload(downloaded); });
}

void ProUpdater::finishDownload(const Downloaded& downloaded) {
    const bool isCanceled = downloading_.isStopping();
    downloading_.end();
    state_.download.reset();
    observable_->changed();
    if (isCanceled) {
        // Complete before the owner pressed Cancel, but not yet told here.
        if (const auto* image = std::get_if<std::string>(&downloaded)) {
            ports_.images->remove(*image);
        }
        return;
    }
    if (const auto* error = std::get_if<UpdateError>(&downloaded)) {
        show({downloadFailedAlert(error->description)});
        return;
    }
    const std::string& path = std::get<std::string>(downloaded);
    const auto told = [this, path](bool isOpened) {
        if (!isOpened) {
            show({downloadFailedAlert("No application opens " + path)});
        }
    };
    if (ports_.openFile) {
        opening_ = ports_.openFile(path, told);
    } else {
        told(false);
    }
}

Outcome ProUpdater::cancelDownload() {
    if (!downloading_.stop()) {
        return Outcome::ignored();
    }
    state_.download->isStopping = true;
    observable_->changed();
    return Outcome::done();
}

}  // namespace tallowcrest
