#pragma once

#include <QWidget>

#include "presentation/widgets/accessible_figure.h"
#include "presentation/widgets/spoken.h"

namespace tallowcrest {

/// A chart that is painted whole, with the ground of a card that it stands on, so that new data
/// repaint nothing of what lies below. Main thread.
class PaintedFigure : public QWidget, public AccessibleFigure {
    Q_OBJECT

public:
    explicit PaintedFigure(QWidget* parent = nullptr);

    QAccessible::Role accessibleRole() const override { return QAccessible::Chart; }

protected:
    /// Takes the measures that hang on the fonts. Called for other fonts; the first time is up to
    /// the constructor.
    virtual void measure() = 0;
    /// Lays out what hangs on the size and on those measures.
    virtual void arrange() = 0;
    /// Tells assistive technology what the figure shows now.
    void describe() { setSpokenDescription(*this, accessibleValue()); }

    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
};

}  // namespace tallowcrest
