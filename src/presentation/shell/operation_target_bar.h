#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/card.h"

class QBoxLayout;
class QPushButton;

namespace tallowcrest {

class Capsule;
class ElidedLabel;
class IconView;
class Observable;
class SystemMonitor;
struct WindowState;

/// The process or app under review, in one row above every page, with the buttons to choose it, to
/// continue with it and to clear it. Its height is always the same. Main thread.
class OperationTargetBar final : public Card, public AccessibleFigure {
    Q_OBJECT

public:
    explicit OperationTargetBar(SystemMonitor& monitor, WindowState& state,
                                QWidget* parent = nullptr);

    void refresh();
    /// A change of any of these calls for a refresh, and nothing else does.
    std::vector<Observable*> shows() const;

    QAccessible::Role accessibleRole() const override { return QAccessible::Grouping; }
    QString accessibleValue() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void makeTexts();
    void makeButtons();
    void setHasTarget(bool hasTarget);
    void describe();
    /// `words` and those of the shown marks.
    QString withMarks(QString words) const;
    /// Puts the detail beside the title, or below it.
    void fold();

    SystemMonitor& monitor_;
    WindowState& state_;
    QBoxLayout* row_ = nullptr;
    QBoxLayout* texts_ = nullptr;
    IconView* icon_ = nullptr;
    ElidedLabel* title_ = nullptr;
    ElidedLabel* detail_ = nullptr;
    Capsule* automatic_ = nullptr;
    Capsule* protected_ = nullptr;
    QPushButton* choose_ = nullptr;
    QPushButton* review_ = nullptr;
    QPushButton* clear_ = nullptr;
    std::optional<std::int64_t> shownPID_;
};

}  // namespace tallowcrest
