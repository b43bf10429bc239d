#include "presentation/screens/remote_macs/remote_macs_page.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include <QPushButton>
#include <QScrollBar>
#include <QVBoxLayout>

#include "actions/actions.h"
#include "actions/desktop_actions.h"
#include "actions/local_actions.h"
#include "core/clock.h"
#include "core/jobs/jobs.h"
#include "core/settings/settings_owner.h"
#include "monitor/system_monitor.h"
#include "presentation/screens/remote_macs/attention_card.h"
#include "presentation/screens/remote_macs/local_health_card.h"
#include "presentation/screens/remote_macs/remote_detail_card.h"
#include "presentation/screens/remote_macs/remote_health_list.h"
#include "presentation/screens/remote_macs/remote_macs_commands.h"
#include "presentation/screens/remote_macs/remote_macs_lines.h"
#include "presentation/screens/remote_macs/setup_checklist_card.h"
#include "presentation/screens/remote_macs/tailscale_block.h"
#include "presentation/screens/shared/remote_timeline_card.h"
#include "presentation/state/window_state.h"
#include "presentation/widgets/page_scroll_area.h"
#include "presentation/widgets/theme.h"
#include "presentation/words/remote_timeline.h"
#include "remote/remote.h"
#include "sampling/latest_sample.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

/// The ages are told in minutes. A figure may look younger by this much.
constexpr std::chrono::seconds agePeriod{20};

}  // namespace

RemoteMacsPage::RemoteMacsPage(SystemMonitor& monitor, WindowState& state, QWidget* parent)
    : Screen(parent), monitor_(monitor), state_(state) {
    layOutParts();
    connectParts();
    connectMachines();
}

RemoteMacsPage::~RemoteMacsPage() = default;

void RemoteMacsPage::layOutParts() {
    // So that the three figures stand side by side in the smallest window.
    constexpr int narrowestCard = 160;
    auto* content = new QWidget;
    auto* layout = makePageColumn(*content);
    attention_ = new AttentionCard;
    summary_.emplace(u"remote.summary-card"_s, remote_macs_lines::summaryCards, content,
                     narrowestCard);
    timeline_ = new RemoteTimelineCard(u"remote.timeline"_s);
    detail_ = new RemoteDetailCard;
    tailscale_ = new TailscaleBlock;
    localHealth_ = new LocalHealthCard;
    setup_ = new SetupChecklistCard;
    parts_ = {attention_, summary_->widget(), timeline_, detail_, tailscale_, localHealth_, setup_};
    for (QWidget* each : parts_) {
        layout->addWidget(each);
    }
    machines_ = new RemoteHealthList;
    layout->addWidget(machines_);
    layout->addStretch(1);
    area_ = scrollOnPage(content, *this);
}

void RemoteMacsPage::connectParts() {
    Remote& remote = monitor_.remote();
    ExternalApplications& applications = monitor_.actions().applications;
    connect(attention_, &AttentionCard::machineWanted, this, [this](const std::string& id) {
        if (QWidget* block = machines_->block(id)) {
            bringIntoView(*block, *block);
        }
    });
    connect(attention_, &AttentionCard::cancelWanted, this,
            [&remote] { remote.scan.cancelScan(); });
    connect(detail_, &RemoteDetailCard::reportWanted, this, [this, &remote] {
        if (const auto* shown = remote_macs_lines::selectedMachine(facts_)) {
            remote.actions.copyRemoteReport(RemoteHealth(shown->machine));
        }
    });
    connect(detail_, &RemoteDetailCard::safeStepWanted, this, [this, &remote] {
        if (const auto* shown = remote_macs_lines::selectedMachine(facts_)) {
            remote.actions.remoteOptimizeSafely(RemoteHealth(shown->machine));
        }
    });
    connect(tailscale_, &OverviewBlock::collapseWanted, this, [this](bool collapsed) {
        state_.sections.setCollapsed(tailscale_->section(), collapsed);
    });
    connect(tailscale_, &TailscaleBlock::scanWanted, this,
            [&remote] { remote.scan.scanRemoteMacs(); });
    connect(tailscale_, &TailscaleBlock::cancelWanted, this,
            [&remote] { remote.scan.cancelScan(); });
    connect(tailscale_, &TailscaleBlock::tailscaleWanted, this,
            [&applications] { applications.openTailscaleApp(); });
    connect(localHealth_, &LocalHealthCard::tailscaleWanted, this,
            [&applications] { applications.openTailscaleApp(); });
    connect(localHealth_, &LocalHealthCard::healthTestWanted, this,
            [&remote] { remote.tailnet.copyTailscaleHealthCommand(); });
    connect(setup_, &SetupChecklistCard::setupScriptWanted, this,
            [&remote] { remote.actions.exportRemoteSetupScript(); });
    connect(tailscale_, &TailscaleBlock::automationSettingsWanted, this,
            [this] { state_.navigation.openSettings(SettingsTabKind::automation); });
    connect(setup_, &SetupChecklistCard::settingsWanted, this,
            [this] { state_.navigation.openSettings(SettingsTabKind::remote); });
}

void RemoteMacsPage::connectMachines() {
    Remote& remote = monitor_.remote();
    connect(machines_, &RemoteHealthList::profileChanged, this,
            [&remote](const RemoteHealth& machine, const RemoteProfileChange& change) {
                remote.profiles.updateRemoteProfile(machine.hostName, change, machine.isLinux);
            });
    connect(machines_, &RemoteHealthList::operationWanted, this,
            [this](const RemoteHealth& machine, RemoteOperation operation) {
                carryOut(operation, machine);
            });
    connect(machines_, &RemoteHealthList::processCopyWanted, this,
            [&remote](const RemoteHealth& machine, const RemoteProcess& process) {
                remote.actions.copyRemoteProcessReport(machine, process);
            });
    connect(machines_, &RemoteHealthList::processQuitWanted, this,
            [&remote](const RemoteHealth& machine, const RemoteProcess& process) {
                remote.actions.requestRemoteQuit(machine, process);
            });
    connect(machines_, &RemoteHealthList::appCopyWanted, this,
            [&remote](const RemoteHealth& machine, const RemoteAppImpact& app) {
                remote.actions.copyRemoteAppReport(machine, app);
            });
    connect(
        machines_, &RemoteHealthList::neverQuitWanted, this,
        [this](const RemoteAppImpact& app) { monitor_.actions().local.toggleNeverQuit(app.name); });
    connect(machines_, &RemoteHealthList::blockResized, area_, &PageScrollArea::keepInPlace);
}

void RemoteMacsPage::carryOut(RemoteOperation operation, const RemoteHealth& machine) {
    RemoteActions& actions = monitor_.remote().actions;
    switch (operation) {
        case RemoteOperation::copyPing:
            actions.copyTailscalePingCommand(machine);
            return;
        case RemoteOperation::copyPortTest:
            actions.copyPortTestCommand(machine);
            return;
        case RemoteOperation::copyTest:
            actions.copySSHDiagnosticCommand(machine);
            return;
        case RemoteOperation::copyHostKeyFix:
            actions.copyHostKeyRepairCommand(machine);
            return;
        case RemoteOperation::copyKeyInstall:
            actions.copySSHKeyInstallCommand(machine);
            return;
        case RemoteOperation::inspect:
            inspect(machine);
            return;
        case RemoteOperation::remotePurge:
            actions.requestRemotePurge(machine);
            return;
        case RemoteOperation::remoteSafe:
            actions.remoteOptimizeSafely(machine);
            return;
    }
}

void RemoteMacsPage::inspect(const RemoteHealth& machine) {
    state_.navigation.setSelectedRemoteID(machine.id);
    // The detail changes its height with the machine.
    refresh();
    bringIntoView(*detail_, *detail_->firstControl());
}

std::vector<Observable*> RemoteMacsPage::shows() const {
    Remote& remote = monitor_.remote();
    return {&remote.tailnet.observable(),           &remote.scan.observable(),
            &remote.profiles.observable(),          &remote.actions.observable(),
            &monitor_.settingsOwner().observable(), &state_.navigation.observable(),
            &monitor_.sample().firstSample()};
}

std::vector<HeaderAction> RemoteMacsPage::headerActions() {
    return {
        {remote_macs_commands::scan.titled("Scan Remotes"), u"remote.scan"_s, [this] { scan(); },
         [this] {
             return monitor_.remote().scan.state().remoteScanInProgress ? u"Scanning"_s : QString();
         }},
        {remote_macs_commands::openTailscale, u"remote.open-tailscale"_s,
         [this] { monitor_.actions().applications.openTailscaleApp(); }}};
}

void RemoteMacsPage::showEvent(QShowEvent* event) {
    Screen::showEvent(event);
    ageTimer_ =
        monitor_.services().jobs.mainQueue().scheduleRepeating(agePeriod, [this] { refresh(); });
}

void RemoteMacsPage::hideEvent(QHideEvent* event) {
    Screen::hideEvent(event);
    ageTimer_.reset();
}

void RemoteMacsPage::refresh() {
    area_->keepInPlace(partToKeep());
    const TailnetState& tailnet = monitor_.remote().tailnet.state();
    const RemoteScanState& scan = monitor_.remote().scan.state();
    facts_ = facts();
    refreshSummary();
    refreshTimeline();
    detail_->show(remote_macs_lines::detail(remote_macs_lines::selectedMachine(facts_)));
    tailscale_->setCollapsed(state_.sections.isCollapsed(tailscale_->section()));
    tailscale_->show(
        tailnet.tailDevices,
        {remote_macs_lines::scanProgress(scan, scannedProfile()), scan.isCanceling},
        remote_macs_lines::linuxMachinesLeftOut(monitor_.remote().scan.linuxMachinesLeftOut()),
        remote_macs_lines::noPeers(monitor_.remote().tailnet.isUnanswered()));
    localHealth_->show(remote_macs_lines::healthIssues(tailnet.tailscaleHealthIssues));
    localHealth_->setVisible(!tailnet.tailscaleHealthIssues.empty());
    machines_->show(facts_);
}

void RemoteMacsPage::refreshSummary() {
    const Remote& remote = monitor_.remote();
    const RemoteScanState& scan = remote.scan.state();
    attention_->show(
        {.summary = monitor_.sample().snapshot() ? remote_macs_lines::attention(scan.remoteHealth)
                                                 : u"Sampling this Mac..."_s,
         .scanState =
             remote_macs_lines::scanState(scan, scannedProfile(), monitor_.services().clock.now()),
         .scan = {remote_macs_lines::scanProgress(scan, scannedProfile()), scan.isCanceling},
         .isScanned = !scan.remoteHealth.empty() && !remote_macs_lines::wasCutShort(scan),
         .hasUnreachable = machinesThatNeedAttention(scan.remoteHealth) > 0,
         .lines = remote_macs_lines::attentionLines(facts_)});
    summary_->show(remote_macs_lines::summary(scan, remote.tailnet.state().tailDevices.size(),
                                              monitor_.services().clock.now()));
}

void RemoteMacsPage::refreshTimeline() {
    const RemoteScan& scan = monitor_.remote().scan;
    // Not the first machine, which Remote Detail shows while none is selected.
    timeline_->show(scan.remoteHistory(), monitor_.services().clock.now(),
                    monitor_.remote().profiles.remoteProfiles(),
                    hostOfMachine(scan.state().remoteHealth, state_.navigation.selectedRemoteID()));
}

std::vector<RemoteHealthFacts> RemoteMacsPage::facts() const {
    // So few that their details fit on the page.
    constexpr std::size_t fewMachines = 3;
    const Remote& remote = monitor_.remote();
    const std::vector<RemoteHealth>& scanned = remote.scan.state().remoteHealth;
    const auto offline =
        remote_macs_lines::offlineMachines(scanned, remote.tailnet.state().tailDevices);
    std::vector<RemoteHealthFacts> facts;
    facts.reserve(scanned.size());
    for (const RemoteHealth& each : scanned) {
        const auto result = remote.actions.results().find(each.id);
        facts.push_back({.machine = each,
                         .profile = remote.profiles.remoteProfile(each.hostName, each.isLinux),
                         .neverQuit = monitor_.settings().protectedAppNames,
                         .now = monitor_.services().clock.now(),
                         .isNowOffline = offline.contains(each.id),
                         .lastResult = result == remote.actions.results().end()
                                           ? std::nullopt
                                           : std::optional(result->second),
                         .isSelected = each.id == state_.navigation.selectedRemoteID(),
                         .showsDetails = scanned.size() <= fewMachines});
    }
    return facts;
}

RemoteProfile RemoteMacsPage::scannedProfile() const {
    const Remote& remote = monitor_.remote();
    const auto& progress = remote.scan.state().progress;
    return progress ? remote.profiles.remoteProfile(progress->hostName) : RemoteProfile{};
}

void RemoteMacsPage::scan() {
    if (monitor_.remote().scan.state().remoteScanInProgress) {
        bringIntoView(*attention_, attention_->cancelButton());
    } else {
        monitor_.remote().scan.scanRemoteMacs();
    }
}

void RemoteMacsPage::scrollTo(QWidget& part) {
    QScrollBar* bar = area_->verticalScrollBar();
    bar->setValue(bar->value() + area_->placeInView(part) - spacing::gap);
    area_->keepInPlace(&part);
}

void RemoteMacsPage::bringIntoView(QWidget& part, QWidget& control) {
    scrollTo(part);
    control.setFocus(Qt::OtherFocusReason);
}

QWidget* RemoteMacsPage::partToKeep() const {
    const auto isInView = [this](const QWidget* part) {
        const int top = area_->placeInView(*part);
        return part->isVisible() && top + part->height() > 0 && top < area_->viewport()->height();
    };
    std::vector<QWidget*> parts = machines_->blocks();
    // The owner may be typing there.
    const auto focused =
        std::ranges::find_if(parts, [focus = window()->focusWidget()](const QWidget* part) {
            return part->isAncestorOf(focus);
        });
    if (focused != parts.end() && isInView(*focused)) {
        return *focused;
    }
    if (area_->verticalScrollBar()->value() == 0) {
        return nullptr;
    }
    parts.insert(parts.begin(), parts_.begin(), parts_.end());
    const auto topmost = std::ranges::find_if(parts, isInView);
    return topmost == parts.end() ? nullptr : *topmost;
}

}  // namespace tallowcrest
