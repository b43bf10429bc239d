#include "presentation/screens/optimization_suggestions/personal_file_row.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/button.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/flow_row.h"
#include "presentation/widgets/level_bar.h"
#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

PersonalFileRow::PersonalFileRow(const QString& identifier, const Offers& offers, QWidget* parent)
    : QWidget(parent) {
    setObjectName(identifier);
    const auto addLabel = [&](const char* part, const LabelStyle& style, int lines) {
        return makeLabel(identifier + QString::fromLatin1(part), style, lines, this);
    };
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, spacing::unit + 1, 0, spacing::unit / 2);
    layout->setSpacing(spacing::unit / 2);
    auto* head = new QHBoxLayout;
    head->setSpacing(spacing::gap);
    // The end of a name has its extension.
    title_ = addLabel(".title", onCard(&CrestFonts::heading), 1);
    title_->setElideMode(Qt::ElideMiddle);
    size_ = addLabel(".size", onCard(&CrestFonts::body), 1);
    size_->setReservedText(u"0000.0 GB"_s);
    size_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    size_->setUnitColor(&CrestTheme::secondaryText);
    head->addWidget(title_, 1);
    head->addWidget(size_);
    layout->addLayout(head);
    bar_ = new LevelBar(this);
    layout->addWidget(bar_);
    detail_ = addLabel(".detail", onCard(&CrestFonts::caption, &CrestTheme::secondaryText), 1);
    detail_->setElideMode(Qt::ElideMiddle);
    recommendation_ = addLabel(".recommendation", onCard(&CrestFonts::body), 1);
    reason_ = addLabel(".reason", onCard(&CrestFonts::caption, &CrestTheme::secondaryText), 3);
    for (ElidedLabel* label : {detail_, recommendation_, reason_}) {
        layout->addWidget(label);
    }
    auto* buttons = new FlowRow(spacing::unit, this);
    const auto addButton = [&](const QString& title, const char* part, const QString& what,
                               auto wanted) {
        auto* button =
            makeButton(title, QString(), identifier + QString::fromLatin1(part), what, buttons);
        buttons->addItem(button);
        connect(button, &QPushButton::clicked, this, wanted);
        return button;
    };
    if (offers.reveal) {
        reveal_ = addButton(u"Reveal"_s, ".reveal", u"Shows it in the file manager"_s,
                            &PersonalFileRow::revealWanted);
    }
    if (offers.backUp) {
        backUp_ =
            addButton(u"Back Up"_s, ".back-up", u"Asks for a folder and copies the file there"_s,
                      &PersonalFileRow::backupWanted);
    }
    trash_ = addButton(u"Trash"_s, ".trash", u"Asks whether to move it to Trash"_s,
                       &PersonalFileRow::trashWanted);
    layout->addSpacing(spacing::unit / 2);
    layout->addWidget(buttons);
}

void PersonalFileRow::setLine(const optimization_suggestions_lines::PersonalFileLine& line) {
    title_->setText(line.title);
    size_->setText(line.size);
    bar_->setLevel(line.percent, &CrestTheme::accent);
    detail_->setText(line.detail);
    recommendation_->setText(line.recommendation);
    reason_->setText(line.reason);
    for (QPushButton* button : buttons()) {
        setSpokenName(*button, button->text() + u' ' + line.title);
    }
}

void PersonalFileRow::setBackupEnabled(bool isEnabled) {
    if (backUp_ != nullptr) {
        setButtonEnabled(*backUp_, isEnabled);
    }
}

std::vector<QPushButton*> PersonalFileRow::buttons() const {
    std::vector<QPushButton*> buttons{reveal_, backUp_, trash_};
    std::erase(buttons, nullptr);
    return buttons;
}

void PersonalFileRow::setTabPlaceAfter(QWidget* control) {
    for (QPushButton* button : buttons()) {
        setTabOrder(control, button);
        control = button;
    }
}

QWidget* PersonalFileRow::lastControl() const {
    return trash_;
}

void PersonalFileRow::paintEvent(QPaintEvent*) {
    QPainter(this).fillRect(0, 0, width(), 1, CrestTheme::current().hairline);
}

}  // namespace tallowcrest
