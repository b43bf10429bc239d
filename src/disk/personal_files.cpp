#include "disk/personal_files.h"

#include <chrono>
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
    handler_ = dependencies_.services.confirmations.registerKind(
        texts::confirmationKind,
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
    analyzed_ = std::make_shared<SharedResult<Analyzed>>();
    analysis_.begin().runWithProgress<SearchProgress>(
        Lane::personalFiles,
        [search = dependencies_.ports.largestFiles,
         request = LargestFilesRequest{dependencies_.ports.places.personal, largeFileBytes,
                                       maximumLargeFiles},
         shared = analyzed_, token = analysis_.stopToken()](const Stop& stop, const auto& report) {
            const EitherStop either(stop.stopToken(), token);
            Analyzed result{search->find(request, report, either.token()), false};
            result.isComplete = !either.token().stop_requested();
            shared->set(result);
            return result;
        },
        [this](SearchProgress progress) {
            state_.progress = std::move(progress);
            observable_->changed();
        },
        [this](const Analyzed& analyzed) { finishAnalysis(analyzed); });
    dependencies_.provider.requestAIAnalysisWithKey();
    return Outcome::asked();
}

void PersonalFiles::finishAnalysis(const Analyzed& analyzed) {
    const std::vector<FoundFile>& files = analyzed.files;
    analysis_.end();
    // What an earlier analysis found is better than nothing.
    if (analyzed.isComplete || !files.empty()) {
        showFound(files);
    }
    if (analyzed.isComplete) {
        endAnalysis(texts::found(files.size()), texts::analyzedEvent);
    } else {
        endAnalysis(texts::stopped(files.size()), texts::stoppedEvent);
    }
}

void PersonalFiles::giveUpAnalysis() {
    // It can have ended just before its result arrived.
    finishAnalysis(analyzed_->get().value_or(Analyzed{}));
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
    if (!analysis_.stopOrForget([this] { giveUpAnalysis(); })) {
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
    backupUnderWay_ = {suggestion, std::make_shared<SharedResult<Copied>>()};
    backup_.begin().runWithProgress<CopyProgress>(
        Lane::personalFiles,
        [copy = dependencies_.ports.copy, file = suggestion.path, identity = suggestion.identity,
         folder = std::move(folder), now = backupBegan_, shared = backupUnderWay_->copied,
         token = backup_.stopToken()](const Stop& stop, const auto& report) {
            Copied result{backupPath(file, folder, now), {}};
            // No change that the end of the program waits for: a copy can take hours.
            const EitherStop either(stop.stopToken(), token);
            result.error = copy->copy({file, result.destination, identity}, report, either.token());
            shared->set(result);
            return result;
        },
        [this](const CopyProgress& progress) { showBackup(progress); },
        [this](const Copied& copied) { finishBackup(copied); });
}

void PersonalFiles::showBackup(const CopyProgress& progress) {
    if (progress.isChecking && !state_.backup->isChecking) {
        state_.backup->isChecking = true;
        backupBegan_ = dependencies_.services.clock.now();
        if (!state_.backup->isStopping) {
            setStatus(texts::checkingCopy(state_.backup->title));
        }
    }
    const double seconds = secondsBetween(backupBegan_, dependencies_.services.clock.now());
    state_.backup->copied = progress.done;
    state_.backup->all = progress.all;
    // The clock may have been set back.
    state_.backup->bytesPerSecond =
        seconds > 0.0 ? static_cast<double>(progress.done) / seconds : 0.0;
    observable_->changed();
}

void PersonalFiles::recordBackup(const Copied& copied) {
    const std::string title = std::exchange(backupUnderWay_, std::nullopt)->suggestion.title;
    ActivityLog& log = dependencies_.services.log;
    if (!copied.error) {
        setStatus(texts::backedUp(shownPath(nameOf(copied.destination))));
        log.recordEvent(ActivityKind::backupReceipt,
                        texts::backupReceipt(title, shownPath(copied.destination)));
    } else if (state_.backup->isStopping) {
        setStatus(texts::backupStopped(title));
        log.recordEvent(ActivityKind::backupReceipt, texts::backupStoppedReceipt(title));
    } else {
        setStatus(texts::backupFailed(*copied.error));
        log.recordMessage(texts::backupFailedMessage(title, *copied.error));
    }
}

void PersonalFiles::finishBackup(const Copied& copied) {
    recordBackup(copied);
    backup_.end();
    state_.backup.reset();
    observable_->changed();
    if (!copied.error && canReveal()) {
        dependencies_.ports.desktop.reveal(copied.destination);
    }
}

Outcome PersonalFiles::stopBackup() {
    if (!backup_.stopOrForget([this] { giveUpBackup(); }, StoppableRun::patienceWithAChange)) {
        return Outcome::ignored();
    }
    state_.backup->isStopping = true;
    setStatus(texts::stoppingBackup(state_.backup->title));
    return Outcome::asked();
}

void PersonalFiles::giveUpBackup() {
    // It can have ended just before its result arrived.
    if (const auto copied = backupUnderWay_->copied->get()) {
        finishBackup(*copied);
        return;
    }
    const std::string title = std::exchange(backupUnderWay_, std::nullopt)->suggestion.title;
    state_.backup.reset();
    setStatus(texts::backupGivenUp(title));
    dependencies_.services.log.recordEvent(ActivityKind::backupReceipt,
                                           texts::backupGivenUpReceipt(title));
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
    const auto move = std::make_shared<Move>();
    trashing_.push_back({*pending, move});
    jobs_.run(
        Lane::personalFiles,
        [trash = dependencies_.ports.trash, move,
         request =
             TrashRequest{.path = pending->path, .identity = pending->identity}](const Stop& stop) {
            // Until the outcome is set, so that the end of the program finds it.
            const auto change = stop.beginChange();
            move->hasBegun = change.has_value();
            TrashOutcome outcome =
                change ? trash->moveToTrash(request) : TrashOutcome{.error = texts::canceled};
            move->outcome.set(outcome);
            return outcome;
        },
        [this, suggestion = *pending, move](const TrashOutcome& outcome) {
            // Those that the end of the program has told are not told again.
            if (std::erase_if(trashing_, [&](const Trashing& each) { return each.move == move; }) >
                0) {
                finishTrash(suggestion, outcome);
            }
        });
    return Outcome::asked();
}

bool PersonalFiles::recordTrash(const StorageOptimizationSuggestion& suggestion,
                                const TrashOutcome& outcome) {
    ActivityLog& log = dependencies_.services.log;
    if (!outcome.movedBytes) {
        log.recordMessage(texts::trashFailed(suggestion.title, outcome.error));
        return false;
    }
    std::erase_if(
        state_.storageOptimizationSuggestions,
        [&](const StorageOptimizationSuggestion& each) { return each.id == suggestion.id; });
    setStatus(texts::trashed(suggestion.title));
    log.recordEvent(ActivityKind::storageCleanupReceipt, texts::trashReceipt(suggestion));
    return true;
}

void PersonalFiles::finishTrash(const StorageOptimizationSuggestion& suggestion,
                                const TrashOutcome& outcome) {
    if (recordTrash(suggestion, outcome)) {
        dependencies_.refresh();
    }
}

void PersonalFiles::recordUnfinished() {
    for (const Trashing& each : std::exchange(trashing_, {})) {
        if (const auto outcome = each.move->outcome.get()) {
            recordTrash(each.suggestion, *outcome);
        } else if (each.move->hasBegun) {
            dependencies_.services.log.recordEvent(
                ActivityKind::storageCleanupReceipt,
                texts::trashUnansweredReceipt(each.suggestion.title));
        } else {
            recordTrash(each.suggestion, {.error = texts::canceled});
        }
    }
    const auto copied = backupUnderWay_ ? backupUnderWay_->copied->get() : std::nullopt;
    if (copied) {
        recordBackup(*copied);
        backup_.forget();
    }
}

}  // namespace tallowcrest
