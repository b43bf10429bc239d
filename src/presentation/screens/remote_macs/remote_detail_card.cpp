#include "presentation/screens/remote_macs/remote_detail_card.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "presentation/screens/shared/command_button.h"
#include "presentation/widgets/capsule.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/flow_row.h"
#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

RemoteDetailCard::RemoteDetailCard(QWidget* parent) : Card(parent) {
    setObjectName(u"remote.detail"_s);
    setHeader(u"desktopcomputer"_s, u"Remote Detail"_s);
    status_ = new Capsule(this);
    status_->setObjectName(u"remote.detail.status"_s);
    headerLayout()->addWidget(status_);
    empty_ = new ElidedLabel(u"Scan remote Macs, then inspect one machine here."_s,
                             onCard(&CrestFonts::body, &CrestTheme::secondaryText), this);
    empty_->setObjectName(u"remote.detail.empty"_s);
    empty_->setLines(1, 2);
    contentLayout()->addWidget(empty_);

    filled_ = new QWidget(this);
    auto* column = new QVBoxLayout(filled_);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(spacing::unit);
    facts_.emplace(u"remote.detail.fact"_s, remote_macs_lines::detailFacts, filled_);
    facts_->setFrameless();
    column->addWidget(facts_->widget());
    recommendation_ = new ElidedLabel(onCard(&CrestFonts::body), filled_);
    recommendation_->setObjectName(u"remote.detail.recommendation"_s);
    recommendation_->setLines(1, 4);
    column->addWidget(recommendation_);
    result_ = new ElidedLabel(onCard(&CrestFonts::body, &CrestTheme::secondaryText), filled_);
    result_->setObjectName(u"remote.detail.result"_s);
    result_->setLines(1, 3);
    column->addWidget(result_);
    auto* buttons = new FlowRow(spacing::unit, filled_);
    copy_ =
        makeButton({"Copy Report", "doc.on.doc", "Puts a report on this machine on the clipboard"},
                   u"remote.detail.copy-report"_s, buttons);
    auto* safe = makeButton({"Remote Safe", "checkmark.shield",
                             "Takes the safest next step for this machine; a purge is confirmed"},
                            u"remote.detail.remote-safe"_s, buttons);
    connect(copy_, &QPushButton::clicked, this, &RemoteDetailCard::reportWanted);
    connect(safe, &QPushButton::clicked, this, &RemoteDetailCard::safeStepWanted);
    buttons->addItem(copy_);
    buttons->addItem(safe);
    column->addWidget(buttons);
    contentLayout()->addWidget(filled_);
    filled_->hide();
    status_->hide();
}

void RemoteDetailCard::show(const remote_macs_lines::DetailLines& lines) {
    setHeader(u"desktopcomputer"_s, lines.heading);
    const bool isFilled = !lines.facts.empty();
    empty_->setVisible(!isFilled);
    filled_->setVisible(isFilled);
    status_->setVisible(isFilled);
    if (!isFilled) {
        return;
    }
    status_->setText(lines.status);
    status_->setMark(lines.statusIcon, !lines.isReachable   ? &CrestTheme::caution
                                       : lines.isNowOffline ? &CrestTheme::secondaryText
                                                            : &CrestTheme::good);
    facts_->show(lines.facts);
    recommendation_->setText(lines.recommendation);
    recommendation_->setVisible(!lines.recommendation.isEmpty());
    result_->setText(lines.result);
    result_->setVisible(!lines.result.isEmpty());
}

QWidget* RemoteDetailCard::firstControl() const {
    return copy_;
}

}  // namespace tallowcrest
