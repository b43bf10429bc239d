#include "presentation/screens/shared/cleanup_receipt.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "disk/disk_autopilot.h"
#include "presentation/screens/shared/progress_row.h"
#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/button.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/theme.h"
#include "presentation/words/dashboard_text.h"
#include "presentation/words/disk_lines.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

CleanupReceipt::CleanupReceipt(const QString& identifier, QWidget* parent) : QWidget(parent) {
    setObjectName(identifier);
    const auto addLabel = [&](const char* part, const LabelStyle& style, int lines) {
        return makeLabel(identifier + QString::fromLatin1(part), style, lines, this);
    };
    const auto quiet = onCard(&CrestFonts::caption, &CrestTheme::secondaryText);
    title_ = addLabel("-title", onCard(&CrestFonts::heading), 1);
    time_ = addLabel("-time", quiet, 1);
    time_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    detail_ = addLabel("-detail", quiet, 8);
    progress_ = new ProgressRow(identifier + u"-progress"_s, u"putting files back"_s, this);
    words_ = addLabel("-undo-words", quiet, 3);
    words_->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    undo_ = makeButton(u"Undo"_s, QString(), identifier + u"-undo"_s, QString(), this);
    undo_->setAccessibleName(u"Undo the latest cleanup"_s);
    auto* head = new QHBoxLayout;
    head->setSpacing(spacing::gap);
    head->addWidget(title_, 1);
    head->addWidget(time_);
    auto* foot = new QHBoxLayout;
    foot->setSpacing(spacing::unit);
    foot->addWidget(words_, 1);
    foot->addWidget(undo_);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, spacing::unit, 0, spacing::unit);
    layout->setSpacing(spacing::unit / 2);
    layout->addLayout(head);
    layout->addWidget(detail_);
    layout->addSpacing(spacing::unit / 2);
    layout->addWidget(progress_);
    layout->addLayout(foot);
    connect(undo_, &QPushButton::clicked, this, &CleanupReceipt::undoWanted);
    connect(progress_, &ProgressRow::stopWanted, this, &CleanupReceipt::stopWanted);
    hide();
}

void CleanupReceipt::show(const ActivityEvent* receipt, const DiskAutopilotState& state, Date now) {
    const UndoLine undo = undoLine(state);
    if (receipt != nullptr) {
        title_->setText(dashboard_text::text(receipt->title));
        time_->setText(dashboard_text::shortTimeText(receipt->date, now));
        detail_->setText(dashboard_text::text(receipt->detail));
    }
    for (ElidedLabel* label : {title_, time_, detail_}) {
        label->setVisible(receipt != nullptr);
    }
    progress_->show(state.undo ? putBackLine(*state.undo) : QString(), state.isUndoStopping);
    words_->setText(undo.words);
    setButtonEnabled(*undo_, undo.isPossible);
    setExplanation(*undo_, undo.words);
    setVisible(receipt != nullptr || undo.isPossible || state.undo);
}

}  // namespace tallowcrest
