#include "presentation/screens/overview/recent_activity_block.h"

#include <algorithm>
#include <utility>

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "presentation/widgets/button.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/icon.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

constexpr int rowHeight = 24;
/// Room for the text that is shown when there are no rows.
constexpr int fewestRows = 3;

}  // namespace

/// One entry in one line: what happened and when.
class ActivityRow final : public QWidget {
public:
    explicit ActivityRow(QWidget* parent);

    void setLine(const ActivityLine& line);

private:
    IconView* icon_ = nullptr;
    ElidedLabel* title_ = nullptr;
    ElidedLabel* detail_ = nullptr;
    ElidedLabel* time_ = nullptr;
};

ActivityRow::ActivityRow(QWidget* parent) : QWidget(parent) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing::unit);
    icon_ = new IconView(QString(), &CrestTheme::secondaryText, spacing::iconSmall, this);
    title_ = new ElidedLabel(onCard(&CrestFonts::heading), this);
    detail_ = new ElidedLabel(onCard(&CrestFonts::body, &CrestTheme::secondaryText), this);
    time_ = new ElidedLabel(onCard(&CrestFonts::caption, &CrestTheme::secondaryText), this);
    // The same width for most titles, so that the details are aligned.
    title_->setReservedText(u"Auto Rule"_s);
    detail_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    time_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    layout->addWidget(icon_);
    layout->addWidget(title_);
    layout->addWidget(detail_, 1);
    layout->addWidget(time_);
}

void ActivityRow::setLine(const ActivityLine& line) {
    icon_->setIcon(line.isWarning ? u"exclamationmark.triangle.fill"_s : u"checkmark.circle"_s);
    icon_->setColor(line.isWarning ? &CrestTheme::caution : &CrestTheme::secondaryText);
    title_->setText(line.title);
    detail_->setText(line.detail);
    time_->setText(line.time);
}

RecentActivityBlock::RecentActivityBlock()
    : OverviewBlock(DashboardSection::activityLog, u"overview.recent-activity"_s, u"clock"_s,
                    u"Recent Activity"_s) {
    list_ = new QWidget(body());
    auto* lines = new QVBoxLayout(list_);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSpacing(0);
    empty_ = new ElidedLabel(u"No actions or warnings have been logged yet."_s,
                             onCard(&CrestFonts::body, &CrestTheme::secondaryText), list_);
    empty_->setLines(1, 2);
    empty_->setAlignment(Qt::AlignCenter);
    empty_->setFixedHeight(fewestRows * rowHeight);
    lines->addWidget(empty_);
    for (std::size_t i = 0; i < shownEntries; ++i) {
        auto* row = new ActivityRow(list_);
        row->setFixedHeight(rowHeight);
        row->hide();
        lines->addWidget(row);
        rows_.push_back(row);
    }
    lines->addStretch(1);
    bodyLayout()->addWidget(list_);
    fitList();

    auto* open = makeButton(u"Open History"_s, u"clock.arrow.circlepath"_s,
                            u"overview.open-history"_s, u"Goes to History"_s, body());
    connect(open, &QPushButton::clicked, this, &RecentActivityBlock::historyWanted);
    bodyLayout()->addWidget(open, 0, Qt::AlignLeft);
    bodyLayout()->addStretch(1);
}

void RecentActivityBlock::show(const std::vector<ActivityEvent>& events,
                               std::optional<Date> sampledAt) {
    if (isCollapsed()) {
        return;
    }
    std::vector<ActivityLine> lines =
        activityLines(events, shownEntries, sampledAt.value_or(Date{}));
    if (sampledAt) {
        room_.setNeeded(static_cast<int>(lines.size()), sampledAt->secondsSinceReference);
        fitList();
    }
    if (lines == lines_) {
        return;
    }
    lines_ = std::move(lines);
    fitList();
    empty_->setVisible(lines_.empty());
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        if (i < lines_.size()) {
            rows_[i]->setLine(lines_[i]);
        }
        rows_[i]->setVisible(i < lines_.size());
    }
}

void RecentActivityBlock::fitList() {
    const int height =
        std::max({fewestRows, room_.count(), static_cast<int>(lines_.size())}) * rowHeight;
    if (list_->minimumHeight() != height) {
        list_->setFixedHeight(height);
    }
}

}  // namespace tallowcrest
