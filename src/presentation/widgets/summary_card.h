#pragma once

#include <QString>

#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/card.h"

namespace tallowcrest {

/// A card of three texts: a small title, a large value and a detail. Main thread.
class SummaryCard : public Card, public AccessibleFigure {
    Q_OBJECT

public:
    explicit SummaryCard(const QString& title, QWidget* parent = nullptr);

    void setTitle(const QString& title);
    void setValue(const QString& value);
    void setDetail(const QString& detail);
    /// Centres the texts vertically, to match neighbouring cards; by default they start at the top.
    /// Call at most once.
    void centerLines();

    QAccessible::Role accessibleRole() const override { return QAccessible::Grouping; }
    /// The value and the detail, for example "8 apps, Quit actions leave them alone."
    QString accessibleValue() const override;

protected:
    /// Reserves space for `minimum` lines of detail, so that a new text moves nothing.
    void setDetailLines(int minimum, int maximum);

private:
    ElidedLabel* title_ = nullptr;
    ElidedLabel* value_ = nullptr;
    ElidedLabel* detail_ = nullptr;
};

/// A `SummaryCard` for one figure with a short detail.
class MetricCard : public SummaryCard {
    Q_OBJECT

public:
    explicit MetricCard(const QString& title, QWidget* parent = nullptr);
};

}  // namespace tallowcrest
