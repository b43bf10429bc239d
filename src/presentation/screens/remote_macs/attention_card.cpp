#include "presentation/screens/remote_macs/attention_card.h"

#include <algorithm>

#include <QGridLayout>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/button.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/icon.h"
#include "presentation/widgets/text_lines.h"
#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

constexpr int widestName = 220;

}  // namespace

AttentionCard::AttentionCard(QWidget* parent) : Card(parent) {
    setObjectName(u"remote.summary"_s);
    setAccessibleName(u"Summary of the remote machines"_s);
    auto* head = new QHBoxLayout;
    head->setSpacing(spacing::unit);
    icon_ = new IconView(u"info.circle"_s, &CrestTheme::secondaryText, spacing::iconRegular, this);
    summary_ = new ElidedLabel(onCard(&CrestFonts::heading), this);
    summary_->setObjectName(u"remote.summary.attention"_s);
    scanState_ = new ElidedLabel(onCard(&CrestFonts::caption, &CrestTheme::secondaryText), this);
    scanState_->setObjectName(u"remote.summary.scan"_s);
    scanState_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    // The words for the age and the progress change, and leave the summary in its place.
    scanState_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    head->addWidget(icon_);
    head->addWidget(summary_);
    head->addWidget(scanState_, 1);
    cancel_ = makeCancelScanButton(u"remote.summary.cancel"_s, this);
    connect(cancel_, &QPushButton::clicked, this, &AttentionCard::cancelWanted);
    // The card does not grow when the button appears.
    head->addStrut(cancel_->sizeHint().height());
    head->addWidget(cancel_);
    contentLayout()->addLayout(head);

    list_ = new QWidget(this);
    auto* grid = new QGridLayout(list_);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setHorizontalSpacing(spacing::unit);
    grid->setVerticalSpacing(spacing::unit / 2);
    grid->setColumnStretch(3, 1);
    for (int i = 1; i <= static_cast<int>(remote_macs_lines::mostAttentionLines); ++i) {
        rows_.push_back(makeRow(i));
    }
    list_->hide();
    contentLayout()->addWidget(list_);
    more_ = new ElidedLabel(onCard(&CrestFonts::caption, &CrestTheme::secondaryText), this);
    more_->setObjectName(u"remote.summary.more"_s);
    more_->hide();
    contentLayout()->addWidget(more_);
}

AttentionCard::Row AttentionCard::makeRow(int number) {
    const QString identifier = u"remote.summary-%1"_s.arg(number);
    Row row{.icon = new IconView(u"exclamationmark.triangle.fill"_s, &CrestTheme::caution,
                                 spacing::iconSmall, list_),
            .name = new ElidedLabel(onCard(&CrestFonts::heading), list_),
            .why = new ElidedLabel(onCard(&CrestFonts::body, &CrestTheme::caution), list_),
            .what = new ElidedLabel(onCard(&CrestFonts::body, &CrestTheme::secondaryText), list_),
            .show = makeButton(u"Show"_s, QString(), identifier + u".show"_s,
                               u"Goes to this machine below"_s, list_)};
    row.name->setMaximumWidth(widestName);
    row.what->setLines(1, 2);
    row.show->setFlat(true);
    const auto index = static_cast<std::size_t>(number - 1);
    connect(row.show, &QPushButton::clicked, this, [this, index] {
        const std::string id = shown_.at(index).id;
        emit machineWanted(id);
    });
    auto* grid = static_cast<QGridLayout*>(list_->layout());
    grid->addWidget(row.icon, number, 0);
    grid->addWidget(row.name, number, 1);
    grid->addWidget(row.why, number, 2);
    grid->addWidget(row.what, number, 3, Qt::AlignVCenter);
    grid->addWidget(row.show, number, 4);
    return row;
}

void AttentionCard::show(const AttentionTexts& texts) {
    summary_->setText(texts.summary);
    scanState_->setText(texts.scanState);
    showCancelScanButton(*cancel_, texts.scan);
    const bool isTroubled = !texts.lines.empty();
    // Below a count of none, machines under pressure may be listed.
    const bool isWell = texts.isScanned && !isTroubled;
    icon_->setIcon(texts.hasUnreachable ? u"exclamationmark.triangle.fill"_s
                   : isWell             ? u"checkmark.circle"_s
                                        : u"info.circle"_s);
    icon_->setColor(texts.hasUnreachable ? &CrestTheme::caution
                    : isWell             ? &CrestTheme::good
                                         : &CrestTheme::secondaryText);
    if (texts.lines == shown_) {
        return;
    }
    shown_ = texts.lines;
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        const bool isShown = i < shown_.size();
        if (isShown) {
            showRow(i, shown_[i]);
        }
        const Row& row = rows_[i];
        for (QWidget* part : {static_cast<QWidget*>(row.icon), static_cast<QWidget*>(row.name),
                              static_cast<QWidget*>(row.why), static_cast<QWidget*>(row.what),
                              static_cast<QWidget*>(row.show)}) {
            part->setVisible(isShown);
        }
    }
    list_->setVisible(isTroubled);
    const QString more = remote_macs_lines::moreAttention(shown_.size());
    more_->setText(more);
    more_->setVisible(!more.isEmpty());
}

void AttentionCard::showRow(std::size_t index, const remote_macs_lines::AttentionLine& line) {
    const Row& row = rows_[index];
    row.name->setText(line.name);
    row.name->setToolTip(line.host.isEmpty() ? QString()
                                             : toolTipText(line.name + u" · "_s + line.host));
    setSpokenDescription(*row.name, line.host);
    row.why->setText(line.why);
    row.what->setText(line.what);
    setSpokenName(*row.show, u"Show "_s + line.name);
}

}  // namespace tallowcrest
