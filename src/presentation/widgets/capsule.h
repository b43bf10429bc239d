#pragma once

#include <QString>
#include <QWidget>

#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/theme.h"

namespace tallowcrest {

/// A short text in a rounded outline. Main thread.
class Capsule final : public QWidget, public AccessibleFigure {
    Q_OBJECT

public:
    explicit Capsule(QWidget* parent = nullptr);

    /// Plain text; also the accessible name.
    void setText(const QString& text);

    /// Emphasises it: `icon` before the text, and everything in `color`.
    void setMark(const QString& icon, const ThemeColor& color);
    /// Ends the emphasis; there is none at first.
    void clearMark();

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

    QAccessible::Role accessibleRole() const override { return QAccessible::StaticText; }
    QString accessibleValue() const override { return text_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString text_;
    QString icon_;  ///< empty without emphasis
    ThemeColor color_;
};

}  // namespace tallowcrest
