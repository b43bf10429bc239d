#pragma once

#include <cstddef>
#include <vector>

#include <QWidget>

#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/conversation_bubble.h"

class QTimer;

namespace tallowcrest {

/// The messages of a conversation, oldest first. At once it lays out only those in view and at the
/// end, then the others one by one, so that a long conversation opens without a delay. Tab reaches
/// one message; the arrow keys move to the others. For use within a scroll area. Main thread.
class ConversationView final : public QWidget, public AccessibleFigure {
    Q_OBJECT

public:
    explicit ConversationView(const QString& identifier, QWidget* parent = nullptr);

    void removeFirst(std::size_t count);
    void append(const std::vector<ConversationMessage>& messages);
    /// Whether every height is exact.
    bool isMeasured() const;

    /// The message at that height of this widget; the nearest one outside of all, null without any.
    QWidget* messageAt(int y) const;

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    QAccessible::Role accessibleRole() const override { return QAccessible::Grouping; }
    QString accessibleValue() const override { return {}; }

signals:
    /// The heights of messages are about to change. All are still where they were.
    void aboutToMove();
    /// A message has got the keyboard focus.
    void messageFocused(QWidget* message);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    int bubbleWidth() const;
    void add(const ConversationMessage& message);
    void moveTabStop(ConversationBubble* to);
    /// Measures the messages that can be seen now or in a moment.
    void measureInView();
    void measureNext();
    void arrange();

    std::vector<ConversationBubble*> bubbles_;
    ConversationBubble* tabStop_ = nullptr;
    QTimer* measuring_ = nullptr;
    int height_ = 0;
};

}  // namespace tallowcrest
