#pragma once

#include <cstdint>
#include <optional>

#include <QWidget>

#include "presentation/overview/recommendation_lines.h"
#include "presentation/theme.h"

class QPushButton;

namespace tallowcrest {

class ElidedLabel;
class IconView;

/// One recommendation: its severity as icon, word and colour, what it says, and "Review" where it
/// speaks of a process that still runs. Main thread.
class RecommendationRow final : public QWidget {
    Q_OBJECT

public:
    /// The prominent one has a border and room for its whole detail; a compact one is one line.
    enum class Size { prominent, compact };

    static constexpr int compactHeight = 36;

    RecommendationRow(Size size, const QString& buttonIdentifier, QWidget* parent = nullptr);

    void setLine(const RecommendationLine& line);
    /// Words in place of a recommendation, while there is none.
    void setMessage(const QString& icon, const QString& title, const QString& detail);

signals:
    void reviewRequested(std::int64_t pid);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void layProminent();
    void layCompact();

    Size size_;
    IconView* icon_ = nullptr;
    ElidedLabel* word_ = nullptr;
    ElidedLabel* title_ = nullptr;
    ElidedLabel* detail_ = nullptr;
    QPushButton* review_ = nullptr;
    ThemeColor color_ = &CrestTheme::secondaryText;
    std::optional<RecommendationLine> shown_;
};

}  // namespace tallowcrest
