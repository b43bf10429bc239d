#pragma once

#include <QTextEdit>

#include "presentation/widgets/accessibility.h"

namespace tallowcrest {

/// A long plain text on a card that can be selected and copied. It wraps anywhere, also within a
/// word that is wider than the card, and has the height that it needs. With the focus, Control-A
/// and Control-C select and copy; the arrow keys are left to the widget around it. Main thread.
class BubbleText final : public QTextEdit, public AccessibleFigure {
    Q_OBJECT

public:
    explicit BubbleText(const QString& identifier, QWidget* parent = nullptr);

    /// Markup is shown as it is. Does nothing for the text that is shown already, so that a
    /// selection stays.
    void showText(const QString& text);

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    QAccessible::Role accessibleRole() const override { return QAccessible::StaticText; }
    QString accessibleValue() const override { return text_; }
    bool saysAllWithin() const override { return true; }

protected:
    void changeEvent(QEvent* event) override;
    QMimeData* createMimeDataFromSelection() const override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    QString text_;
    mutable int measuredWidth_ = -1;
    mutable int measuredHeight_ = 0;
};

}  // namespace tallowcrest
