#include "presentation/widgets/refusal_line.h"

#include <QHBoxLayout>

#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/icon.h"
#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

RefusalLine::RefusalLine(const QString& identifier, QWidget* parent) : QWidget(parent) {
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(spacing::unit);
    row->addWidget(
        new IconView(u"exclamationmark.triangle"_s, &CrestTheme::bad, spacing::iconSmall, this), 0,
        Qt::AlignTop);
    words_ = new ElidedLabel(onCard(&CrestFonts::body, &CrestTheme::bad), this);
    words_->setObjectName(identifier);
    words_->setLines(1, 4);
    row->addWidget(words_, 1);
    hide();
}

void RefusalLine::setText(const QString& text) {
    words_->setText(text);
    setVisible(!text.isEmpty());
}

const QString& RefusalLine::text() const {
    return words_->text();
}

}  // namespace tallowcrest
