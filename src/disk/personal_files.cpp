#include "disk/personal_files.h"

#include <utility>

#include <fmt/format.h>

#include "advisor/provider.h"
#include "core/activity_kinds.h"
#include "core/activity_log.h"
#include "core/clock.h"
#include "core/confirmation_desk.h"
#include "core/observable.h"
#include "core/settings/settings_owner.h"
#include "disk/file_names.h"
#include "disk/storage_suggestions.h"

namespace tallowcrest {
namespace {

namespace texts = personal_file_texts;

std::string nameOf(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

/// The path of the copy of `file` in `folder`.
std::string backupPath(const std::string& file, const std::string& folder, Date now) {
    const std::string prefix = folder.ends_with('/') ? folder : folder + '/';
    const std::string name = nameOf(file);
    return nameExists(prefix + name) ? prefix + backupName(name, now) : prefix + name;
}

}  // namespace

PersonalFiles::PersonalFiles(Dependencies dependencies)
    : dependencies_(std::move(dependencies)),
      observable_(std::make_unique<Observable>(dependencies_.services.jobs.mainQueue())),
      jobs_(dependencies_.services.jobs),
      analysis_(dependencies_.services.jobs),
      backup_(dependencies_.services.jobs) {
    dependencies_.services.confirmations.registerKind(
        std::string(texts::confirmationKind),
        {.confirm = [this](const ConfirmationRequest&, void*) { return trashPendingSuggestion(); },
         .cancel = {}});
}

PersonalFiles::~PersonalFiles() = default;

void PersonalFiles::setStatus(std::string status) {
    state_.storageAnalyzerStatus = std::move(status);
    observable_->changed();
}

Outcome PersonalFiles::refuse(std::string message) const {
    return dependencies_.services.log.record(Outcome::refused(std::move(message)));
}

Outcome PersonalFiles::analyzePersonalFiles() {
    if (dependencies_.ports.largestFiles == nullptr) {
        return refuse("The storage analyzer is not available here.");
    }
    if (state_.storageAnalyzerBusy) {
        return Outcome::ignored();
    }
    state_.storageAnalyzerBusy = true;
    state_.progress = {};
    setStatus(std::string(texts::analyzing));
    analysis_.begin().runWithProgress<SearchProgress>(
        Lane::personalFiles,
        [search = dependencies_.ports.largestFiles,
         request = LargestFilesRequest{dependencies_.ports.places.personal, largeFileBytes,
                                       maximumLargeFiles},
         token = analysis_.stopToken()](const Stop& stop, const auto& report) {
            const EitherStop either(stop.stopToken(), token);
            return search->find(request, report, either.token());
        },
        [this](SearchProgress progress) {
            state_.progress = std::move(progress);
            observable_->changed();
        },
        [this](const std::vector<FoundFile>& files) { finishAnalysis(files); });
    const ProviderState& provider = dependencies_.provider.state();
    if (provider.openAIKeySaved && !provider.aiBusy) {
        dependencies_.provider.requestAIAnalysis();
    }
    return Outcome::asked();
}

void PersonalFiles::finishAnalysis(const std::vector<FoundFile>& files) {
    const bool wasStopped = analysis_.isStopping();
    analysis_.end();
    // What an earlier analysis found is better than nothing.
    if (!wasStopped || !files.empty()) {
        showFound(files);
    }
    if (wasStopped) {
        endAnalysis(texts::stopped(files.size()), texts::stoppedEvent);
    } else {
        endAnalysis(texts::found(files.size()), texts::analyzedEvent);
    }
}

void PersonalFiles::showFound(const std::vector<FoundFile>& files) {
    const Date now = dependencies_.services.clock.now();
    state_.storageOptimizationSuggestions.clear();
    for (const FoundFile& file : files) {
        state_.storageOptimizationSuggestions.push_back(
            makeSuggestion(file, now, dependencies_.ports.places.home));
    }
}

void PersonalFiles::endAnalysis(std::string status, std::string_view event) {
    state_.storageAnalyzerBusy = false;
    state_.isStopping = false;
    setStatus(std::move(status));
    dependencies_.services.log.recordEvent(ActivityKind::storageAnalyzer, std::string(event));
}

Outcome PersonalFiles::stopAnalysis() {
    const bool isStopping =
        analysis_.stopOrForget([this] { endAnalysis(texts::stopped(0), texts::stoppedEvent); });
    if (!isStopping) {
        return Outcome::ignored();
    }
    state_.isStopping = true;
    observable_->changed();
    return Outcome::asked();
}

void PersonalFiles::readBookmark() const {
    // It would be a permission for a sandbox. This program runs in none, so that no bookmark can be
    // resolved, and none is needed.
    dependencies_.services.settings.removeStorageAnalysisBookmark();
}

bool PersonalFiles::canReveal() const {
    return static_cast<bool>(dependencies_.ports.desktop.reveal);
}

bool PersonalFiles::canBackUp() const {
    return dependencies_.ports.desktop.chooseFolder && dependencies_.ports.copy != nullptr;
}

Outcome PersonalFiles::revealSuggestion(const StorageOptimizationSuggestion& suggestion) {
    if (!canReveal()) {
        return refuse("There is no file manager here.");
    }
    readBookmark();
    dependencies_.ports.desktop.reveal(suggestion.path);
    return dependencies_.services.log.record(
        Outcome::done(fmt::format("Revealed {} in Finder.", suggestion.title)));
}

Outcome PersonalFiles::backUpSuggestion(const StorageOptimizationSuggestion& suggestion) {
    if (!canBackUp()) {
        return refuse("Backups are not available here.");
    }
    if (backup_.isUnderWay()) {
        return refuse("Another backup is under way.");
    }
    readBookmark();
    folderQuestion_ = dependencies_.ports.desktop.chooseFolder(
        "Choose a Backup Folder", "Back Up Here",
        [this, suggestion](std::optional<std::string> folder) {
            folderQuestion_.reset();
            if (folder && !folder->empty()) {
                beginBackup(suggestion, *std::move(folder));
            }
        });
    return Outcome::asked();
}

void PersonalFiles::beginBackup(const StorageOptimizationSuggestion& suggestion,
                                std::string folder) {
    backupBegan_ = dependencies_.services.clock.now();
    state_.backup = BackupProgress{.title = suggestion.title};
    setStatus(texts::backingUp(suggestion.title));
    backup_.begin().runWithProgress<CopyProgress>(
        Lane::personalFiles,
        [copy = dependencies_.ports.copy, file = suggestion.path, identity = suggestion.identity,
         folder = std::move(folder), now = backupBegan_,
         token = backup_.stopToken()](const Stop& stop, const auto& report) {
            Copied result{backupPath(file, folder, now), {}};
            // No change that the end of the program waits for: a copy can take hours.
            const EitherStop either(stop.stopToken(), token);
            result.error = copy->copy({file, result.destination, identity}, report, either.token());
            return result;
        },
        [this](const CopyProgress& progress) { showBackup(progress); },
        [this, suggestion](const Copied& copied) { finishBackup(suggestion, copied); });
}

void PersonalFiles::showBackup(const CopyProgress& progress) {
    if (progress.isChecking && !state_.backup->isChecking) {
        state_.backup->isChecking = true;
        backupBegan_ = dependencies_.services.clock.now();
        setStatus(texts::checkingCopy(state_.backup->title));
    }
    const double seconds = secondsBetween(backupBegan_, dependencies_.services.clock.now());
    state_.backup->copied = progress.done;
    state_.backup->all = progress.all;
    // The clock may have been set back.
    state_.backup->bytesPerSecond =
        seconds > 0.0 ? static_cast<double>(progress.done) / seconds : 0.0;
    observable_->changed();
}

void PersonalFiles::finishBackup(const StorageOptimizationSuggestion& suggestion,
                                 const Copied& copied) {
    const bool wasStopped = backup_.isStopping();
    backup_.end();
    state_.backup.reset();
    ActivityLog& log = dependencies_.services.log;
    if (!copied.error) {
        setStatus(texts::backedUp(shownPath(nameOf(copied.destination))));
        log.recordEvent(ActivityKind::backupReceipt,
                        texts::backupReceipt(suggestion.title, shownPath(copied.destination)));
        dependencies_.ports.desktop.reveal(copied.destination);
    } else if (wasStopped) {
        setStatus(texts::backupStopped(suggestion.title));
        log.recordEvent(ActivityKind::backupReceipt, texts::backupStoppedReceipt(suggestion.title));
    } else {
        setStatus(texts::backupFailed(*copied.error));
        log.recordMessage(texts::backupFailedMessage(suggestion.title, *copied.error));
    }
}

Outcome PersonalFiles::stopBackup() {
    if (!backup_.stop()) {
        return Outcome::ignored();
    }
    state_.backup->isStopping = true;
    observable_->changed();
    return Outcome::asked();
}

Outcome PersonalFiles::requestTrashSuggestion(const StorageOptimizationSuggestion& suggestion) {
    if (dependencies_.ports.trash == nullptr) {
        return refuse("There is no Trash here.");
    }
    state_.pendingStorageSuggestion = suggestion;
    observable_->changed();
    dependencies_.services.confirmations.requestConfirmation(texts::trashRequest(suggestion));
    return Outcome::asked();
}

Outcome PersonalFiles::trashPendingSuggestion() {
    const auto pending = std::exchange(state_.pendingStorageSuggestion, std::nullopt);
    if (!pending) {
        return Outcome::ignored();
    }
    readBookmark();
    observable_->changed();
    jobs_.run(
        Lane::personalFiles,
        [trash = dependencies_.ports.trash,
         request =
             TrashRequest{.path = pending->path, .identity = pending->identity}](const Stop& stop) {
            const auto change = stop.beginChange();
            return change ? trash->moveToTrash(request) : TrashOutcome{.error = "canceled"};
        },
        [this, suggestion = *pending](const TrashOutcome& outcome) {
            finishTrash(suggestion, outcome);
        });
    return Outcome::asked();
}

void PersonalFiles::finishTrash(const StorageOptimizationSuggestion& suggestion,
                                const TrashOutcome& outcome) {
    ActivityLog& log = dependencies_.services.log;
    if (!outcome.movedBytes) {
        log.recordMessage(texts::trashFailed(suggestion.title, outcome.error));
        return;
    }
    std::erase_if(
        state_.storageOptimizationSuggestions,
        [&](const StorageOptimizationSuggestion& each) { return each.id == suggestion.id; });
    setStatus(texts::trashed(suggestion.title));
    log.recordEvent(ActivityKind::storageCleanupReceipt, texts::trashReceipt(suggestion));
    dependencies_.refresh();
}

}  // namespace tallowcrest
