#pragma once

#include <vector>

#include "core/advisor_records.h"
#include "core/uuid.h"
#include "presentation/screens/advisor/advisor_lines.h"
#include "presentation/widgets/card.h"

class QPushButton;

namespace tallowcrest {

class ElidedLabel;
class ToggleSwitch;

/// One draft of a rule with its switch. For use on a card. Main thread.
class DraftRow final : public QWidget {
    Q_OBJECT

public:
    /// `identifier` is the object name of the switch.
    explicit DraftRow(const QString& identifier, QWidget* parent = nullptr);

    void setLine(const advisor_lines::DraftLine& line);

signals:
    /// The owner asked to turn the switch. It stays as it is until `setLine`.
    void toggled();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    ToggleSwitch* toggle_ = nullptr;
    ElidedLabel* title_ = nullptr;
    ElidedLabel* trigger_ = nullptr;
    ElidedLabel* action_ = nullptr;
    ElidedLabel* risk_ = nullptr;
};

/// The drafts of rules, and the button that asks for more. Main thread.
class RuleDraftsCard final : public Card {
    Q_OBJECT

public:
    explicit RuleDraftsCard(QWidget* parent = nullptr);

    /// Oldest first.
    void show(const std::vector<AIRuleDraft>& drafts);
    /// While an analysis is under way, no second one can be asked for.
    void setBusy(bool isBusy);

signals:
    /// The owner pressed "Draft Rules With AI".
    void draftsWanted();
    /// The owner asked to turn the switch of a draft.
    void toggleWanted(const tallowcrest::UUID& id);

private:
    QPushButton* draft_ = nullptr;
    ElidedLabel* empty_ = nullptr;
    std::vector<DraftRow*> rows_;
    std::vector<AIRuleDraft> shown_;
};

}  // namespace tallowcrest
