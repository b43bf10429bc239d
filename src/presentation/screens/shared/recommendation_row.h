#pragma once

#include <cstdint>
#include <optional>

#include <QWidget>

#include "presentation/widgets/reserved_rows.h"
#include "presentation/widgets/theme.h"
#include "presentation/words/recommendation_lines.h"

class QBoxLayout;
class QPushButton;

namespace tallowcrest {

class ElidedLabel;
class IconView;

/// The colour of a severity's icon and word.
ThemeColor severityColor(Recommendation::Severity severity);

/// One recommendation: its severity as icon, word and colour, its title and detail, and a "Review"
/// button if it is about a process that still runs. Main thread.
class RecommendationRow final : public QWidget {
    Q_OBJECT

public:
    /// A prominent row has a border and several lines for the detail. A compact one has one line
    /// for it, below the title or, in a wide row, beside it.
    enum class Size { prominent, compact };

    /// The height of a compact row of that width, in device independent pixels.
    static int compactHeight(int width);

    RecommendationRow(Size size, const QString& buttonIdentifier, QWidget* parent = nullptr);

    void setLine(const RecommendationLine& line);
    /// Called before `setLine`, with the date of the sample that the line comes from. A prominent
    /// row that needed more lines for its detail keeps them for a minute, so that the widgets below
    /// it do not move with every text.
    void countSample(Date sampledAt);
    /// Shows a text instead of a recommendation.
    void setMessage(const QString& icon, const QString& title, const QString& detail);

signals:
    /// The owner pressed "Review"; `pid` is the process of the shown line.
    void reviewWanted(std::int64_t pid);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void layProminent();
    void layCompact();
    void keepDetailLines(int lines);

    Size size_;
    IconView* icon_ = nullptr;
    ElidedLabel* word_ = nullptr;
    ElidedLabel* title_ = nullptr;
    ElidedLabel* detail_ = nullptr;
    QPushButton* review_ = nullptr;
    ThemeColor color_ = &CrestTheme::secondaryText;
    std::optional<RecommendationLine> shown_;
    QBoxLayout* texts_ = nullptr;  ///< of a compact row
    ReservedRows detailRoom_;      ///< of the prominent row, at the present width
    int keptDetailLines_ = 1;
};

}  // namespace tallowcrest
