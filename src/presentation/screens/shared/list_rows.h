#pragma once

#include <cstddef>
#include <vector>

namespace tallowcrest {

/// Shows each of `lines` in a row of its own and hides the rows beyond. `addRow` appends one to
/// `rows`, and is called for those that are missing: rows stay for the next time. Main thread.
template <class Row, class Line, class AddRow>
void showLines(const std::vector<Row*>& rows, const std::vector<Line>& lines, AddRow addRow) {
    while (rows.size() < lines.size()) {
        addRow();
    }
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (i < lines.size()) {
            rows[i]->setLine(lines[i]);
        }
        rows[i]->setVisible(i < lines.size());
    }
}

}  // namespace tallowcrest
