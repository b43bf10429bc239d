#pragma once

#include <utility>
#include <vector>

#include "core/settings/settings.h"
#include "presentation/shell/settings/settings_tab.h"

namespace tallowcrest {

class Card;
class LimitRow;
struct SliderScale;

/// The switches of what acts automatically, and its limits. Main thread.
class AutomationTab final : public SettingsTab {
    Q_OBJECT

public:
    using Limit = double Settings::*;

    /// Takes ownership of the switches of the rules and of Disk Autopilot.
    AutomationTab(QWidget* ruleSwitches, QWidget* diskSwitches, QWidget* parent = nullptr);

    void show(const Settings& settings);

signals:
    /// The owner moved a limit. The receiver calls `show`, because the stored value may be clamped.
    void limitMoved(tallowcrest::AutomationTab::Limit limit, double value);
    /// The owner pressed "Review Eligible Cache Files".
    void cleanupReviewWanted();

private:
    QWidget* makeRules(QWidget* switches);
    QWidget* makeDiskAutopilot(QWidget* switches);
    void addLimit(Card& card, const char* title, const char* unit, const char* identifier,
                  const SliderScale& scale, Limit limit, QString (*words)(double));

    std::vector<std::pair<Limit, LimitRow*>> limits_;
};

}  // namespace tallowcrest
