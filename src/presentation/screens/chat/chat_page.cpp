#include "presentation/screens/chat/chat_page.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <utility>

#include <QHBoxLayout>
#include <QScrollBar>
#include <QTimer>
#include <QVBoxLayout>

#include "advisor/advisor.h"
#include "advisor/provider_exchange.h"
#include "core/clock.h"
#include "core/settings/settings_owner.h"
#include "monitor/system_monitor.h"
#include "presentation/screens/chat/chat_composer.h"
#include "presentation/screens/chat/chat_lines.h"
#include "presentation/screens/chat/chat_panel.h"
#include "presentation/screens/shared/payload_preview.h"
#include "presentation/screens/shared/workspace_bar.h"
#include "presentation/state/advisor_payload.h"
#include "presentation/state/window_state.h"
#include "presentation/widgets/announcer.h"
#include "presentation/widgets/card.h"
#include "presentation/widgets/conversation_view.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/page_scroll_area.h"
#include "presentation/words/dashboard_text.h"
#include "sampling/latest_sample.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

/// The width of the panel beside the conversation, unless its words need more.
constexpr int panelWidth = 336;
/// From this width of the page on, the panel stands beside the conversation.
constexpr int wide = 840;
/// In a lower page, the workspace bar is scrolled with the conversation.
constexpr int low = 400;
constexpr std::chrono::seconds oneSecond{1};
/// What would be sent is long, so it is not made for each typed character.
constexpr std::chrono::milliseconds pauseInTyping{300};

QVBoxLayout* makeSlot(int rightMargin = 0) {
    auto* slot = new QVBoxLayout;
    slot->setContentsMargins(0, 0, rightMargin, 0);
    slot->setSpacing(spacing::gap);
    return slot;
}

ConversationMessage bubbleOf(const chat_lines::ChatLine& line) {
    return {line.icon, line.role, line.time, line.text, line.isOwn};
}

}  // namespace

ChatPage::ChatPage(SystemMonitor& monitor, WindowState& state, QWidget* parent)
    : Screen(parent),
      monitor_(monitor),
      state_(state),
      seconds_(new QTimer(this)),
      payloadDelay_(new QTimer(this)) {
    bar_ = new WorkspaceBar(AppRoute::chat, this);
    connect(bar_, &WorkspaceBar::routeWanted, this,
            [this](AppRoute route) { state_.navigation.setSelectedRoute(route); });
    makePayload();
    makePanel();
    layOut();
    seconds_->setObjectName(u"chat.seconds"_s);
    seconds_->setInterval(oneSecond);
    connect(seconds_, &QTimer::timeout, this, &ChatPage::showThinking);
    const std::vector<AIChatMessage>& messages = chat().aiChatMessages();
    // A conversation goes on at its end; before the first question the page begins at its top.
    followsEnd_ = messages.size() > 1;
}

void ChatPage::layOut() {
    auto* outer = new QHBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    auto* page = new QWidget(this);
    // The lines of text would become too long to read.
    page->setMaximumWidth(spacing::widestContent + 2 * spacing::pagePadding);
    outer->addWidget(page, 1);
    outer->addStretch(0);
    auto* layout = new QVBoxLayout(page);
    // The scroll bar is part of the padding, or of the gap beside it.
    layout->setContentsMargins(spacing::pagePadding, 0, spacing::pagePadding - spacing::scrollBar,
                               spacing::pagePadding);
    layout->setSpacing(spacing::gap);
    above_ = makeSlot(spacing::scrollBar);
    layout->addLayout(above_);
    auto* columns = new QHBoxLayout;
    columns->setSpacing(spacing::gap - spacing::scrollBar);
    auto* main = makeSlot();
    area_ = new PageScrollArea(makeContent(), page);
    main->addWidget(area_, 1);
    makeComposer();
    auto* input = makeSlot(spacing::scrollBar);
    input->addWidget(composer_);
    main->addLayout(input);
    columns->addLayout(main, 1);
    beside_ = makeSlot(spacing::scrollBar);
    columns->addLayout(beside_);
    layout->addLayout(columns, 1);
    QScrollBar* bar = area_->verticalScrollBar();
    connect(bar, &QScrollBar::rangeChanged, this, [this, bar] {
        if (followsEnd_) {
            bar->setValue(bar->maximum());
        }
    });
    connect(area_, &PageScrollArea::scrolled, this, [this] {
        followsEnd_ = isAtEnd();
        keepPlace();
    });
    connect(conversation_, &ConversationView::aboutToMove, this, [this] {
        // While a layout is pending, the place is the one that is kept already.
        if (!area_->isKeepingPlace()) {
            keepPlace();
        }
    });
    connect(conversation_, &ConversationView::messageFocused, area_,
            [this](QWidget* message) { area_->ensureWidgetVisible(message, 0, spacing::unit); });
    place();
}

QWidget* ChatPage::makeContent() {
    auto* content = new QWidget;
    auto* column = new QVBoxLayout(content);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(spacing::gap);
    within_ = makeSlot();
    column->addLayout(within_);
    lead_ = new ElidedLabel(onPage(&CrestFonts::body, &CrestTheme::secondaryText), content);
    lead_->setObjectName(u"chat.lead"_s);
    lead_->setLines(1, 3);
    column->addWidget(lead_);
    column->addWidget(payload_);
    auto* card = new Card(content);
    card->setObjectName(u"chat.conversation"_s);
    card->setHeader(u"message"_s, u"Conversation"_s);
    empty_ = new ElidedLabel(u"No messages yet. Ask a question below."_s,
                             onCard(&CrestFonts::body, &CrestTheme::secondaryText), card);
    empty_->setObjectName(u"chat.empty"_s);
    card->contentLayout()->addWidget(empty_);
    conversation_ = new ConversationView(u"chat.messages"_s, card);
    conversation_->setAccessibleName(u"Messages"_s);
    card->contentLayout()->addWidget(conversation_);
    thinking_ = new ElidedLabel(onCard(&CrestFonts::body, &CrestTheme::secondaryText), card);
    thinking_->setObjectName(u"chat.thinking"_s);
    thinking_->hide();
    card->contentLayout()->addWidget(thinking_);
    auto* promise = new ElidedLabel(
        u"Chat can recommend steps and point to controls. It does not run optimization actions by "
        "itself."_s,
        onCard(&CrestFonts::caption, &CrestTheme::secondaryText), card);
    promise->setObjectName(u"chat.promise"_s);
    promise->setLines(1, 3);
    card->contentLayout()->addWidget(promise);
    column->addWidget(card);
    column->addStretch(1);
    return content;
}

void ChatPage::makePayload() {
    payload_ = new PayloadPreview(u"chat"_s, this);
    connectPayload(*payload_, monitor_.advisor().provider,
                   [this] { return chatPayload(monitor_); });
    connect(payload_, &PayloadPreview::toggled, this, [this] {
        if (payload_->isShown()) {
            // It stands above the messages.
            followsEnd_ = false;
            area_->keepInPlace(nullptr);
            area_->verticalScrollBar()->setValue(payload_->y());
        }
    });
    payloadDelay_->setObjectName(u"chat.payload.delay"_s);
    payloadDelay_->setSingleShot(true);
    payloadDelay_->setInterval(pauseInTyping);
    connect(payloadDelay_, &QTimer::timeout, this, &ChatPage::followPayload);
}

void ChatPage::makePanel() {
    panel_ = new ChatPanel(payload_->buttons(), this);
    connect(panel_, &ChatPanel::questionChosen, this, [this](const QString& question) {
        chat().setAIChatInput(question.toStdString());
        composer_->show(question, chat().state().aiChatBusy);
        composer_->takeFocus();
    });
    connect(panel_, &ChatPanel::questionAsked, this, [this](const QString& question) {
        chat().askQuickQuestion(question.toStdString());
        followEnd();
    });
}

void ChatPage::makeComposer() {
    composer_ = new ChatComposer(this);
    connect(composer_, &ChatComposer::textEdited, this,
            [this](const QString& text) { chat().setAIChatInput(text.toStdString()); });
    connect(composer_, &ChatComposer::sendWanted, this, &ChatPage::send);
    connect(composer_, &ChatComposer::settingsWanted, this,
            [this] { state_.navigation.openSettings(SettingsTabKind::ai); });
}

void ChatPage::place() {
    const bool isLow = height() < low;
    QVBoxLayout* const barSlot = isLow ? within_ : above_;
    if (barSlot->indexOf(bar_) < 0) {
        barSlot->insertWidget(0, bar_);
    }
    const int room = height() - bar_->sizeHint().height() - spacing::gap - spacing::pagePadding;
    const int side = std::max(panelWidth, panel_->layout()->minimumSize().width());
    const bool isBeside = width() >= wide && panel_->layout()->totalHeightForWidth(side) <= room;
    QVBoxLayout* const panelSlot = isBeside ? beside_ : within_;
    if (panelSlot->indexOf(panel_) < 0) {
        panelSlot->addWidget(panel_, 0, isBeside ? Qt::AlignTop : Qt::Alignment());
        panel_->setMinimumWidth(isBeside ? side : 0);
        panel_->setMaximumWidth(isBeside ? side : QWIDGETSIZE_MAX);
    }
}

Chat& ChatPage::chat() const {
    return monitor_.advisor().chat;
}

std::vector<Observable*> ChatPage::shows() const {
    return {&monitor_.sample().observable(), &monitor_.settingsOwner().observable(),
            &chat().observable(), &monitor_.advisor().provider.observable()};
}

std::vector<HeaderAction> ChatPage::headerActions() {
    return {{{"Send", "message", "Asks the question in the input field"},
             u"chat.header.send"_s,
             [this] { send(); },
             [this] { return chat().state().aiChatBusy ? u"Asking"_s : QString(); }},
            {{"Clear", "xmark.circle", "Removes all messages"}, u"chat.clear"_s, [this] {
                 chat().clearChat();
             }}};
}

void ChatPage::send() {
    composer_->takeFocus();
    if (chat().sendChatMessage().isAccepted()) {
        followEnd();
    }
}

void ChatPage::followEnd() {
    followsEnd_ = true;
    area_->keepInPlace(nullptr);
    QScrollBar* bar = area_->verticalScrollBar();
    bar->setValue(bar->maximum());
}

void ChatPage::refresh() {
    const ChatState& state = chat().state();
    lead_->setText(chat_lines::lead(monitor_.advisor().provider.isConnected()));
    panel_->show(chat_lines::facts(monitor_.sample().snapshot(),
                                   monitor_.settings().aiRedactProcessDetails));
    composer_->show(QString::fromStdString(state.aiChatInput), state.aiChatBusy);
    showMessages();
    payload_->setHasSample(monitor_.sample().snapshot().has_value());
    if (std::exchange(payloadInput_, state.aiChatInput) != state.aiChatInput) {
        payloadDelay_->start();
    } else {
        followPayload();
    }
    thinking_->setVisible(state.aiChatBusy);
    if (state.aiChatBusy) {
        showThinking();
        if (!seconds_->isActive()) {
            seconds_->start();
        }
    } else {
        seconds_->stop();
    }
    isReading_ = true;
}

void ChatPage::followPayload() {
    payload_->follow([this] { return chatPayload(monitor_); },
                     monitor_.settings().aiRedactProcessDetails);
}

void ChatPage::showMessages() {
    const std::vector<AIChatMessage>& messages = chat().aiChatMessages();
    // Messages never change; the oldest ones go, and new ones are behind the others.
    std::size_t gone = 0;
    const auto isRest = [&] {
        return shown_.size() - gone <= messages.size() &&
               std::equal(shown_.begin() + static_cast<std::ptrdiff_t>(gone), shown_.end(),
                          messages.begin(),
                          [](const UUID& id, const AIChatMessage& each) { return id == each.id; });
    };
    while (!isRest()) {
        ++gone;
    }
    const std::size_t kept = shown_.size() - gone;
    if (gone == 0 && kept == messages.size()) {
        return;
    }
    const Date now = monitor_.services().clock.now();
    std::vector<chat_lines::ChatLine> arrived;
    std::vector<ConversationMessage> bubbles;
    for (std::size_t i = kept; i < messages.size(); ++i) {
        arrived.push_back(chat_lines::chatLine(messages[i], now));
        bubbles.push_back(bubbleOf(arrived.back()));
    }
    // In this order, the place of what is read is known until the last moment.
    conversation_->append(bubbles);
    conversation_->removeFirst(gone);
    shown_.clear();
    std::ranges::transform(messages, std::back_inserter(shown_), &AIChatMessage::id);
    empty_->setVisible(messages.empty());
    if (isReading_) {
        announce(*this, chat_lines::arrival(arrived));
    }
}

void ChatPage::showThinking() {
    const ChatState& state = chat().state();
    thinking_->setText(chat_lines::thinking(
        secondsWaited(state.aiChatBusySince, monitor_.services().clock.now()), state.isReadingKey));
}

bool ChatPage::isAtEnd() const {
    const QScrollBar* bar = area_->verticalScrollBar();
    return bar->value() >= bar->maximum() - spacing::unit;
}

void ChatPage::keepPlace() {
    // At its top the page begins with what stands above the messages.
    const bool isScrolled = area_->verticalScrollBar()->value() > 0;
    const int top = conversation_->mapFrom(area_->viewport(), QPoint()).y();
    area_->keepInPlace(followsEnd_ || !isScrolled ? nullptr : conversation_->messageAt(top));
}

void ChatPage::hideEvent(QHideEvent* event) {
    Screen::hideEvent(event);
    seconds_->stop();
    payloadDelay_->stop();
    isReading_ = false;
}

void ChatPage::resizeEvent(QResizeEvent* event) {
    Screen::resizeEvent(event);
    place();
}

}  // namespace tallowcrest
