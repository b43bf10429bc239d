#include "presentation/widgets/conversation_view.h"

#include <algorithm>
#include <iterator>

#include <QKeyEvent>
#include <QTimer>

#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

/// What is laid out at once at the end: more than most windows show.
constexpr int screenful = 1200;
/// How much narrower a message is than the conversation, by which side it stands on.
constexpr int widestIndent = 6 * spacing::unit;

}  // namespace

ConversationView::ConversationView(const QString& identifier, QWidget* parent)
    : QWidget(parent), measuring_(new QTimer(this)) {
    installAccessibleFigures();
    setObjectName(identifier);
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    measuring_->setSingleShot(true);
    measuring_->setInterval(0);
    connect(measuring_, &QTimer::timeout, this, &ConversationView::measureNext);
}

void ConversationView::removeFirst(std::size_t count) {
    count = std::min(count, bubbles_.size());
    if (count == 0) {
        return;
    }
    emit aboutToMove();
    const auto end = bubbles_.begin() + static_cast<std::ptrdiff_t>(count);
    for (auto it = bubbles_.begin(); it != end; ++it) {
        if (*it == tabStop_) {
            tabStop_ = nullptr;
        }
        (*it)->hide();
        (*it)->deleteLater();
    }
    bubbles_.erase(bubbles_.begin(), end);
    if (tabStop_ == nullptr && !bubbles_.empty()) {
        moveTabStop(bubbles_.back());
    }
    arrange();
}

void ConversationView::append(const std::vector<ConversationMessage>& messages) {
    if (messages.empty()) {
        return;
    }
    emit aboutToMove();
    for (const ConversationMessage& message : messages) {
        add(message);
    }
    moveTabStop(bubbles_.back());
    measureInView();
}

void ConversationView::add(const ConversationMessage& message) {
    auto* bubble = new ConversationBubble(message, this);
    connect(bubble, &ConversationBubble::focused, this, [this, bubble] {
        moveTabStop(bubble);
        emit messageFocused(bubble);
    });
    bubble->setEstimatedWidth(bubbleWidth());
    bubbles_.push_back(bubble);
    bubble->show();
}

void ConversationView::moveTabStop(ConversationBubble* to) {
    if (tabStop_ != nullptr) {
        tabStop_->setTabStop(false);
    }
    tabStop_ = to;
    tabStop_->setTabStop(true);
}

bool ConversationView::isMeasured() const {
    return std::ranges::all_of(bubbles_, &ConversationBubble::isMeasured);
}

QWidget* ConversationView::messageAt(int y) const {
    const auto found = std::ranges::find_if(bubbles_, [y](const ConversationBubble* bubble) {
        return bubble->geometry().bottom() + spacing::unit >= y;
    });
    return found != bubbles_.end() ? *found : bubbles_.empty() ? nullptr : bubbles_.back();
}

int ConversationView::bubbleWidth() const {
    return std::max(1, width() - std::min(widestIndent, width() / 8));
}

void ConversationView::measureInView() {
    const QRect seen = visibleRegion().boundingRect();
    int below = 0;
    for (auto it = bubbles_.rbegin(); it != bubbles_.rend(); ++it) {
        ConversationBubble& bubble = **it;
        if (!bubble.isMeasured() && (below < screenful || seen.intersects(bubble.geometry()))) {
            bubble.measure(bubbleWidth());
        }
        below += bubble.neededHeight();
    }
    arrange();
    if (!isMeasured()) {
        measuring_->start();
    }
}

void ConversationView::measureNext() {
    const auto next = std::ranges::find_if(
        bubbles_.rbegin(), bubbles_.rend(),
        [](const ConversationBubble* bubble) { return !bubble->isMeasured(); });
    if (next == bubbles_.rend()) {
        return;
    }
    emit aboutToMove();
    (*next)->measure(bubbleWidth());
    arrange();
    measuring_->start();
}

void ConversationView::arrange() {
    int y = 0;
    for (ConversationBubble* bubble : bubbles_) {
        const int wide = bubbleWidth();
        bubble->setGeometry(bubble->isOwn() ? width() - wide : 0, y, wide, bubble->neededHeight());
        y += bubble->neededHeight() + spacing::unit;
    }
    const int height = std::max(0, y - spacing::unit);
    if (height != height_) {
        height_ = height;
        updateGeometry();
    }
}

int ConversationView::heightForWidth(int) const {
    // For another width it is known only once the messages are laid out in it.
    return height_;
}

QSize ConversationView::sizeHint() const {
    return {minimumSizeHint().width(), height_};
}

QSize ConversationView::minimumSizeHint() const {
    constexpr int narrowest = 200;
    return {narrowest, height_};
}

void ConversationView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    if (event->size().width() == event->oldSize().width()) {
        return;
    }
    for (ConversationBubble* bubble : bubbles_) {
        bubble->setEstimatedWidth(bubbleWidth());
    }
    measureInView();
}

void ConversationView::keyPressEvent(QKeyEvent* event) {
    const auto focused = std::ranges::find_if(bubbles_, [](const ConversationBubble* bubble) {
        const QWidget* focus = bubble->window()->focusWidget();
        return focus != nullptr && bubble->isAncestorOf(focus);
    });
    const bool isUp = event->key() == Qt::Key_Up;
    if (focused == bubbles_.end() || (!isUp && event->key() != Qt::Key_Down)) {
        QWidget::keyPressEvent(event);
        return;
    }
    if (isUp ? focused == bubbles_.begin() : std::next(focused) == bubbles_.end()) {
        return;
    }
    ConversationBubble& next = isUp ? **std::prev(focused) : **std::next(focused);
    if (!next.isMeasured()) {
        emit aboutToMove();
        next.measure(bubbleWidth());
        arrange();
    }
    next.takeFocus();
}

}  // namespace tallowcrest
