#include "presentation/shell/settings/settings_sheet.h"

#include <algorithm>

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QPushButton>
#include <QStackedWidget>
#include <QVBoxLayout>

#include "monitor/system_monitor.h"
#include "presentation/shell/settings/automation_tab.h"
#include "presentation/shell/settings/local_mac_tab.h"
#include "presentation/shell/settings/remote_tab.h"
#include "presentation/shell/settings/safety_tab.h"
#include "presentation/widgets/controls.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/tab_strip.h"
#include "presentation/widgets/theme.h"
#include "presentation/words/dashboard_text.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

constexpr int sheetWidth = 592;
constexpr int leastHeight = 432;
constexpr int mostHeight = 640;

}  // namespace

SettingsSheet::SettingsSheet(SystemMonitor& monitor, QWidget* parent)
    : WindowDialog(parent), monitor_(monitor) {
    setObjectName(u"settings.sheet"_s);
    setWindowTitle(u"Settings"_s);
    setAccessibleName(windowTitle());
    const auto addLabel = [this](const QString& text, ElidedLabel::FontRole font,
                                 const ThemeColor& color, const char* identifier) {
        auto* label = new ElidedLabel(text, font, color, this);
        label->setObjectName(QString::fromLatin1(identifier));
        label->setGround(&CrestTheme::pageBackground);
        return label;
    };
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, spacing::gap, 0, spacing::gap);
    layout->setSpacing(spacing::gap);
    const auto addRow = [layout] {
        auto* row = new QVBoxLayout;
        row->setContentsMargins(spacing::pagePadding, 0, spacing::pagePadding, 0);
        layout->addLayout(row);
        return row;
    };

    auto* head = addRow();
    head->setSpacing(2);
    head->addWidget(
        addLabel(windowTitle(), &CrestFonts::title, &CrestTheme::text, "settings.sheet.title"));
    auto* line = addLabel(u"Configuration stays here; dashboard actions stay up front."_s,
                          &CrestFonts::body, &CrestTheme::secondaryText, "settings.sheet.line");
    line->setLines(1, 2);
    head->addWidget(line);
    strip_ = new TabStrip(windowTitle(), this);
    strip_->setObjectName(u"settings.sheet.tabs"_s);
    strip_->setAccessibleDescription(u"The parts of the settings"_s);
    addRow()->addWidget(strip_, 0, Qt::AlignLeft);
    pages_ = new QStackedWidget(this);
    layout->addWidget(pages_, 1);
    addTab(settings_tabs::remote, "settings.tab.remote", "What reaching other machines needs",
           new RemoteTab(monitor));
    addTab(settings_tabs::localMac, "settings.tab.local-mac", "How this machine is set up",
           new LocalMacTab(monitor));
    addTab(settings_tabs::automation, "settings.tab.automation",
           "What may act by itself, and how far it may go", new AutomationTab(monitor));
    addTab(settings_tabs::safety, "settings.tab.safety",
           "What is never quit, and the stop for all that acts by itself", new SafetyTab(monitor));

    auto* foot = new QHBoxLayout;
    foot->setSpacing(spacing::gap);
    // The window's own line is out of sight, or too far away to be an answer.
    lastAction_ =
        addLabel(QString(), &CrestFonts::caption, &CrestTheme::text, "settings.sheet.last-action");
    lastAction_->setLines(2, 2);
    lastAction_->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    auto* doneButton =
        makeButton(u"Done"_s, QString(), u"settings.sheet.done"_s, u"Closes the settings"_s, this);
    doneButton->setDefault(true);
    connect(doneButton, &QPushButton::clicked, this, &SettingsSheet::accept);
    foot->addWidget(lastAction_, 1);
    foot->addWidget(doneButton);
    addRow()->addLayout(foot);

    connect(strip_, &TabStrip::chosen, this, [this](int index, Qt::FocusReason reason) {
        strip_->setCurrentIndex(index);
        // Before the page goes, which would else hand the keyboard to the one that comes.
        strip_->setFocus(reason);
        monitor_.navigation().setSettingsTab(tabs_.at(static_cast<std::size_t>(index)).words);
        refresh();
    });
}

void SettingsSheet::addTab(const char* words, const char* identifier, const char* description,
                           SettingsTab* content) {
    tabs_.push_back({words, content});
    // First, so that Tab goes from it to its content.
    strip_->addTab(QString::fromLatin1(words), QString::fromLatin1(identifier),
                   QString::fromLatin1(description));
    pages_->addWidget(content);
}

void SettingsSheet::refresh() {
    if (!monitor_.navigation().showSettings()) {
        if (isVisible()) {
            WindowDialog::done(Rejected);
        }
        return;
    }
    if (!isVisible()) {
        present();
        return;
    }
    showTab();
    lastAction_->setText(dashboard_text::text(monitor_.log().lastAction()));
}

void SettingsSheet::present() {
    for (const Tab& tab : tabs_) {
        tab.content->start();
    }
    // As much of its window as a sheet may cover.
    resize(sheetWidth, std::clamp(parentWidget()->height() - 2 * spacing::pagePadding, leastHeight,
                                  mostHeight));
    setMinimumSize(sheetWidth, leastHeight);
    showTab();
    lastAction_->setText(dashboard_text::text(monitor_.log().lastAction()));
    strip_->setFocus();
    open();
}

void SettingsSheet::showTab() {
    const auto found = std::find_if(tabs_.begin(), tabs_.end(), [this](const Tab& tab) {
        return tab.words == monitor_.navigation().settingsTab();
    });
    const auto index =
        found != tabs_.end() ? static_cast<int>(std::distance(tabs_.begin(), found)) : 0;
    strip_->setCurrentIndex(index);
    pages_->setCurrentIndex(index);
    tabs_.at(static_cast<std::size_t>(index)).content->refresh();
}

void SettingsSheet::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        // It ended an entry, or was meant for a control that has no use for it. Only Done itself,
        // which then takes the key, closes the sheet with it.
        return;
    }
    WindowDialog::keyPressEvent(event);
}

void SettingsSheet::paintEvent(QPaintEvent*) {
    // Where a tab that is longer than the sheet goes on below.
    QPainter painter(this);
    painter.setPen(CrestTheme::current().hairline);
    const int y = pages_->geometry().bottom() + 1;
    painter.drawLine(0, y, width(), y);
}

void SettingsSheet::done(int result) {
    WindowDialog::done(result);
    monitor_.navigation().setShowSettings(false);
}

}  // namespace tallowcrest
