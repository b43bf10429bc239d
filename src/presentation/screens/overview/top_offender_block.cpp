#include "presentation/screens/overview/top_offender_block.h"

#include <algorithm>

#include <QFontMetrics>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/button.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/icon.h"
#include "presentation/words/dashboard_text.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

constexpr int lineGap = 2;

}  // namespace

TopOffenderBlock::TopOffenderBlock()
    : OverviewBlock(DashboardSection::heavyProcesses, u"overview.top-offender"_s, u"scope"_s,
                    dashboard_text::text(title(DashboardSection::heavyProcesses))) {
    auto* row = new QHBoxLayout;
    row->setSpacing(spacing::unit + spacing::unit / 2);
    icon_ = new IconView(QString());
    row->addWidget(icon_, 0, Qt::AlignVCenter);

    auto* words = new QWidget(body());
    auto* lines = new QVBoxLayout(words);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSpacing(lineGap);
    lines->addStretch(1);
    title_ = new ElidedLabel(onCard(&CrestFonts::heading), words);
    detail_ = new ElidedLabel(onCard(&CrestFonts::body, &CrestTheme::secondaryText), words);
    detail_->setLines(1, 4);
    for (ElidedLabel* label : {title_, detail_}) {
        lines->addWidget(label);
    }
    lines->addStretch(1);
    // Reserves the height of the tallest state, so that a change of state moves nothing.
    words->setMinimumHeight(
        std::max(QFontMetrics(CrestFonts::current().heading).lineSpacing() + lineGap +
                     2 * QFontMetrics(CrestFonts::current().body).lineSpacing(),
                 2 * QPushButton(u"Review"_s).sizeHint().height() + spacing::unit));
    row->addWidget(words, 1);

    auto* buttons = new QVBoxLayout;
    buttons->setSpacing(spacing::unit);
    cleanup_ = makeButton(u"Review Cleanup Options"_s, QString(),
                          u"overview.review-cleanup-options"_s, u"Goes to Optimize"_s, body());
    makePrimary(*cleanup_);
    connect(cleanup_, &QPushButton::clicked, this, &TopOffenderBlock::cleanupWanted);
    review_ = makeButton(u"Review"_s, QString(), u"overview.review-top-offender"_s,
                         u"Selects the heaviest process of the heaviest app and "
                         "shows it in Processes"_s,
                         body());
    connect(review_, &QPushButton::clicked, this, &TopOffenderBlock::reviewWanted);
    buttons->addWidget(cleanup_);
    secondOpinion_ =
        makeButton(u"Second Opinion"_s, QString(), u"overview.second-opinion"_s,
                   u"Explains the present figures and what to do about them"_s, body());
    connect(secondOpinion_, &QPushButton::clicked, this, &TopOffenderBlock::secondOpinionWanted);
    buttons->addWidget(review_);
    buttons->addWidget(secondOpinion_);
    buttons->addStretch(1);
    row->addLayout(buttons);
    bodyLayout()->addLayout(row);

    alerts_ = new QWidget(body());
    auto* alerts = new QHBoxLayout(alerts_);
    alerts->setContentsMargins(0, 0, 0, 0);
    alerts->setSpacing(spacing::unit + spacing::unit / 2);
    alerts->addWidget(new IconView(u"network.badge.shield.half.filled"_s, &CrestTheme::caution,
                                   spacing::iconRegular, alerts_));
    alertsText_ = new ElidedLabel(onCard(&CrestFonts::heading), alerts_);
    alertsText_->setObjectName(u"overview.remote-alerts"_s);
    alerts->addWidget(alertsText_);
    alertsAge_ = new ElidedLabel(onCard(&CrestFonts::caption, &CrestTheme::secondaryText), alerts_);
    alertsAge_->setObjectName(u"overview.remote-alerts.age"_s);
    alertsAge_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    alerts->addWidget(alertsAge_, 1);
    auto* open = makeButton(u"Open Remote Macs"_s, QString(), u"overview.open-remote-macs"_s,
                            u"Shows which machines need attention, and why"_s, alerts_);
    connect(open, &QPushButton::clicked, this, &TopOffenderBlock::remoteMacsWanted);
    alerts->addWidget(open);
    alerts_->hide();
    bodyLayout()->addWidget(alerts_);
}

void TopOffenderBlock::show(const TopOffenderFacts& facts, const RemoteAlerts& alerts,
                            bool isAnalyzing) {
    if (isCollapsed()) {
        return;
    }
    const TopOffender shown = topOffender(facts);
    const bool isOffender = shown.state == TopOffender::State::offender;
    const bool isStable = shown.state == TopOffender::State::stable;
    icon_->setIcon(isOffender ? u"exclamationmark.triangle.fill"_s
                   : isStable ? u"checkmark.circle"_s
                              : u"hourglass"_s);
    icon_->setColor(isOffender ? &CrestTheme::caution
                    : isStable ? &CrestTheme::good
                               : &CrestTheme::secondaryText);
    title_->setText(shown.title);
    title_->setVisible(!shown.title.isEmpty());
    detail_->setText(shown.detail);
    detail_->setColor(isOffender ? &CrestTheme::text : &CrestTheme::secondaryText);
    detail_->setVisible(!shown.detail.isEmpty());
    cleanup_->setVisible(isOffender);
    review_->setVisible(shown.reviewPID.has_value());
    secondOpinion_->setVisible(isStable);
    setButtonEnabled(*secondOpinion_, !isAnalyzing);
    if (isOffender) {
        setSpokenName(*review_, u"Review: "_s + shown.group);
    }
    alertsText_->setText(alerts.count);
    alertsAge_->setText(alerts.age);
    alerts_->setVisible(!alerts.count.isEmpty());
}

}  // namespace tallowcrest
