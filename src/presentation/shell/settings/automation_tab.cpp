#include "presentation/shell/settings/automation_tab.h"

#include <cmath>

#include <QPushButton>
#include <QVBoxLayout>

#include "presentation/screens/shared/command_button.h"
#include "presentation/widgets/card.h"
#include "presentation/widgets/limit_row.h"
#include "presentation/widgets/theme.h"
#include "presentation/words/dashboard_text.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

constexpr SliderScale thresholdScale{65, 95, 1};
constexpr SliderScale minimumFreeScale{5, 100, 5};
constexpr SliderScale cacheAgeScale{7, 90, 1};
// Goes beyond the maximum of the setting, to which a larger value is clamped when it is stored.
constexpr SliderScale maximumRunScale{0.5, 10, 0.5};

/// Without decimals, except for a stored value that is not a whole number like those of the scale.
QString plainFigure(double value) {
    if (!std::isfinite(value)) {
        return dashboard_text::noFigure();
    }
    return dashboard_text::decimal(value, value == std::round(value) ? 0 : 1);
}

QString percent(double value) {
    return plainFigure(value) + u'%';
}

QString gigabytesFree(double value) {
    return plainFigure(value) + u" GB free"_s;
}

QString days(double value) {
    return plainFigure(value) + u" days"_s;
}

QString gigabytes(double value) {
    return dashboard_text::gigabytes(value) + u" GB"_s;
}

}  // namespace

AutomationTab::AutomationTab(QWidget* ruleSwitches, QWidget* diskSwitches, QWidget* parent)
    : SettingsTab(parent) {
    addCard(makeRules(ruleSwitches));
    addCard(makeDiskAutopilot(diskSwitches));
}

QWidget* AutomationTab::makeRules(QWidget* switches) {
    auto* card = new Card;
    card->setHeader(u"slider.horizontal.3"_s, u"Auto Rules"_s);
    card->contentLayout()->setSpacing(spacing::gap);
    addLimit(*card, "Warn at", "percent", "settings.warning-threshold", thresholdScale,
             &Settings::warningThreshold, percent);
    card->contentLayout()->addWidget(switches);
    return card;
}

QWidget* AutomationTab::makeDiskAutopilot(QWidget* switches) {
    auto* card = new Card;
    card->setHeader(u"internaldrive"_s, u"AI Disk Autopilot"_s);
    card->contentLayout()->setSpacing(spacing::gap);
    card->contentLayout()->addWidget(switches);
    addLimit(*card, "Act below", "GB free", "settings.disk-minimum-free", minimumFreeScale,
             &Settings::diskMinimumFreeGB, gigabytesFree);
    addLimit(*card, "Minimum cache age", "days", "settings.disk-cache-age", cacheAgeScale,
             &Settings::diskCleanupAgeDays, days);
    addLimit(*card, "Maximum per run", "GB", "settings.disk-maximum", maximumRunScale,
             &Settings::diskMaxCleanupGB, gigabytes);
    auto* review = makeButton(
        {"Review Eligible Cache Files", "internaldrive", commands::reviewDiskCleanup.description},
        u"settings.review-cache-files"_s, card);
    connect(review, &QPushButton::clicked, this, &AutomationTab::cleanupReviewWanted);
    card->contentLayout()->addWidget(review, 0, Qt::AlignLeft);
    return card;
}

void AutomationTab::addLimit(Card& card, const char* title, const char* unit,
                             const char* identifier, const SliderScale& scale, Limit limit,
                             QString (*words)(double)) {
    auto* row = new LimitRow(QString::fromLatin1(title), QString::fromLatin1(unit),
                             QString::fromLatin1(identifier), scale, words, &card);
    connect(row, &LimitRow::moved, this,
            [this, limit](double value) { emit limitMoved(limit, value); });
    card.contentLayout()->addWidget(row);
    limits_.emplace_back(limit, row);
}

void AutomationTab::show(const Settings& settings) {
    for (const auto& [limit, row] : limits_) {
        row->show(settings.*limit);
    }
}

}  // namespace tallowcrest
