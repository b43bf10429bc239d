#pragma once

#include <span>
#include <utility>
#include <vector>

#include <QString>
#include <QWidget>

#include "presentation/words/automation_lines.h"

namespace tallowcrest {

class AutomationToggle;
class SystemMonitor;

/// Switches below each other, each bound to its field: a change that is refused leaves the switch
/// where it was. Stands on a card. Main thread.
class AutomationToggles final : public QWidget {
    Q_OBJECT

public:
    /// `identifier` is what each switch's own begins with: "IDENTIFIER.auto-select".
    AutomationToggles(SystemMonitor& monitor, const QString& identifier,
                      std::span<const AutomationSwitch> switches = autoRuleSwitches,
                      QWidget* parent = nullptr);

    void refresh();

private:
    SystemMonitor& monitor_;
    std::vector<std::pair<AutomationSwitch, AutomationToggle*>> rows_;
};

}  // namespace tallowcrest
