#pragma once

#include <vector>

#include <QString>

#include "presentation/words/session_lines.h"

class QWidget;

namespace tallowcrest {

class CardGrid;
class SummaryCard;

/// A grid of summary cards that are updated in place. Main thread.
class SummaryCards {
public:
    /// At most `most` cards, whose object names are "IDENTIFIER-1" and so on. `parent` owns the
    /// grid.
    SummaryCards(const QString& identifier, std::size_t most, QWidget* parent);

    QWidget* widget() const;
    /// For a grid within a card.
    void setFrameless();

    /// One card for each of `texts`; those beyond the maximum are left out.
    void show(std::vector<SummaryTexts> texts);

private:
    CardGrid* grid_ = nullptr;
    std::vector<SummaryCard*> cards_;
    std::vector<SummaryTexts> shown_;
};

}  // namespace tallowcrest
