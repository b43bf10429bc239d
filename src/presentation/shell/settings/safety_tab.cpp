#include "presentation/shell/settings/safety_tab.h"

#include <algorithm>
#include <utility>

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPushButton>
#include <QVBoxLayout>

#include "presentation/screens/shared/command_button.h"
#include "presentation/widgets/button.h"
#include "presentation/widgets/card.h"
#include "presentation/widgets/danger_button.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/icon.h"
#include "presentation/widgets/theme.h"
#include "presentation/words/dashboard_text.h"
#include "presentation/words/session_lines.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

SafetyTab::SafetyTab(QWidget* parent) : SettingsTab(parent) {
    addCard(makeStop());
    addCard(makeNeverQuit());
}

// Never Quit -------------------------------------------------------------------------------------

QWidget* SafetyTab::makeNeverQuit() {
    neverQuit_ = new Card;
    neverQuit_->setObjectName(u"settings.never-quit"_s);
    neverQuit_->setHeader(u"lock.shield"_s, u"Never Quit And Guardrails"_s);
    neverQuit_->contentLayout()->setSpacing(spacing::unit / 2);
    noNames_ = new ElidedLabel(noProtectedApps(),
                               onCard(&CrestFonts::body, &CrestTheme::secondaryText), neverQuit_);
    noNames_->setObjectName(u"settings.never-quit.none"_s);
    noNames_->setLines(1, 2);
    neverQuit_->contentLayout()->addWidget(noNames_);
    return neverQuit_;
}

void SafetyTab::showNames(const ProtectedAppNames& names) {
    std::vector<std::string> shown(names.begin(), names.end());
    if (names_ == shown) {
        return;
    }
    for (QWidget* row : rows_) {
        // Deleted later, because this may run in a click on the row's own button.
        row->hide();
        neverQuit_->contentLayout()->removeWidget(row);
        row->deleteLater();
    }
    rows_.clear();
    removals_.clear();
    names_ = std::move(shown);
    noNames_->setVisible(names_->empty());
    for (const std::string& name : *names_) {
        rows_.push_back(makeName(name));
        neverQuit_->contentLayout()->addWidget(rows_.back());
    }
    // A new widget comes last in the tab order of the sheet by default.
    QWidget* before = resume_;
    for (QPushButton* removal : removals_) {
        setTabOrder(before, removal);
        before = removal;
    }
}

QWidget* SafetyTab::makeName(const std::string& name) {
    const QString shown = dashboard_text::text(name);
    auto* row = new QWidget(neverQuit_);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing::unit);
    layout->addWidget(
        new IconView(u"lock.fill"_s, &CrestTheme::secondaryText, spacing::iconSmall, row));
    auto* label = new ElidedLabel(shown, onCard(&CrestFonts::body), row);
    label->setElideMode(Qt::ElideMiddle);
    layout->addWidget(label, 1);
    auto* removal =
        makeButton(u"Remove"_s, u"xmark.circle"_s, u"settings.never-quit.remove."_s + shown,
                   u"Lets this app group be quit again"_s, row);
    removal->setAccessibleName(u"Remove "_s + shown);
    connect(removal, &QPushButton::clicked, this, [this, name] { remove(name); });
    removal->installEventFilter(this);
    layout->addWidget(removal);
    removals_.push_back(removal);
    return row;
}

void SafetyTab::remove(const std::string& name) {
    const auto place = static_cast<std::size_t>(
        std::distance(names_->begin(), std::find(names_->begin(), names_->end(), name)));
    emit removalWanted(name);
    if (removals_.empty()) {
        neverQuit_->setFocus();
    } else {
        removals_.at(std::min(place, removals_.size() - 1))->setFocus();
    }
}

// The emergency stop -----------------------------------------------------------------------------

QWidget* SafetyTab::makeStop() {
    stop_ = new Card;
    stop_->setObjectName(u"settings.emergency-stop"_s);
    stopWords_ = new ElidedLabel(onCard(&CrestFonts::body, &CrestTheme::secondaryText), stop_);
    stopWords_->setObjectName(u"settings.emergency-stop.words"_s);
    stopWords_->setLines(1, 4);
    stop_->contentLayout()->addWidget(stopWords_);
    stop_->contentLayout()->addSpacing(spacing::unit / 2);
    engage_ = makeDangerButton(commands::emergencyStop, u"settings.emergency-stop.engage"_s, stop_);
    resume_ = makeButton(commands::resumeManualMode, u"settings.emergency-stop.resume"_s, stop_);
    settling_.emplace(*resume_);
    for (QPushButton* button : {static_cast<QPushButton*>(engage_), resume_}) {
        stop_->contentLayout()->addWidget(button, 0, Qt::AlignLeft);
    }
    connect(engage_, &QPushButton::clicked, this, &SafetyTab::engage);
    engage_->installEventFilter(this);
    connect(resume_, &QPushButton::clicked, this, [this] {
        emit resumeWanted();
        stop_->setFocus();
    });
    return stop_;
}

bool SafetyTab::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) {
            // Return presses the stop, once. It must not press a button that removes protection; on
            // some desktops Return presses any focused button.
            if (watched == engage_ && !key->isAutoRepeat()) {
                engage();
            }
            return true;
        }
    }
    return SettingsTab::eventFilter(watched, event);
}

void SafetyTab::engage() {
    emit stopWanted();
    // Not on Resume or Done, because the key may still be down.
    stop_->setFocus();
}

void SafetyTab::showStop(bool isEngaged) {
    const bool isNew = isEngaged && showsEngaged_ == false;
    showsEngaged_ = isEngaged;
    stop_->setHeader(isEngaged ? u"exclamationmark.triangle.fill"_s : u"exclamationmark.triangle"_s,
                     isEngaged ? u"Emergency Stop Engaged"_s : u"Automation Emergency Stop"_s);
    stopWords_->setText(isEngaged ? u"All automatic actions are off. Resume returns to manual "
                                    "Apprentice mode and leaves every automation disabled."_s
                                  : QString::fromUtf8(commands::emergencyStop.description));
    if (isNew) {
        // Engaged here or elsewhere: a click that was under way must not undo it.
        settling_->settle();
        if (engage_->hasFocus()) {
            stop_->setFocus();
        }
    }
    engage_->setVisible(!isEngaged);
    resume_->setVisible(isEngaged);
}

void SafetyTab::show(const ProtectedAppNames& neverQuit, bool isStopEngaged) {
    showNames(neverQuit);
    showStop(isStopEngaged);
}

}  // namespace tallowcrest
