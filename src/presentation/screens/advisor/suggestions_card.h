#pragma once

#include <vector>

#include "core/uuid.h"
#include "presentation/screens/advisor/advisor_lines.h"
#include "presentation/widgets/card.h"

class QPushButton;

namespace tallowcrest {

class ElidedLabel;
class IconView;
class RefusalLine;

/// One suggestion: what it would do and why, its risk, whether it is approved, and why it cannot
/// run. For use on a card. Main thread.
class SuggestionRow final : public QWidget {
    Q_OBJECT

public:
    /// The object names of its parts begin with `identifier`: "IDENTIFIER.run".
    explicit SuggestionRow(const QString& identifier, QWidget* parent = nullptr);

    void setLine(const advisor_lines::SuggestionLine& line);

signals:
    /// The owner pressed "Approve".
    void approveWanted();
    /// The owner pressed the button that runs it.
    void runWanted();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    IconView* icon_ = nullptr;
    ElidedLabel* title_ = nullptr;
    ElidedLabel* risk_ = nullptr;
    ElidedLabel* detail_ = nullptr;
    ElidedLabel* state_ = nullptr;
    QPushButton* approve_ = nullptr;
    QPushButton* run_ = nullptr;
};

/// The suggestions of the latest analysis. Main thread.
class SuggestionsCard final : public Card {
    Q_OBJECT

public:
    explicit SuggestionsCard(QWidget* parent = nullptr);

    /// `empty` stands in place of the rows when there are none. At most `maximumSuggestions` lines
    /// are shown. Other lines than before remove a refusal.
    void show(const std::vector<advisor_lines::SuggestionLine>& lines, const QString& empty);
    /// Shows why the last press was refused; an empty text removes that.
    void showRefusal(const QString& words);

signals:
    /// The owner pressed "Approve All".
    void approveAllWanted();
    /// The owner pressed "Run Approved".
    void runApprovedWanted();
    // The owner pressed a button of a row.
    void approveWanted(const tallowcrest::UUID& id);
    void runWanted(const tallowcrest::UUID& id);

private:
    QWidget* makeButtons();
    /// Emits `wanted` for what the row shows, if it still shows anything.
    void withShown(std::size_t row, void (SuggestionsCard::*wanted)(const UUID&));

    RefusalLine* refusal_ = nullptr;
    ElidedLabel* note_ = nullptr;
    ElidedLabel* empty_ = nullptr;
    QWidget* list_ = nullptr;  ///< has the rows; hidden without any
    std::vector<SuggestionRow*> rows_;
    std::vector<advisor_lines::SuggestionLine> shown_;
};

}  // namespace tallowcrest
