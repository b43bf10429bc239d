#pragma once

#include <vector>

#include <QString>
#include <QStringList>

#include "presentation/widgets/painted_figure.h"
#include "presentation/widgets/theme.h"

namespace tallowcrest {

/// One bar: its share of the longest possible bar, 0 to 1; a share that is not finite counts as 0.
struct BarRow {
    QString label;
    QString valueText;
    double fraction = 0;

    bool operator==(const BarRow&) const = default;
};

/// Horizontal bars, each with its label at the left and its figure at the right. The height of all
/// rows is always reserved, so that nothing moves as rows come and go. Paints the background of a
/// card. Main thread.
class BarList : public PaintedFigure {
    Q_OBJECT

public:
    /// `label` names the list for assistive technology; `valuePattern` is the widest figure to
    /// expect, for example "000.0 GB".
    BarList(const QString& label, int rowCount, const QString& valuePattern,
            QWidget* parent = nullptr);

    /// Rows beyond the row count are ignored. Repaints only rows that changed.
    void setRows(std::vector<BarRow> rows);
    const std::vector<BarRow>& rows() const { return rows_; }
    /// Shown while there are no bars.
    void setEmptyText(const QString& text);
    void setTint(const ThemeColor& tint);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    /// Each row as label and figure, joined by commas, or the empty text.
    QString accessibleValue() const override;

protected:
    void measure() override;
    void arrange() override;
    void paintEvent(QPaintEvent* event) override;

private:
    QRect rowRect(int row) const;
    int labelWidth() const;
    int barLeft() const;
    int barWidth() const;
    /// In whole pixels, so that a change of less than one repaints nothing.
    int filledWidth(const BarRow& row) const;
    /// Repaints what differs visibly from `before`.
    void showChanges(const std::vector<BarRow>& before);
    void paintBar(QPainter& painter, const BarRow& row, int rowTop, const CrestTheme& theme) const;

    int rowCount_;
    QString valuePattern_;
    QString emptyText_;
    ThemeColor tint_ = &CrestTheme::accent;
    std::vector<BarRow> rows_;
    QStringList fittedLabels_;
    int valueWidth_ = 0;
};

}  // namespace tallowcrest
