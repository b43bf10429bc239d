#pragma once

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include <QWidget>

#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/summary_card.h"

namespace tallowcrest {

/// The visible texts within a widget, from top to bottom and from left to right.
inline std::vector<std::string> shownTexts(const QWidget& within) {
    std::vector<std::pair<std::pair<int, int>, std::string>> found;
    for (const ElidedLabel* label : within.findChildren<ElidedLabel*>()) {
        if (label->isVisible() && !label->text().isEmpty()) {
            const QPoint at = label->mapTo(&within, QPoint());
            found.push_back({{at.y(), at.x()}, label->text().toStdString()});
        }
    }
    std::sort(found.begin(), found.end());
    std::vector<std::string> result;
    for (auto& [place, text] : found) {
        result.push_back(std::move(text));
    }
    return result;
}

/// The visible summary cards within a widget, as "title: value, detail".
inline std::vector<std::string> shownCards(const QWidget& within) {
    using namespace Qt::StringLiterals;
    std::vector<std::string> found;
    for (const SummaryCard* card : within.findChildren<SummaryCard*>()) {
        if (card->isVisible()) {
            found.push_back(
                (card->accessibleName() + u": "_s + card->accessibleValue()).toStdString());
        }
    }
    return found;
}

}  // namespace tallowcrest
