#pragma once

#include <cstdint>
#include <optional>

#include <QWidget>

#include "presentation/screens/overview/overview_lines.h"
#include "presentation/widgets/theme.h"

class QBoxLayout;
class QPushButton;

namespace tallowcrest {

class ElidedLabel;
class IconView;

/// One recommendation: its severity as icon, word and colour, what it says, and "Review" where it
/// speaks of a process that still runs. Main thread.
class RecommendationRow final : public QWidget {
    Q_OBJECT

public:
    /// The prominent one has a border and room for its whole detail; a compact one has one line for
    /// it, below the title or, in a wide row, behind it.
    enum class Size { prominent, compact };

    /// What a compact row of that width takes.
    static int compactHeight(int width);

    RecommendationRow(Size size, const QString& buttonIdentifier, QWidget* parent = nullptr);

    void setLine(const RecommendationLine& line);
    /// Called before `setLine` with the sample that the line comes from. A prominent row that
    /// needed more lines for its detail keeps them for a while, so that what lies below it does not
    /// follow every text.
    void countSample(Date sampledAt);
    /// Words in place of a recommendation, while there is none.
    void setMessage(const QString& icon, const QString& title, const QString& detail);

signals:
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
    KeptRoom detailRoom_;          ///< of the prominent row, at the present width
    int keptDetailLines_ = 1;
};

}  // namespace tallowcrest
