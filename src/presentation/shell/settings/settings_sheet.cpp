#include "presentation/shell/settings/settings_sheet.h"

#include <algorithm>
#include <array>
#include <utility>

#include <QHBoxLayout>
#include <QPainter>
#include <QPointer>
#include <QPushButton>
#include <QStackedLayout>
#include <QVBoxLayout>

#include "actions/actions.h"
#include "actions/automation.h"
#include "actions/connection_settings.h"
#include "actions/local_actions.h"
#include "advisor/advisor.h"
#include "core/activity_log.h"
#include "core/secret_text.h"
#include "core/settings/settings_owner.h"
#include "disk/disk.h"
#include "integration/integration.h"
#include "monitor/auto_rules.h"
#include "monitor/system_monitor.h"
#include "presentation/screens/shared/automation_toggles.h"
#include "presentation/screens/shared/autonomy_picker.h"
#include "presentation/screens/shared/progress_row.h"
#include "presentation/shell/settings/ai_tab.h"
#include "presentation/shell/settings/automation_tab.h"
#include "presentation/shell/settings/local_mac_tab.h"
#include "presentation/shell/settings/remote_tab.h"
#include "presentation/shell/settings/safety_tab.h"
#include "presentation/shell/settings/stored_field.h"
#include "presentation/shell/update_bar.h"
#include "presentation/state/automation_facts.h"
#include "presentation/state/status_line.h"
#include "presentation/widgets/button.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/tab_strip.h"
#include "presentation/widgets/theme.h"
#include "presentation/words/dashboard_text.h"
#include "presentation/words/local_public_key_status.h"
#include "remote/remote.h"
#include "sampling/latest_sample.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

constexpr int sheetWidth = 592;
constexpr int leastHeight = 432;
constexpr int mostHeight = 640;

using dashboard_text::text;

}  // namespace

SettingsSheet::SettingsSheet(SystemMonitor& monitor, WindowState& state, QWidget* window)
    : Sheet(window), monitor_(monitor), state_(state) {
    setObjectName(u"settings.sheet"_s);
    setWindowTitle(u"Settings"_s);
    setAccessibleName(windowTitle());
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, spacing::gap, 0, spacing::gap);
    layout->setSpacing(spacing::gap);
    layout->addWidget(makeHead());
    // Not a `QStackedWidget`, whose role screen readers say before each first control.
    pages_ = new QStackedLayout;
    layout->addLayout(pages_, 1);
    addAI();
    addRemote();
    addLocalMac();
    addAutomation();
    addSafety();
    layout->addWidget(makeFoot());

    connect(strip_, &TabStrip::chosen, this, [this](int index, Qt::FocusReason reason) {
        strip_->setCurrentIndex(index);
        // Before the page is hidden, which would move the focus into the next page.
        strip_->setFocus(reason);
        state_.navigation.setSettingsTab(tabs_.at(static_cast<std::size_t>(index)).kind);
        refresh();
    });
}

SettingsSheet::~SettingsSheet() {
    // The base class takes the focus out of the tab, which then reports a text that was typed.
    for (StoredField* field : {&ai_->model(), &ai_->endpoint(), &remote_->user()}) {
        field->disconnect(this);
    }
}

QWidget* SettingsSheet::makeHead() {
    auto* head = new QWidget(this);
    auto* layout = new QVBoxLayout(head);
    layout->setContentsMargins(spacing::pagePadding, 0, spacing::pagePadding, 0);
    layout->setSpacing(spacing::gap);
    auto* words = new QVBoxLayout;
    words->setSpacing(2);
    auto* title = new ElidedLabel(windowTitle(), onPage(&CrestFonts::title), head);
    title->setObjectName(u"settings.sheet.title"_s);
    words->addWidget(title);
    auto* line = new ElidedLabel(u"Configuration stays here; dashboard actions stay up front."_s,
                                 onPage(&CrestFonts::body, &CrestTheme::secondaryText), head);
    line->setObjectName(u"settings.sheet.line"_s);
    line->setLines(1, 2);
    words->addWidget(line);
    layout->addLayout(words);
    strip_ = new TabStrip(windowTitle(), head);
    strip_->setObjectName(u"settings.sheet.tabs"_s);
    strip_->setAccessibleDescription(u"The parts of the settings"_s);
    layout->addWidget(strip_, 0, Qt::AlignLeft);
    return head;
}

QWidget* SettingsSheet::makeFoot() {
    auto* foot = new QWidget(this);
    auto* layout = new QHBoxLayout(foot);
    layout->setContentsMargins(spacing::pagePadding, 0, spacing::pagePadding, 0);
    layout->setSpacing(spacing::gap);
    // Repeated here because the sheet covers the status line of the window.
    lastAction_ = new ElidedLabel(onPage(&CrestFonts::caption), foot);
    lastAction_->setObjectName(u"settings.sheet.last-action"_s);
    lastAction_->setLines(2, 2);
    lastAction_->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    auto* doneButton =
        makeButton(u"Done"_s, QString(), u"settings.sheet.done"_s, u"Closes the settings"_s, foot);
    makePrimary(*doneButton);
    doneButton->setDefault(true);
    connect(doneButton, &QPushButton::clicked, this, &SettingsSheet::accept);
    layout->addWidget(lastAction_, 1);
    layout->addWidget(doneButton);
    return foot;
}

void SettingsSheet::addTab(SettingsTabKind kind, const char* words, const char* identifier,
                           const char* description, SettingsTab* content,
                           std::function<void()> show) {
    tabs_.push_back({kind, std::move(show)});
    strip_->addTab(QString::fromLatin1(words), QString::fromLatin1(identifier),
                   QString::fromLatin1(description));
    pages_->addWidget(content);
}

void SettingsSheet::addAI() {
    constexpr std::array switches{AutomationSwitch::aiSafeActionsEnabled};
    auto* safeActions = makeSwitches(switches);
    ai_ = new AITab(safeActions);
    Provider& provider = monitor_.advisor().provider;
    connectKey();
    connect(&ai_->model(), &StoredField::entered, this, &SettingsSheet::takeModel);
    connect(&ai_->endpoint(), &StoredField::entered, this, &SettingsSheet::takeEndpoint);
    connect(ai_, &AITab::redactionWanted, this, [this, &provider](bool on) {
        provider.setAIRedactProcessDetails(on);
        showAI();
    });
    connect(ai_, &AITab::previewWanted, this, [this, &provider](bool on) {
        provider.setAIRequirePreview(on);
        showAI();
    });
    connect(ai_, &AITab::payloadCopyWanted, this, [&provider] { provider.copyAIPreview(); });
    connectAutonomy(ai_->picker(), monitor_.actions().automation);
    addTab(SettingsTabKind::ai, "AI", "settings.tab.ai",
           "Which AI is asked, and what it may see and do", ai_, [this, safeActions] {
               safeActions->show(automationFacts(monitor_));
               showAI();
           });
}

void SettingsSheet::connectKey() {
    Provider& provider = monitor_.advisor().provider;
    connect(ai_, &AITab::keyEdited, this,
            [this, &provider](int first, int removed, std::string_view inserted) {
                provider.setOpenAIKeyInput(provider.openAIKeyInput().replacing(
                    static_cast<std::size_t>(first), static_cast<std::size_t>(removed), inserted));
                showAI();
            });
    const auto show = [this](const Outcome& outcome) {
        const bool isRefused = !outcome.isAccepted() && outcome.kind != Outcome::Kind::ignored;
        ai_->showKeyRefusal(isRefused ? text(outcome.message) : QString());
        showAI();
    };
    // The monitor outlives the sheet, so the end of what was begun may find it gone.
    const auto showEnd = [tab = QPointer(ai_), show](const Outcome& outcome) {
        if (tab != nullptr) {
            show(outcome);
        }
    };
    connect(ai_, &AITab::keySaveWanted, this,
            [&provider, show, showEnd] { show(provider.saveOpenAIKey(showEnd)); });
    connect(ai_, &AITab::keyRemovalWanted, this,
            [&provider, show, showEnd] { show(provider.removeOpenAIKey(showEnd)); });
    connect(this, &QDialog::finished, this, [this, &provider] {
        provider.setOpenAIKeyInput({});
        ai_->showKeyRefusal({});
        showAI();
    });
}

void SettingsSheet::takeModel(const QString& typed) {
    const Outcome outcome = connection_settings::setOpenAIModel(
        monitor_.settingsOwner(), monitor_.log(), typed.toStdString());
    if (outcome.isAccepted()) {
        ai_->model().setStored(text(monitor_.settings().openAIModel));
    } else {
        ai_->model().showRefusal(text(outcome.message));
    }
}

void SettingsSheet::takeEndpoint(const QString& typed) {
    const Outcome outcome = monitor_.advisor().provider.setAIEndpoint(typed.toStdString());
    if (outcome.isAccepted()) {
        ai_->endpoint().setStored(text(monitor_.settings().aiEndpoint));
    } else {
        ai_->endpoint().showRefusal(text(outcome.message));
    }
}

void SettingsSheet::showAI() {
    const Provider& provider = monitor_.advisor().provider;
    const ProviderState& state = provider.state();
    const Settings& settings = monitor_.settings();
    ai_->show({.isKeySaved = state.openAIKeySaved,
               .isKeyBusy = state.isKeyBusy,
               .keyLength = static_cast<int>(provider.openAIKeyInput().characterCount()),
               .model = text(settings.openAIModel),
               .endpoint = text(settings.aiEndpoint),
               .isRedacted = settings.aiRedactProcessDetails,
               .requiresPreview = settings.aiRequirePreview,
               .mode = settings.aiAutonomyMode,
               .isStopEngaged = monitor_.actions().automation.isStopEngaged()});
}

void SettingsSheet::addRemote() {
    remote_ = new RemoteTab;
    connect(&remote_->user(), &StoredField::entered, this, &SettingsSheet::takeUsername);
    connect(remote_, &RemoteTab::publicKeyCopyWanted, this,
            [this] { monitor_.remote().actions.copyLocalPublicKey(); });
    addTab(SettingsTabKind::remote, "Remote", "settings.tab.remote",
           "What reaching other machines needs", remote_, [this] {
               remote_->show(text(monitor_.settings().sshUsername),
                             text(localPublicKeyStatus(monitor_.host().hasLocalPublicKey)));
           });
}

void SettingsSheet::takeUsername(const QString& typed) {
    const std::string name = typed.toStdString();
    const std::string& stored = monitor_.settings().sshUsername;
    if (name == stored) {
        remote_->user().setStored(text(stored));
        return;
    }
    const Outcome outcome =
        connection_settings::setSSHUsername(monitor_.settingsOwner(), monitor_.log(), name);
    if (outcome.isAccepted()) {
        remote_->user().setStored(text(stored));
    } else {
        remote_->user().showRefusal(text(outcome.message));
    }
}

void SettingsSheet::addLocalMac() {
    constexpr std::array switches{AutomationSwitch::notificationsIncludeActions};
    Integration& integration = monitor_.integration();
    auto* notifications = makeSwitches(switches);
    auto* download = makeDownloadRow(integration.updates, u"settings.download-progress"_s, nullptr);
    auto* tab = new LocalMacTab(notifications, download);
    connect(tab, &LocalMacTab::installWanted, this,
            [&integration] { integration.install.installToApplications(); });
    connect(tab, &LocalMacTab::launchAtLoginWanted, this, [&integration](bool enabled) {
        enabled ? integration.login.enableLaunchAtLogin()
                : integration.login.disableLaunchAtLogin();
    });
    connect(tab, &LocalMacTab::updateCheckWanted, this,
            [&integration] { integration.updates.checkForUpdates(); });
    connect(tab, &LocalMacTab::setupWizardWanted, this,
            [this] { state_.navigation.setShowSetupWizard(true); });
    connect(tab, &LocalMacTab::expandAllWanted, this, [this] { state_.sections.expandAll(); });
    connect(tab, &LocalMacTab::collapseAllWanted, this, [this] { state_.sections.collapseAll(); });
    addTab(SettingsTabKind::localMac, "Local Mac", "settings.tab.local-mac",
           "How this machine is set up", tab, [this, &integration, notifications, download, tab] {
               notifications->show(automationFacts(monitor_));
               tab->show({.isInstalling = integration.install.state().isInstalling,
                          .isChangingLogin = integration.login.state().isChanging,
                          .startsAtLogin = integration.login.state().isEnabled,
                          .isChecking = integration.updates.state().isChecking});
               showDownload(*download, integration.updates);
           });
}

void SettingsSheet::addAutomation() {
    constexpr std::array diskSwitch{AutomationSwitch::diskAutopilotEnabled};
    constexpr std::array switches{
        AutomationSwitch::autoSelectTopOffender, AutomationSwitch::autoPurgeSustainedMemory,
        AutomationSwitch::autoScanRemoteMacs, AutomationSwitch::includeLinuxMachines};
    auto* rules = makeSwitches(switches);
    auto* disk = makeSwitches(diskSwitch);
    automation_ = new AutomationTab(rules, disk);
    connect(automation_, &AutomationTab::limitMoved, this,
            [this](double Settings::*limit, double value) {
                monitor_.settingsOwner().set(limit, value);
                automation_->show(monitor_.settings());
            });
    connect(automation_, &AutomationTab::cleanupReviewWanted, this,
            [this] { monitor_.disk().autopilot.reviewDiskCleanup(); });
    addTab(SettingsTabKind::automation, "Automation", "settings.tab.automation",
           "What may act by itself, and how far it may go", automation_, [this, rules, disk] {
               rules->show(automationFacts(monitor_));
               disk->show(automationFacts(monitor_));
               automation_->show(monitor_.settings());
           });
}

void SettingsSheet::addSafety() {
    safety_ = new SafetyTab;
    connect(safety_, &SafetyTab::removalWanted, this, [this](const std::string& name) {
        monitor_.actions().local.removeFromNeverQuit(name);
        showSafety();
    });
    connect(safety_, &SafetyTab::stopWanted, this, [this] {
        monitor_.actions().automation.engageEmergencyStop();
        showSafety();
    });
    connect(safety_, &SafetyTab::resumeWanted, this, [this] {
        monitor_.actions().automation.resumeFromEmergencyStop();
        showSafety();
    });
    showSafety();
    addTab(SettingsTabKind::safety, "Safety", "settings.tab.safety",
           "What is never quit, and the stop for all that acts by itself", safety_,
           [this] { showSafety(); });
}

void SettingsSheet::showSafety() {
    safety_->show(monitor_.settings().protectedAppNames,
                  monitor_.actions().automation.isStopEngaged());
}

AutomationToggles* SettingsSheet::makeSwitches(std::span<const AutomationSwitch> switches) {
    auto* toggles = new AutomationToggles(u"settings"_s, switches);
    connectSwitches(*toggles, monitor_.actions().automation,
                    [this] { return automationFacts(monitor_); });
    return toggles;
}

std::vector<Observable*> SettingsSheet::shows(SystemMonitor& monitor, WindowState& state) {
    return {&state.navigation.observable(),
            &monitor.settingsOwner().observable(),
            &monitor.log().observable(),
            &monitor.sample().observable(),
            &monitor.autoRules().observable(),
            &monitor.advisor().provider.observable(),
            &monitor.integration().install.observable(),
            &monitor.integration().login.observable(),
            &monitor.integration().updates.observable()};
}

void SettingsSheet::start() {
    monitor_.integration().login.lookAgain();
    ai_->model().setStored(text(monitor_.settings().openAIModel));
    ai_->endpoint().setStored(text(monitor_.settings().aiEndpoint));
    remote_->user().setStored(text(monitor_.settings().sshUsername));
    resize(sheetWidth, std::clamp(parentWidget()->height() - 2 * spacing::pagePadding, leastHeight,
                                  mostHeight));
    setMinimumSize(sheetWidth, leastHeight);
}

QWidget* SettingsSheet::firstControl() {
    return strip_;
}

void SettingsSheet::showState() {
    const auto found = std::ranges::find(tabs_, state_.navigation.settingsTab(), &Tab::kind);
    const auto index = std::distance(tabs_.begin(), found);
    strip_->setCurrentIndex(static_cast<int>(index));
    pages_->setCurrentIndex(static_cast<int>(index));
    tabs_.at(static_cast<std::size_t>(index)).show();
    lastAction_->setText(statusLine(monitor_));
}

void SettingsSheet::paintEvent(QPaintEvent*) {
    // A line between the foot and a tab that scrolls.
    QPainter painter(this);
    painter.setPen(CrestTheme::current().hairline);
    const int y = pages_->geometry().bottom() + 1;
    painter.drawLine(0, y, width(), y);
}

}  // namespace tallowcrest
