#include "presentation/screens/overview/activity_row.h"

#include <QHBoxLayout>

#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/icon_view.h"
#include "presentation/words/activity_lines.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

ActivityRow::ActivityRow(QWidget* parent) : QWidget(parent) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing::unit);
    icon_ = new IconView(QString(), &CrestTheme::secondaryText, spacing::iconSmall, this);
    title_ = new ElidedLabel(QString(), &CrestFonts::heading, &CrestTheme::text, this);
    detail_ = new ElidedLabel(QString(), &CrestFonts::body, &CrestTheme::secondaryText, this);
    time_ = new ElidedLabel(QString(), &CrestFonts::caption, &CrestTheme::secondaryText, this);
    for (ElidedLabel* label : {title_, detail_, time_}) {
        label->setGround(&CrestTheme::cardBackground);
    }
    // The details stand below each other, whichever the titles are.
    title_->setReservedText(u"Auto Rule"_s);
    detail_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    time_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    layout->addWidget(icon_);
    layout->addWidget(title_);
    layout->addWidget(detail_, 1);
    layout->addWidget(time_);
}

void ActivityRow::setLine(const ActivityLine& line) {
    icon_->setIcon(line.isWarning ? u"exclamationmark.triangle.fill"_s : u"checkmark.circle"_s);
    icon_->setColor(line.isWarning ? &CrestTheme::caution : &CrestTheme::secondaryText);
    title_->setText(line.title);
    detail_->setText(line.detail);
    time_->setText(line.time);
}

}  // namespace tallowcrest
