#pragma once

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
    /// The owner wants the switch so. It keeps showing what it was told last.
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

}  // namespace tallowcrest
