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
    /// Wide enough for most application names in the font of a value.
    static constexpr int wideEnoughForNames = 240;

    /// At most `most` cards, whose object names are "IDENTIFIER-1" and so on. `parent` owns the
    /// grid. Cards that stand beside others are at least `narrowest` pixels wide.
    SummaryCards(const QString& identifier, std::size_t most, QWidget* parent,
                 int narrowest = wideEnoughForNames);

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
