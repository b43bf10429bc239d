#include "presentation/screens/advisor/trust_card.h"

#include <QGridLayout>
#include <QVBoxLayout>

#include "presentation/screens/shared/autonomy_picker.h"
#include "presentation/screens/shared/command_button.h"
#include "presentation/screens/shared/list_rows.h"
#include "presentation/widgets/button.h"
#include "presentation/widgets/danger_button.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/level_bar.h"
#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

ThemeColor colorOf(const QString& label) {
    return label == u"Trusted"_s    ? ThemeColor(&CrestTheme::good)
           : label == u"Learning"_s ? ThemeColor(&CrestTheme::accent)
                                    : ThemeColor(&CrestTheme::secondaryText);
}

}  // namespace

TrustRow::TrustRow(QWidget* parent) : QWidget(parent) {
    installAccessibleFigures();
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setHorizontalSpacing(spacing::gap);
    grid->setVerticalSpacing(spacing::unit / 2);
    name_ = new ElidedLabel(onCard(&CrestFonts::body), this);
    label_ = new ElidedLabel(onCard(&CrestFonts::body, &CrestTheme::secondaryText), this);
    label_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    label_->setReservedText(u"Learning"_s);
    bar_ = new LevelBar(this);
    figures_ = new ElidedLabel(onCard(&CrestFonts::caption, &CrestTheme::secondaryText), this);
    figures_->setLines(1, 2);
    grid->addWidget(name_, 0, 0);
    grid->addWidget(label_, 0, 1);
    grid->addWidget(bar_, 1, 0, 1, 2);
    grid->addWidget(figures_, 2, 0, 1, 2);
    grid->setColumnStretch(0, 1);
}

void TrustRow::setLine(const advisor_lines::TrustLine& line) {
    name_->setText(line.name);
    label_->setText(line.label);
    bar_->setLevel(line.percent, colorOf(line.label));
    figures_->setText(line.figures);
    setSpokenName(*this, accessibleValue());
}

QString TrustRow::accessibleValue() const {
    return u"%1: %2, %3"_s.arg(name_->text(), label_->text(), spokenText(figures_->text()));
}

TrustCard::TrustCard(QWidget* parent) : Card(parent) {
    setObjectName(u"ai.trust"_s);
    setHeader(u"checkmark.shield"_s, u"Advisor Trust"_s);
    picker_ = new AutonomyPicker(u"ai.autonomy"_s, this);
    contentLayout()->addWidget(picker_);
    contentLayout()->addSpacing(spacing::unit);
    empty_ = new ElidedLabel(
        u"No trust history yet. Approve and run AI suggestions a few times to teach Tallowcrest "
        "what you trust."_s,
        onCard(&CrestFonts::body, &CrestTheme::secondaryText), this);
    empty_->setObjectName(u"ai.trust.empty"_s);
    empty_->setLines(1, 4);
    contentLayout()->addWidget(empty_);
    list_ = new QVBoxLayout;
    list_->setSpacing(spacing::gap);
    contentLayout()->addLayout(list_);
    more_ = new ElidedLabel(onCard(&CrestFonts::caption, &CrestTheme::secondaryText), this);
    more_->setObjectName(u"ai.trust.more"_s);
    more_->hide();
    contentLayout()->addWidget(more_);
    reset_ = makeDangerButton(
        {"Reset Trust History", "", "Forgets all approvals, runs and refusals; the mode stays"},
        u"ai.reset-trust"_s, this);
    connect(reset_, &QPushButton::clicked, this, &TrustCard::resetWanted);
    contentLayout()->addSpacing(spacing::unit / 2);
    contentLayout()->addWidget(reset_, 0, Qt::AlignLeft);
    show({});
}

void TrustCard::show(const TrustRecords& records) {
    if (records == shown_) {
        return;
    }
    shown_ = records;
    const std::vector<advisor_lines::TrustLine> lines = advisor_lines::trustLines(records);
    showLines(rows_, lines, [this] {
        rows_.push_back(new TrustRow(this));
        rows_.back()->setObjectName(u"ai.trust-%1"_s.arg(rows_.size()));
        list_->addWidget(rows_.back());
    });
    empty_->setVisible(records.empty());
    const QString more = advisor_lines::moreTrust(records.size() - lines.size());
    more_->setText(more);
    more_->setVisible(!more.isEmpty());
    setButtonEnabled(*reset_, !records.empty());
}

}  // namespace tallowcrest
