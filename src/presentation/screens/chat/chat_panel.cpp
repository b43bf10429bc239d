#include "presentation/screens/chat/chat_panel.h"

#include <utility>

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "presentation/screens/chat/chat_lines.h"
#include "presentation/screens/shared/summary_cards.h"
#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/card.h"
#include "presentation/widgets/flow_row.h"
#include "presentation/widgets/text_button.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

ChatPanel::ChatPanel(std::span<QPushButton* const> payloadButtons, QWidget* parent)
    : QWidget(parent) {
    constexpr int narrowestFact = 150;
    setObjectName(u"chat.panel"_s);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing::gap);
    auto* facts = new Card(this);
    facts->setObjectName(u"chat.facts"_s);
    facts->setAccessibleName(u"Facts"_s);
    facts_ =
        std::make_unique<SummaryCards>(u"chat.fact"_s, chat_lines::factCards, facts, narrowestFact);
    facts_->setFrameless();
    facts->contentLayout()->addWidget(facts_->widget());
    auto* buttons = new FlowRow(spacing::unit, facts);
    for (QPushButton* button : payloadButtons) {
        buttons->addItem(button);
    }
    facts->contentLayout()->addWidget(buttons);
    layout->addWidget(facts);
    auto* questions = new Card(this);
    questions->setObjectName(u"chat.prompts"_s);
    questions->setHeader(u"sparkle"_s, u"Starter Prompts"_s);
    // The buttons have a margin of their own, so their words begin where the heading does.
    questions->layout()->setContentsMargins(
        spacing::cardPadding - spacing::unit, spacing::cardPadding,
        spacing::cardPadding - spacing::unit, spacing::cardPadding - spacing::unit);
    questions->headerLayout()->setContentsMargins(spacing::unit, 0, spacing::unit, 0);
    questions->contentLayout()->setSpacing(0);
    int number = 0;
    for (const char* question : chat_lines::starterPrompts) {
        questions->contentLayout()->addWidget(makeQuestion(++number, QString::fromUtf8(question)));
    }
    layout->addWidget(questions);
}

ChatPanel::~ChatPanel() = default;

QWidget* ChatPanel::makeQuestion(int number, const QString& question) {
    auto* row = new QWidget(this);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    const auto add = [&](const QString& identifier, const QString& text, const QString& name,
                         const QString& description, auto signal) {
        auto* button = new TextButton(identifier, &CrestTheme::accentText, row);
        button->setText(text);
        button->setAccessibleName(name);
        setExplanation(*button, description);
        connect(button, &TextButton::clicked, this,
                [this, signal, question] { emit(this->*signal)(question); });
        layout->addWidget(button);
    };
    add(u"chat.prompt-%1"_s.arg(number), question, question,
        u"Puts this question into the input field"_s, &ChatPanel::questionChosen);
    layout->addStretch(1);
    add(u"chat.prompt-%1.ask"_s.arg(number), u"Ask"_s, u"Ask: "_s + question,
        u"Sends this question at once"_s, &ChatPanel::questionAsked);
    return row;
}

void ChatPanel::show(std::vector<SummaryTexts> facts) {
    facts_->show(std::move(facts));
}

}  // namespace tallowcrest
