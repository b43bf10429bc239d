#pragma once

#include <functional>
#include <span>
#include <utility>
#include <vector>

#include <QString>
#include <QWidget>

#include "presentation/words/automation_lines.h"

namespace tallowcrest {

class Automation;
class ElidedLabel;
class IconView;
class ToggleSwitch;

/// One switch with its texts, whether it may act, and when it last acted. A click anywhere on the
/// row is a click on the switch. For use on a card. Main thread.
class AutomationToggle final : public QWidget {
    Q_OBJECT

public:
    /// `identifier` is the object name of the switch.
    explicit AutomationToggle(const QString& identifier, QWidget* parent = nullptr);

    void setLine(const AutomationLine& line);

signals:
    /// The owner asked to turn the switch on or off. It stays as it is until `setLine`.
    void wanted(bool on);

protected:
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void showLine();

    AutomationLine line_;
    ToggleSwitch* toggle_ = nullptr;
    ElidedLabel* title_ = nullptr;
    ElidedLabel* explanation_ = nullptr;
    ElidedLabel* lastActed_ = nullptr;
    IconView* stateIcon_ = nullptr;
    ElidedLabel* state_ = nullptr;
};

/// A column of switches. For use on a card. Main thread.
class AutomationToggles final : public QWidget {
    Q_OBJECT

public:
    /// The object names of the switches begin with `identifier`: "IDENTIFIER.auto-select".
    explicit AutomationToggles(const QString& identifier,
                               std::span<const AutomationSwitch> switches = autoRuleSwitches,
                               QWidget* parent = nullptr);

    void show(const AutomationFacts& facts);

signals:
    /// The owner asked to turn a switch on or off. It stays as it is until `show`.
    void wanted(AutomationSwitch which, bool on);

private:
    std::vector<std::pair<AutomationSwitch, AutomationToggle*>> rows_;
};

/// Sets what the owner asks for with `toggles`, and shows `facts` at once. `automation` must
/// outlive the widget.
void connectSwitches(AutomationToggles& toggles, Automation& automation,
                     std::function<AutomationFacts()> facts);

}  // namespace tallowcrest
