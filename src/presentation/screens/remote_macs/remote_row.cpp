#include "presentation/screens/remote_macs/remote_row.h"

#include <utility>

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/button.h"
#include "presentation/widgets/danger_button.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/icon.h"
#include "presentation/widgets/text_lines.h"
#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
RemoteRow::RemoteRow(RemoteRows::Action action, const QString& identifier, std::string key,
                     QWidget* parent)
    : QWidget(parent), action_(action), key_(std::move(key)) {
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(spacing::unit);
    name_ = new ElidedLabel(onCard(&CrestFonts::body), this);
    name_->setElideMode(Qt::ElideMiddle);
    note_ = new ElidedLabel(onCard(&CrestFonts::caption, &CrestTheme::secondaryText), this);
    auto* words = new QVBoxLayout;
    words->setSpacing(0);
    words->addWidget(name_);
    words->addWidget(note_);
    row->addLayout(words, 1);
    const auto addFigure = [&](const QString& widest) {
        auto* figure = new ElidedLabel(onCard(&CrestFonts::body), this);
        figure->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        figure->setReservedText(widest);
        row->addWidget(figure);
        return figure;
    };
    cpu_ = addFigure(u"0,000.0% CPU"_s);
    memory_ = addFigure(u"000,000 MB"_s);
    row->addSpacing(spacing::unit);
    copy_ = makeButton(u"Copy"_s, QString(), identifier + u".copy"_s,
                       u"Puts a report on it on the clipboard"_s, this);
    connect(copy_, &QPushButton::clicked, this, &RemoteRow::copyWanted);
    row->addWidget(copy_);
    actionButton_ = makeAction(identifier);
    row->addWidget(actionButton_);
}

QPushButton* RemoteRow::makeAction(const QString& identifier) {
    if (action_ == RemoteRows::Action::quit) {
        auto* quit = new DangerButton(this);
        quit->setObjectName(identifier + u".quit"_s);
        quit->setTitle(u"Quit"_s);
        connect(quit, &QPushButton::clicked, this, &RemoteRow::actionWanted);
        return quit;
    }
    QPushButton* toggle =
        makeButton(QString(), QString(), identifier + u".never-quit"_s, QString(), this);
    toggle->setIconSize({spacing::iconSmall, spacing::iconSmall});
    toggle->setCheckable(true);
    connect(toggle, &QPushButton::clicked, this, [this] {
        // The click has checked it; the list has the state.
        showNeverQuit();
        emit actionWanted();
    });
    return toggle;
}

void RemoteRow::show(const remote_health_lines::Row& row) {
    if (row == shown_) {
        return;
    }
    shown_ = row;
    name_->setText(row.name);
    name_->setToolTip(toolTipText(row.toolTip));
    // Else the markup of the tool tip would be read.
    setSpokenDescription(*name_, row.toolTip);
    note_->setText(row.note);
    cpu_->setText(row.cpu);
    memory_->setText(row.memory);
    memory_->setVisible(!row.memory.isEmpty());
    setSpokenName(*copy_, row.copyName);
    if (action_ == RemoteRows::Action::quit) {
        actionButton_->setEnabled(row.hasAction);
    } else {
        showNeverQuit();
    }
    setSpokenName(*actionButton_, row.actionName);
    setExplanation(*actionButton_, row.actionDescription);
}

void RemoteRow::showNeverQuit() {
    const bool isOn = shown_.isProtected;
    actionButton_->setText(isOn ? u"Never Quit: On"_s : u"Never Quit: Off"_s);
    actionButton_->setIcon(themedIcon(isOn ? u"lock.fill"_s : u"lock.shield"_s));
    actionButton_->setChecked(isOn);
}

std::array<QWidget*, 2> RemoteRow::controls() const {
    return {copy_, actionButton_};
}

}  // namespace tallowcrest
