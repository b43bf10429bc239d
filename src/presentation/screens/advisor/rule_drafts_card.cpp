#include "presentation/screens/advisor/rule_drafts_card.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

#include "presentation/screens/shared/list_rows.h"
#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/button.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/theme.h"
#include "presentation/widgets/toggle_switch.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

DraftRow::DraftRow(const QString& identifier, QWidget* parent) : QWidget(parent) {
    const auto addLabel = [&](const char* part, const LabelStyle& style, int lines) {
        auto* label = new ElidedLabel(style, this);
        label->setObjectName(identifier + QString::fromLatin1(part));
        label->setLines(1, lines);
        return label;
    };
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, spacing::unit + 1, 0, spacing::unit / 2);
    row->setSpacing(spacing::unit);
    toggle_ = new ToggleSwitch(this);
    toggle_->setObjectName(identifier);
    connect(toggle_, &QAbstractButton::clicked, this, &DraftRow::toggled);
    row->addWidget(toggle_, 0, Qt::AlignTop);
    auto* words = new QVBoxLayout;
    words->setSpacing(2);
    title_ = addLabel(".title", onCard(&CrestFonts::heading), 3);
    trigger_ = addLabel(".trigger", onCard(&CrestFonts::body, &CrestTheme::secondaryText), 4);
    action_ = addLabel(".action", onCard(&CrestFonts::body, &CrestTheme::secondaryText), 8);
    risk_ = addLabel(".risk", onCard(&CrestFonts::caption, &CrestTheme::secondaryText), 1);
    // Centres the title vertically on the switch.
    words->addSpacing((toggle_->sizeHint().height() - title_->sizeHint().height()) / 2);
    for (ElidedLabel* label : {title_, trigger_, action_, risk_}) {
        words->addWidget(label);
    }
    row->addLayout(words, 1);
}

void DraftRow::setLine(const advisor_lines::DraftLine& line) {
    toggle_->setChecked(line.isEnabled);
    title_->setText(line.title);
    trigger_->setText(line.trigger);
    action_->setText(line.action);
    risk_->setText(line.risk);
    setSpokenName(*toggle_, line.title);
    setSpokenDescription(*toggle_, QStringList{line.trigger, line.action, line.risk}.join(u". "));
}

void DraftRow::paintEvent(QPaintEvent*) {
    QPainter(this).fillRect(0, 0, width(), 1, CrestTheme::current().hairline);
}

RuleDraftsCard::RuleDraftsCard(QWidget* parent) : Card(parent) {
    setObjectName(u"ai.drafts"_s);
    setHeader(u"slider.horizontal.3"_s, u"AI Rule Drafts"_s);
    auto* note = new ElidedLabel(
        u"Drafts are suggestions only. Enable them here when they match how you want this Mac to "
        "behave."_s,
        onCard(&CrestFonts::caption, &CrestTheme::secondaryText), this);
    note->setObjectName(u"ai.drafts.note"_s);
    note->setLines(1, 4);
    contentLayout()->addWidget(note);
    draft_ = makeButton(u"Draft Rules With AI"_s, QString(), u"ai.draft-rules"_s,
                        u"Analyzes the present state; a connected AI also drafts rules"_s, this);
    connect(draft_, &QPushButton::clicked, this, &RuleDraftsCard::draftsWanted);
    contentLayout()->addWidget(draft_, 0, Qt::AlignLeft);
    empty_ = new ElidedLabel(
        u"Run AI Analyze to draft optional automation rules from current patterns."_s,
        onCard(&CrestFonts::body, &CrestTheme::secondaryText), this);
    empty_->setObjectName(u"ai.drafts.empty"_s);
    empty_->setLines(1, 3);
    contentLayout()->addWidget(empty_);
}

void RuleDraftsCard::show(const std::vector<AIRuleDraft>& drafts) {
    empty_->setVisible(drafts.empty());
    if (drafts == shown_) {
        return;
    }
    shown_ = drafts;
    showLines(rows_, advisor_lines::draftLines(drafts), [this] {
        const std::size_t index = rows_.size();
        auto* row = new DraftRow(u"ai.draft-%1"_s.arg(index + 1), this);
        connect(row, &DraftRow::toggled, this, [this, index] {
            if (index < shown_.size()) {
                emit toggleWanted(shown_[index].id);
            }
        });
        contentLayout()->addWidget(row);
        rows_.push_back(row);
    });
}

void RuleDraftsCard::setBusy(bool isBusy) {
    if (draft_->isEnabled() == isBusy) {
        setButtonEnabled(*draft_, !isBusy);
    }
}

}  // namespace tallowcrest
