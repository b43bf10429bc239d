#include "tests/presentation/shell/accessible_places.h"

#include "actions/automation.h"
#include "actions/review_target.h"
#include "advisor/advisor.h"
#include "core/settings/settings_owner.h"
#include "disk/disk.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using dashboard_text::text;

void raiseLoad(Rig& rig) {
    rig.machine.metrics->memory.pressure = 95.0;
    rig.machine.tick();
    rig.settle();
}

void writeQuestion(Rig& rig) {
    rig.machine.monitor().advisor().chat.setAIChatInput("Why is it slow?");
    rig.settle();
}

/// One suggestion that can be run, with its trust record, and a draft that follows from it.
void suggest(Rig& rig) {
    Advisor& advisor = rig.machine.monitor().advisor();
    const std::vector<AIActionSuggestion> suggestions{
        {UUID::random(), "select_top", "Select it", "It helps.", "low"}};
    advisor.suggestions.setAIActions(suggestions);
    advisor.suggestions.approveAllSuggestions();
    advisor.drafts.generateRuleDrafts(suggestions);
    rig.settle();
}

/// The results of all searches of the disk, and a clean-up that can be undone.
void careForDisk(Rig& rig) {
    Disk& disk = rig.machine.monitor().disk();
    disk.storage.scanStorageAreas();
    disk.files.analyzePersonalFiles();
    disk.autopilot.reviewDiskCleanup();
    rig.finishWork();
    rig.machine.monitor().confirmations().confirmPending();
    rig.finishWork();
}

/// All of them under way, and a backup.
void searchDisk(Rig& rig) {
    Disk& disk = rig.machine.monitor().disk();
    careForDisk(rig);
    disk.files.backUpSuggestion(disk.files.state().storageOptimizationSuggestions.front());
    const auto answer = rig.disk.answer;
    answer("/media/backup");
    disk.storage.scanStorageAreas();
    disk.files.analyzePersonalFiles();
    disk.autopilot.undoLatestCleanup();
    disk.autopilot.reviewDiskCleanup();
    rig.keepWorkPending();
    rig.settle();
}

void cleanUpDisk(Rig& rig) {
    rig.machine.monitor().disk().autopilot.reviewDiskCleanup();
    rig.finishWork();
    rig.machine.monitor().confirmations().confirmPending();
    rig.keepWorkPending();
    rig.settle();
}

}  // namespace

void selectTarget(Rig& rig) {
    rig.machine.addProcess(701, "/usr/bin/editor", 300.0, 900.0);
    rig.machine.tick();
    rig.actions().review.selectProcessWithPID(700);
    rig.machine.monitor().log().recordMessage("Probe.");
    rig.settle();
}

void engageStop(Rig& rig) {
    rig.actions().automation.engageEmergencyStop();
    rig.settle();
}

std::vector<Place> places() {
    std::vector<Place> all{{u"without a target"_s, AppRoute::overview, [](Rig&) {}},
                           {u"processes without a target"_s, AppRoute::load, [](Rig&) {}},
                           {u"under load"_s, AppRoute::overview, raiseLoad},
                           {u"with a question"_s, AppRoute::chat, writeQuestion}};
    for (const AppRoute route : allAppRoutes) {
        all.push_back({text(rawValue(route)), route, selectTarget});
    }
    for (const AppRoute route : {AppRoute::overview, AppRoute::optimize, AppRoute::settings}) {
        all.push_back({u"stopped, "_s + text(rawValue(route)), route, engageStop});
    }
    for (const SettingsTabKind tab :
         {SettingsTabKind::ai, SettingsTabKind::remote, SettingsTabKind::localMac,
          SettingsTabKind::automation, SettingsTabKind::safety}) {
        all.push_back(
            {u"settings %1"_s.arg(static_cast<int>(tab)), AppRoute::chat, [tab](Rig& rig) {
                 rig.machine.monitor().settingsOwner().set(&Settings::protectedAppNames,
                                                           {"editor", "Logic Pro"});
                 rig.openSettings(tab);
             }});
    }
    all.push_back({u"settings with a key"_s, AppRoute::chat, &Rig::openSettingsWithKey});
    all.push_back({u"settings, stopped"_s, AppRoute::chat, [](Rig& rig) {
                       engageStop(rig);
                       rig.openSettings(SettingsTabKind::safety);
                   }});
    all.push_back({u"suggestions"_s, AppRoute::aiAdvisor, suggest});
    for (const AppRoute route :
         {AppRoute::overview, AppRoute::optimize, AppRoute::optimizationSuggestions}) {
        all.push_back({u"with a disk, "_s + text(rawValue(route)), route, careForDisk});
        all.push_back({u"cleaning, "_s + text(rawValue(route)), route, cleanUpDisk});
        all.push_back({u"searching, "_s + text(rawValue(route)), route, searchDisk});
    }
    all.push_back({u"confirmation"_s, AppRoute::chat, &Rig::ask});
    all.push_back({u"about"_s, AppRoute::chat, &Rig::openAbout});
    all.push_back({u"wizard"_s, AppRoute::chat, &Rig::openWizard});
    all.push_back({u"update offer"_s, AppRoute::chat, &Rig::openOffer});
    all.push_back({u"update failed"_s, AppRoute::chat, &Rig::openUpdateFailure});
    all.push_back({u"downloading"_s, AppRoute::chat, &Rig::beginDownload});
    all.push_back({u"settings, downloading"_s, AppRoute::chat, [](Rig& rig) {
                       rig.beginDownload();
                       rig.openSettings(SettingsTabKind::localMac);
                   }});
    all.push_back({u"panel"_s, AppRoute::chat, &Rig::openPanel});
    return all;
}

}  // namespace tallowcrest
