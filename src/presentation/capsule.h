#pragma once

#include <QString>
#include <QWidget>

#include "presentation/accessible_figure.h"

namespace tallowcrest {

/// A short text in a rounded outline. Main thread.
class Capsule final : public QWidget, public AccessibleFigure {
    Q_OBJECT

public:
    explicit Capsule(QWidget* parent = nullptr);

    /// Plain text; also the accessible name.
    void setText(const QString& text);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

    QAccessible::Role accessibleRole() const override { return QAccessible::StaticText; }
    QString accessibleValue() const override { return text_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString text_;
};

}  // namespace tallowcrest
