#pragma once

#include <span>
#include <utility>
#include <vector>

#include <QString>
#include <QWidget>

#include "presentation/words/automation_lines.h"

namespace tallowcrest {

class ElidedLabel;
class IconView;
class ToggleSwitch;

/// One switch with its words, whether it is armed, and when it last acted. A click anywhere on the
/// row is one on the switch. Stands on a card. Main thread.
class AutomationToggle final : public QWidget {
    Q_OBJECT

public:
    /// `identifier` is the one of the switch.
    explicit AutomationToggle(const QString& identifier, QWidget* parent = nullptr);

    void setLine(const AutomationLine& line);

signals:
    /// The owner wants the switch on or off. It keeps showing what it was told last.
    void wanted(bool on);

protected:
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void askFor(bool on);
    void showLine();
    void showSwitch();

    AutomationLine line_;
    ToggleSwitch* toggle_ = nullptr;
    ElidedLabel* title_ = nullptr;
    ElidedLabel* explanation_ = nullptr;
    ElidedLabel* lastActed_ = nullptr;
    IconView* stateIcon_ = nullptr;
    ElidedLabel* state_ = nullptr;
};

/// Switches below each other. Stands on a card. Main thread.
class AutomationToggles final : public QWidget {
    Q_OBJECT

public:
    /// `identifier` is what each switch's own begins with: "IDENTIFIER.auto-select".
    explicit AutomationToggles(const QString& identifier,
                               std::span<const AutomationSwitch> switches = autoRuleSwitches,
                               QWidget* parent = nullptr);

    void show(const AutomationFacts& facts);

signals:
    /// The owner wants a switch on or off. Until `show` tells otherwise it stays as it was.
    void wanted(AutomationSwitch which, bool on);

private:
    std::vector<std::pair<AutomationSwitch, AutomationToggle*>> rows_;
};

}  // namespace tallowcrest
