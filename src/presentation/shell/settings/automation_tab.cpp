#include "presentation/shell/settings/automation_tab.h"

#include <array>
#include <cmath>

#include <QLocale>
#include <QVBoxLayout>

#include "monitor/system_monitor.h"
#include "presentation/screens/automation/automation_toggles.h"
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
// Reaches beyond what one run may ever move: the cap is not the scale's to decide.
constexpr SliderScale maximumRunScale{0.5, 10, 0.5};

/// A figure of a whole scale, which an earlier version may have left between two steps.
QString plainFigure(double value) {
    if (!std::isfinite(value)) {
        return dashboard_text::noFigure();
    }
    return QLocale().toString(value, 'f', value == std::round(value) ? 0 : 1);
}

}  // namespace

AutomationTab::AutomationTab(SystemMonitor& monitor, QWidget* parent)
    : SettingsTab(parent), monitor_(monitor) {
    addCard(makeRules());
    addCard(makeDiskAutopilot());
}

QWidget* AutomationTab::makeRules() {
    auto* card = new Card;
    card->setHeader(u"slider.horizontal.3"_s, u"Auto Rules"_s);
    card->contentLayout()->setSpacing(spacing::gap);
    limits_.push_back(new LimitRow(
        u"Warn at"_s, u"settings.warning-threshold"_s, thresholdScale,
        {.read = [this] { return monitor_.settings().warningThreshold; },
         .write = [this](double value) { monitor_.limits().setWarningThreshold(value); },
         .words = [](double value) { return plainFigure(value) + u'%'; }},
        card));
    card->contentLayout()->addWidget(limits_.back());
    toggles_.push_back(new AutomationToggles(monitor_, u"settings"_s, autoRuleSwitches, card));
    card->contentLayout()->addWidget(toggles_.back());
    return card;
}

QWidget* AutomationTab::makeDiskAutopilot() {
    constexpr std::array switches{AutomationSwitch::diskAutopilotEnabled};
    auto* card = new Card;
    card->setHeader(u"internaldrive"_s, u"AI Disk Autopilot"_s);
    card->contentLayout()->setSpacing(spacing::gap);
    toggles_.push_back(new AutomationToggles(monitor_, u"settings"_s, switches, card));
    card->contentLayout()->addWidget(toggles_.back());
    const auto add = [&](const char* title, const char* identifier, const SliderScale& scale,
                         LimitRow::Binding binding) {
        limits_.push_back(new LimitRow(QString::fromLatin1(title), QString::fromLatin1(identifier),
                                       scale, std::move(binding), card));
        card->contentLayout()->addWidget(limits_.back());
    };
    add("Act below", "settings.disk-minimum-free", minimumFreeScale,
        {.read = [this] { return monitor_.settings().diskMinimumFreeGB; },
         .write = [this](double value) { monitor_.limits().setDiskMinimumFreeGB(value); },
         .words = [](double value) { return plainFigure(value) + u" GB free"_s; }});
    add("Minimum cache age", "settings.disk-cache-age", cacheAgeScale,
        {.read = [this] { return monitor_.settings().diskCleanupAgeDays; },
         .write = [this](double value) { monitor_.limits().setDiskCleanupAgeDays(value); },
         .words = [](double value) { return plainFigure(value) + u" days"_s; }});
    add("Maximum per run", "settings.disk-maximum", maximumRunScale,
        {.read = [this] { return monitor_.settings().diskMaxCleanupGB; },
         .write = [this](double value) { monitor_.limits().setDiskMaxCleanupGB(value); },
         .words = [](double value) { return dashboard_text::gigabytes(value) + u" GB"_s; }});
    return card;
}

void AutomationTab::refresh() {
    for (AutomationToggles* toggles : toggles_) {
        toggles->refresh();
    }
    for (LimitRow* limit : limits_) {
        limit->refresh();
    }
}

}  // namespace tallowcrest
