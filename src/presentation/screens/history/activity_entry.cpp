#include "presentation/screens/history/activity_entry.h"

#include <QGridLayout>
#include <QPainter>

#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/icon_view.h"
#include "presentation/widgets/spoken.h"
#include "presentation/words/activity_lines.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

ActivityEntry::ActivityEntry(QWidget* parent) : QWidget(parent) {
    installAccessibleFigures();
    auto* layout = new QGridLayout(this);
    layout->setContentsMargins(0, spacing::unit + 1, 0, spacing::unit);
    layout->setHorizontalSpacing(spacing::unit);
    layout->setVerticalSpacing(2);
    icon_ = new IconView(QString(), &CrestTheme::secondaryText, spacing::iconSmall, this);
    title_ = new ElidedLabel(QString(), &CrestFonts::heading, &CrestTheme::text, this);
    time_ = new ElidedLabel(QString(), &CrestFonts::caption, &CrestTheme::secondaryText, this);
    detail_ = new ElidedLabel(QString(), &CrestFonts::body, &CrestTheme::secondaryText, this);
    for (ElidedLabel* label : {title_, time_, detail_}) {
        label->setGround(&CrestTheme::cardBackground);
    }
    time_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    detail_->setLines(1, mostDetailLines);
    layout->addWidget(icon_, 0, 0, Qt::AlignVCenter);
    layout->addWidget(title_, 0, 1);
    layout->addWidget(time_, 0, 2);
    layout->addWidget(detail_, 1, 1, 1, 2);
    layout->setColumnStretch(1, 1);
}

void ActivityEntry::setLine(const ActivityLine& line) {
    icon_->setIcon(line.isWarning ? u"exclamationmark.triangle.fill"_s : u"checkmark.circle"_s);
    icon_->setColor(line.isWarning ? &CrestTheme::caution : &CrestTheme::secondaryText);
    title_->setText(line.title);
    time_->setText(line.time);
    detail_->setText(line.detail);
    setSpokenName(*this, accessibleValue());
}

QString ActivityEntry::accessibleValue() const {
    return u"%1, %2: %3"_s.arg(title_->text(), time_->text(), detail_->text());
}

void ActivityEntry::paintEvent(QPaintEvent*) {
    QPainter(this).fillRect(0, 0, width(), 1, CrestTheme::current().hairline);
}

}  // namespace tallowcrest
