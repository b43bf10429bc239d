#include "presentation/screens/history/activity_log_card.h"

#include <algorithm>

#include <QGridLayout>
#include <QHBoxLayout>
#include <QPainter>
#include <QVBoxLayout>

#include "core/routes.h"
#include "presentation/screens/shared/command_button.h"
#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/danger_button.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/icon.h"
#include "presentation/widgets/theme.h"
#include "presentation/words/dashboard_text.h"
#include "presentation/words/session_lines.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

QString eventCount(std::size_t events) {
    return dashboard_text::count(static_cast<std::int64_t>(events)) + u" events"_s;
}

}  // namespace

ActivityEntry::ActivityEntry(QWidget* parent) : QWidget(parent) {
    installAccessibleFigures();
    auto* layout = new QGridLayout(this);
    layout->setContentsMargins(0, spacing::unit + 1, 0, spacing::unit);
    layout->setHorizontalSpacing(spacing::unit);
    layout->setVerticalSpacing(2);
    icon_ = new IconView(QString(), &CrestTheme::secondaryText, spacing::iconSmall, this);
    title_ = new ElidedLabel(onCard(&CrestFonts::heading), this);
    time_ = new ElidedLabel(onCard(&CrestFonts::caption, &CrestTheme::secondaryText), this);
    detail_ = new ElidedLabel(onCard(&CrestFonts::body, &CrestTheme::secondaryText), this);
    time_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    detail_->setLines(1, mostDetailLines);
    layout->addWidget(icon_, 0, 0, Qt::AlignVCenter);
    layout->addWidget(title_, 0, 1);
    layout->addWidget(time_, 0, 2);
    layout->addWidget(detail_, 1, 1, 1, 2);
    layout->setColumnStretch(1, 1);
}

void ActivityEntry::setLine(const ActivityLine& line) {
    icon_->setIcon(line.isWarning ? u"exclamationmark.triangle.fill"_s : u"checkmark.circle"_s);
    icon_->setColor(line.isWarning ? &CrestTheme::caution : &CrestTheme::secondaryText);
    title_->setText(line.title);
    time_->setText(line.time);
    detail_->setText(line.detail);
    setSpokenName(*this, accessibleValue());
}

QString ActivityEntry::accessibleValue() const {
    return u"%1, %2: %3"_s.arg(title_->text(), time_->text(), detail_->text());
}

void ActivityEntry::paintEvent(QPaintEvent*) {
    QPainter(this).fillRect(0, 0, width(), 1, CrestTheme::current().hairline);
}

ActivityLogCard::ActivityLogCard(QWidget* parent) : Card(parent) {
    setObjectName(u"history.activity-log"_s);
    setHeader(u"clock"_s, dashboard_text::text(title(DashboardSection::activityLog)));
    setCaption(eventCount(0));
    // One press removes the whole log. So the button is apart from all others, and a DangerButton,
    // which Return does not press.
    auto* clear = makeDangerButton({"Clear", "", "Removes every event of the activity log"},
                                   u"history.clear-log"_s, this);
    connect(clear, &QPushButton::clicked, this, &ActivityLogCard::clearWanted);
    headerLayout()->addWidget(clear);
    clear_ = clear;

    empty_ = new ElidedLabel(u"Actions and warnings will appear here."_s,
                             onCard(&CrestFonts::body, &CrestTheme::secondaryText), this);
    empty_->setObjectName(u"history.activity-log-empty"_s);
    empty_->setLines(1, 2);
    contentLayout()->addWidget(empty_);
    list_ = new QWidget(this);
    rows_ = new QVBoxLayout(list_);
    rows_->setContentsMargins(0, 0, 0, 0);
    rows_->setSpacing(0);
    list_->hide();
    clear_->setEnabled(false);
    contentLayout()->addWidget(list_);
}

void ActivityLogCard::show(const std::vector<ActivityEvent>& events, Date now) {
    std::vector<UUID> identifiers;
    identifiers.reserve(events.size());
    for (const ActivityEvent& event : events) {
        identifiers.push_back(event.id);
    }
    // On another day, more of the times have a date.
    const std::int64_t day = dashboard_text::localDay(now);
    if (identifiers == shown_ && day == shownDay_) {
        return;
    }
    matchEntries(identifiers);
    const std::vector<ActivityLine> lines = activityLines(events, events.size(), now);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        entries_[i]->setLine(lines[i]);
        entries_[i]->show();
    }
    shown_ = std::move(identifiers);
    shownDay_ = day;
    setCaption(eventCount(events.size()));
    empty_->setVisible(events.empty());
    list_->setVisible(!events.empty());
    clear_->setEnabled(!events.empty());
}

void ActivityLogCard::matchEntries(const std::vector<UUID>& identifiers) {
    const auto newestShown = shown_.empty()
                                 ? identifiers.end()
                                 : std::find(identifiers.begin(), identifiers.end(), shown_[0]);
    const auto arrived = newestShown - identifiers.begin();
    const auto firstGone =
        std::mismatch(newestShown, identifiers.end(), shown_.begin(), shown_.end()).second;
    const auto kept = static_cast<std::size_t>(firstGone - shown_.begin());
    for (; entries_.size() > kept; entries_.pop_back()) {
        rows_->removeWidget(entries_.back());
        entries_.back()->hide();
        entries_.back()->deleteLater();
    }
    std::vector<ActivityEntry*> newest;
    for (int i = 0; i < arrived; ++i) {
        newest.push_back(new ActivityEntry(list_));
        rows_->insertWidget(i, newest.back());
    }
    // Assistive technology reads the entries in the order of the child widgets.
    std::for_each(newest.rbegin(), newest.rend(), [](ActivityEntry* entry) { entry->lower(); });
    entries_.insert(entries_.begin(), newest.begin(), newest.end());
    while (entries_.size() < identifiers.size()) {
        entries_.push_back(new ActivityEntry(list_));
        rows_->addWidget(entries_.back());
    }
}

}  // namespace tallowcrest
