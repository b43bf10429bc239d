#include "presentation/figure_row.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

#include "presentation/elided_label.h"
#include "presentation/theme.h"

namespace tallowcrest {

FigureRow::FigureRow(const QStringList& names, QWidget* parent) : QWidget(parent) {
    auto* columns = new QHBoxLayout(this);
    columns->setContentsMargins(0, 0, 0, 0);
    columns->setSpacing(spacing::gap);
    for (const QString& name : names) {
        auto* column = new QVBoxLayout;
        column->setSpacing(2);
        auto* caption =
            new ElidedLabel(name, &CrestFonts::caption, &CrestTheme::secondaryText, this);
        auto* figure = new ElidedLabel(QString(), &CrestFonts::heading, &CrestTheme::text, this);
        caption->setGround(&CrestTheme::cardBackground);
        figure->setGround(&CrestTheme::cardBackground);
        column->addWidget(caption);
        column->addWidget(figure);
        figures_.push_back(figure);
        columns->addLayout(column, 1);
    }
}

void FigureRow::setFigures(const QStringList& figures) {
    for (std::size_t i = 0; i < figures_.size(); ++i) {
        figures_[i]->setText(figures.value(static_cast<qsizetype>(i)));
    }
}

}  // namespace tallowcrest
