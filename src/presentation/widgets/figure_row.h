#pragma once

#include <vector>

#include <QStringList>
#include <QWidget>

#include "presentation/widgets/accessibility.h"

namespace tallowcrest {

class ElidedLabel;

/// One figure below its name; assistive technology reads both together: "CPU now: 34%". Main
/// thread.
class NamedFigure final : public QWidget, public AccessibleFigure {
    Q_OBJECT

public:
    explicit NamedFigure(const QString& name, QWidget* parent = nullptr);

    void setFigure(const QString& figure);

    QAccessible::Role accessibleRole() const override { return QAccessible::StaticText; }
    QString accessibleValue() const override;
    bool saysAllWithin() const override { return true; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void place();

    ElidedLabel* name_ = nullptr;
    ElidedLabel* figure_ = nullptr;
};

/// A few figures side by side on a card, each below its name. The columns do not move with the
/// figures. Main thread.
class FigureRow final : public QWidget {
    Q_OBJECT

public:
    /// One column for each of `names`.
    explicit FigureRow(const QStringList& names, QWidget* parent = nullptr);

    /// As many figures as there are names.
    void setFigures(const QStringList& figures);

private:
    std::vector<NamedFigure*> figures_;
};

}  // namespace tallowcrest
