#pragma once

#include <QString>
#include <QWidget>

#include "presentation/widgets/accessibility.h"

namespace tallowcrest {

class ElidedLabel;
class IconView;
class SelectableText;

/// One message of a conversation, in plain texts.
struct ConversationMessage {
    QString icon;
    QString role;
    QString time;
    QString text;
    bool isOwn = false;  ///< by the owner
};

/// A message in a rounded box: who wrote it and when, and the text below. To lay out a long text
/// takes milliseconds, so it is made when it is first measured; until then its height is an
/// estimate. Main thread.
class ConversationBubble final : public QWidget, public AccessibleFigure {
    Q_OBJECT

public:
    explicit ConversationBubble(const ConversationMessage& message, QWidget* parent);

    bool isOwn() const { return isOwn_; }

    /// Sets the width, which makes the needed height an estimate.
    void setEstimatedWidth(int width);
    /// Makes the needed height exact for that width.
    void measure(int width);
    bool isMeasured() const { return isMeasured_; }
    int neededHeight() const { return neededHeight_; }

    /// Gives the text the keyboard focus.
    void takeFocus();
    /// Whether Tab reaches the text.
    void setTabStop(bool isTabStop);

    QAccessible::Role accessibleRole() const override { return QAccessible::Grouping; }
    /// Empty: the text within says it.
    QString accessibleValue() const override { return {}; }

signals:
    /// The text has got the focus.
    void focused();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void makeText();
    void place();
    int textTop() const;

    QString content_;
    IconView* icon_ = nullptr;
    ElidedLabel* role_ = nullptr;
    ElidedLabel* time_ = nullptr;
    SelectableText* text_ = nullptr;  ///< null until it is measured
    int neededHeight_ = 0;
    bool isOwn_ = false;
    bool isMeasured_ = false;
    bool isTabStop_ = false;
};

}  // namespace tallowcrest
