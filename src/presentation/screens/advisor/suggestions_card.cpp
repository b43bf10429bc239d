#include "presentation/screens/advisor/suggestions_card.h"

#include <algorithm>
#include <span>

#include <QHBoxLayout>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

#include "advisor/advisor_output.h"
#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/button.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/flow_row.h"
#include "presentation/widgets/icon.h"
#include "presentation/widgets/refusal_line.h"
#include "presentation/widgets/text_lines.h"
#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

QString stateWords(const advisor_lines::SuggestionLine& line) {
    const QString state = line.isApproved ? u"Approved"_s : u"Not approved"_s;
    // That an approval is missing is said by the state.
    return line.isApproved && !line.refusal.isEmpty() ? state + u". "_s + line.refusal : state;
}

}  // namespace

SuggestionRow::SuggestionRow(const QString& identifier, QWidget* parent) : QWidget(parent) {
    setObjectName(identifier);
    const auto addLabel = [&](const char* part, const LabelStyle& style, int lines) {
        auto* label = new ElidedLabel(style, this);
        label->setObjectName(identifier + QString::fromLatin1(part));
        label->setLines(1, lines);
        return label;
    };
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, spacing::unit + 1, 0, spacing::unit / 2);
    row->setSpacing(spacing::unit);
    icon_ = new IconView(u"circle"_s, &CrestTheme::secondaryText, spacing::iconSmall, this);
    icon_->setObjectName(identifier + u".icon"_s);
    row->addWidget(icon_, 0, Qt::AlignTop);
    auto* words = new QVBoxLayout;
    words->setSpacing(2);
    title_ = addLabel(".title", onCard(&CrestFonts::heading), 3);
    detail_ = addLabel(".detail", onCard(&CrestFonts::body, &CrestTheme::secondaryText), 8);
    risk_ = addLabel(".risk", onCard(&CrestFonts::caption), 1);
    state_ = addLabel(".state", onCard(&CrestFonts::caption, &CrestTheme::secondaryText), 4);
    for (ElidedLabel* label : {title_, detail_, risk_, state_}) {
        words->addWidget(label);
    }
    auto* buttons = new FlowRow(spacing::unit, this);
    approve_ = makeButton(u"Approve"_s, QString(), identifier + u".approve"_s,
                          u"Lets this action be run; nothing runs yet"_s, buttons);
    run_ = makeButton(QString(), QString(), identifier + u".run"_s, QString(), buttons);
    buttons->addItem(approve_);
    buttons->addItem(run_);
    words->addSpacing(spacing::unit / 2);
    words->addWidget(buttons);
    row->addLayout(words, 1);
    connect(approve_, &QPushButton::clicked, this, &SuggestionRow::approveWanted);
    connect(run_, &QPushButton::clicked, this, &SuggestionRow::runWanted);
}

void SuggestionRow::setLine(const advisor_lines::SuggestionLine& line) {
    icon_->setIcon(line.isApproved ? u"checkmark.circle.fill"_s : u"circle"_s);
    icon_->setColor(line.isApproved ? &CrestTheme::good : &CrestTheme::secondaryText);
    title_->setText(line.title);
    detail_->setText(line.detail);
    risk_->setText(line.risk);
    risk_->setColor(line.isCautious ? &CrestTheme::caution : &CrestTheme::secondaryText);
    state_->setText(stateWords(line));
    setSpokenName(*approve_, u"Approve "_s + line.title);
    run_->setText(line.runTitle);
    run_->updateGeometry();
    setSpokenName(*run_, line.runTitle + u": "_s + line.title);
    const QString why = line.refusal.isEmpty() ? u"Runs this action"_s : line.refusal;
    setSpokenDescription(*run_, why);
    run_->setToolTip(toolTipText(why));
}

void SuggestionRow::paintEvent(QPaintEvent*) {
    QPainter(this).fillRect(0, 0, width(), 1, CrestTheme::current().hairline);
}

SuggestionsCard::SuggestionsCard(QWidget* parent) : Card(parent) {
    setObjectName(u"ai.suggestions"_s);
    setHeader(u"checklist.checked"_s, u"Suggested Actions"_s);
    note_ = new ElidedLabel(
        u"AI safe actions can only select a process, scan remotes, or purge caches when memory "
        "pressure is already high. Quitting remains manual."_s,
        onCard(&CrestFonts::caption, &CrestTheme::secondaryText), this);
    note_->setObjectName(u"ai.suggestions.note"_s);
    note_->setLines(1, 4);
    contentLayout()->addWidget(note_);
    contentLayout()->addWidget(makeButtons());
    refusal_ = new RefusalLine(u"ai.suggestions.refusal"_s, this);
    contentLayout()->addWidget(refusal_);
    empty_ = new ElidedLabel(onCard(&CrestFonts::body, &CrestTheme::secondaryText), this);
    empty_->setObjectName(u"ai.suggestions.empty"_s);
    empty_->setLines(1, 3);
    contentLayout()->addWidget(empty_);
    list_ = new QWidget(this);
    auto* list = new QVBoxLayout(list_);
    list->setContentsMargins(0, 0, 0, 0);
    list->setSpacing(contentLayout()->spacing());
    contentLayout()->addWidget(list_);
    list_->hide();
    // All of them at once, so that their buttons are in the visual order for the Tab key.
    for (std::size_t i = 0; i < maximumSuggestions; ++i) {
        auto* row = new SuggestionRow(u"ai.suggestion-%1"_s.arg(i + 1), list_);
        connect(row, &SuggestionRow::approveWanted, this,
                [this, i] { withShown(i, &SuggestionsCard::approveWanted); });
        connect(row, &SuggestionRow::runWanted, this,
                [this, i] { withShown(i, &SuggestionsCard::runWanted); });
        row->hide();
        list->addWidget(row);
        rows_.push_back(row);
    }
}

void SuggestionsCard::withShown(std::size_t row, void (SuggestionsCard::*wanted)(const UUID&)) {
    if (row < shown_.size()) {
        emit(this->*wanted)(shown_[row].id);
    }
}

QWidget* SuggestionsCard::makeButtons() {
    auto* buttons = new FlowRow(spacing::unit, this);
    auto* approve = makeButton(u"Approve All"_s, QString(), u"ai.approve-all"_s,
                               u"Lets all suggested actions be run; nothing runs yet"_s, buttons);
    auto* run = makeButton(u"Run Approved"_s, QString(), u"ai.run-approved"_s,
                           u"Runs all approved actions, in their order"_s, buttons);
    buttons->addItem(approve);
    buttons->addItem(run);
    connect(approve, &QPushButton::clicked, this, &SuggestionsCard::approveAllWanted);
    connect(run, &QPushButton::clicked, this, &SuggestionsCard::runApprovedWanted);
    return buttons;
}

void SuggestionsCard::show(const std::vector<advisor_lines::SuggestionLine>& lines,
                           const QString& empty) {
    empty_->setText(empty);
    empty_->setVisible(lines.empty());
    if (lines == shown_) {
        return;
    }
    refusal_->setText({});
    shown_ = lines;
    shown_.resize(std::min(shown_.size(), rows_.size()));
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        if (i < shown_.size()) {
            // The width that it gets, or the texts of a new row would be laid out for another
            // first.
            rows_[i]->resize(note_->width(), rows_[i]->height());
            rows_[i]->setLine(shown_[i]);
        }
        rows_[i]->setVisible(i < shown_.size());
    }
    list_->resize(note_->width(), list_->height());
    // After the first rows, so that the page is laid out once and not for each of them.
    list_->setVisible(!shown_.empty());
}

void SuggestionsCard::showRefusal(const QString& words) {
    refusal_->setText(words);
}

}  // namespace tallowcrest
