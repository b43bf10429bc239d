#pragma once

#include <QWidget>

#include "presentation/widgets/accessible_figure.h"

namespace tallowcrest {

struct ActivityLine;
class ElidedLabel;
class IconView;

/// One entry of the activity log with all that it says: what happened and when, and below it the
/// detail, in as many lines as it needs within reason. Assistive technology hears it as one text.
/// Main thread.
class ActivityEntry final : public QWidget, public AccessibleFigure {
    Q_OBJECT

public:
    static constexpr int mostDetailLines = 8;

    explicit ActivityEntry(QWidget* parent = nullptr);

    void setLine(const ActivityLine& line);

    QAccessible::Role accessibleRole() const override { return QAccessible::StaticText; }
    QString accessibleValue() const override;
    bool saysAllWithin() const override { return true; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    IconView* icon_ = nullptr;
    ElidedLabel* title_ = nullptr;
    ElidedLabel* time_ = nullptr;
    ElidedLabel* detail_ = nullptr;
};

}  // namespace tallowcrest
