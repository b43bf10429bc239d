#pragma once

#include <QString>

#include "presentation/widgets/accessible_figure.h"
#include "presentation/widgets/card.h"
#include "presentation/widgets/theme.h"

namespace tallowcrest {

/// Three texts: a small title, a large value and what it means. Takes plain values. Main thread.
class SummaryCard : public Card, public AccessibleFigure {
    Q_OBJECT

public:
    explicit SummaryCard(const QString& title, QWidget* parent = nullptr);

    void setTitle(const QString& title);
    void setValue(const QString& value);
    void setDetail(const QString& detail);
    /// For a value that stands for a state; the detail says the same in words.
    void setValueColor(const ThemeColor& color);
    /// For a row with cards whose content stands in the middle of their height. Called once;
    /// without it the texts begin at the top.
    void centerLines();

    QAccessible::Role accessibleRole() const override { return QAccessible::Grouping; }
    /// The value and the detail, for example "8 apps, Quit actions leave them alone."
    QString accessibleValue() const override;

protected:
    /// Room for at least `minimum` lines of detail, so that a change of words moves nothing.
    void setDetailLines(int minimum, int maximum);

private:
    ElidedLabel* title_ = nullptr;
    ElidedLabel* value_ = nullptr;
    ElidedLabel* detail_ = nullptr;
};

/// A `SummaryCard` for one figure, with a detail that is short.
class MetricCard : public SummaryCard {
    Q_OBJECT

public:
    explicit MetricCard(const QString& title, QWidget* parent = nullptr);
};

}  // namespace tallowcrest
