#pragma once

#include <optional>
#include <vector>

#include "advisor/autonomy.h"
#include "presentation/screens/advisor/advisor_lines.h"
#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/card.h"

namespace tallowcrest {

class AutonomyPicker;
class DangerButton;
class ElidedLabel;
class LevelBar;

/// The experience with one type of action: a word, a bar and the counts. For use on a card. Main
/// thread.
class TrustRow final : public QWidget, public AccessibleFigure {
    Q_OBJECT

public:
    explicit TrustRow(QWidget* parent = nullptr);

    void setLine(const advisor_lines::TrustLine& line);

    QAccessible::Role accessibleRole() const override { return QAccessible::StaticText; }
    QString accessibleValue() const override;
    bool saysAllWithin() const override { return true; }

private:
    ElidedLabel* name_ = nullptr;
    ElidedLabel* label_ = nullptr;
    LevelBar* bar_ = nullptr;
    ElidedLabel* figures_ = nullptr;
};

/// How much the advisor may do by itself, and the experience that this rests on. Main thread.
class TrustCard final : public Card {
    Q_OBJECT

public:
    explicit TrustCard(QWidget* parent = nullptr);

    void show(const TrustRecords& records);
    AutonomyPicker& picker() { return *picker_; }

signals:
    /// The owner pressed "Reset Trust History".
    void resetWanted();

private:
    AutonomyPicker* picker_ = nullptr;
    ElidedLabel* empty_ = nullptr;
    QVBoxLayout* list_ = nullptr;
    std::vector<TrustRow*> rows_;
    ElidedLabel* more_ = nullptr;
    DangerButton* reset_ = nullptr;
    std::optional<TrustRecords> shown_;
};

}  // namespace tallowcrest
