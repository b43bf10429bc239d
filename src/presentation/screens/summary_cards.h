#pragma once

#include <vector>

#include <QString>

#include "presentation/words/session_lines.h"

class QWidget;

namespace tallowcrest {

class CardGrid;
class SummaryCard;

/// A grid of summary cards that shows a list of texts, in place. Main thread.
class SummaryCards {
public:
    /// Room for `most` cards, named after `identifier` and their place. The grid belongs to
    /// `parent`.
    SummaryCards(const QString& identifier, std::size_t most, QWidget* parent);

    QWidget* widget() const;

    /// Texts beyond the room are left out.
    void show(std::vector<SummaryTexts> texts);

private:
    CardGrid* grid_ = nullptr;
    std::vector<SummaryCard*> cards_;
    std::vector<SummaryTexts> shown_;
};

}  // namespace tallowcrest
