#include "presentation/widgets/figure_row.h"

#include <algorithm>

#include <QEvent>
#include <QHBoxLayout>

#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

constexpr int lineGap = 2;

}  // namespace

NamedFigure::NamedFigure(const QString& name, QWidget* parent) : QWidget(parent) {
    installAccessibleFigures();
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    name_ = new ElidedLabel(name, onCard(&CrestFonts::caption, &CrestTheme::secondaryText), this);
    figure_ = new ElidedLabel(onCard(&CrestFonts::heading), this);
    figure_->setUnitColor(&CrestTheme::secondaryText);
    setAccessibleName(accessibleValue());
}

void NamedFigure::setFigure(const QString& figure) {
    figure_->setText(figure);
    setSpokenName(*this, accessibleValue());
}

QString NamedFigure::accessibleValue() const {
    // The dash of a missing figure is not read out.
    const QString& figure = figure_->text();
    const bool isFigure = std::any_of(figure.begin(), figure.end(),
                                      [](QChar each) { return each.isLetterOrNumber(); });
    return isFigure ? name_->text() + u": "_s + figure : name_->text();
}

QSize NamedFigure::sizeHint() const {
    const QSize name = name_->sizeHint();
    const QSize figure = figure_->sizeHint();
    return {std::max(name.width(), figure.width()), name.height() + lineGap + figure.height()};
}

QSize NamedFigure::minimumSizeHint() const {
    return {std::max(name_->minimumSizeHint().width(), figure_->minimumSizeHint().width()),
            sizeHint().height()};
}

void NamedFigure::changeEvent(QEvent* event) {
    if (event->type() == QEvent::FontChange) {
        place();
        updateGeometry();
    }
    QWidget::changeEvent(event);
}

void NamedFigure::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    place();
}

// Not by a layout, which would propagate the size hint of every new figure to the page; the columns
// share the row equally whatever they show.
void NamedFigure::place() {
    const int nameHeight = name_->sizeHint().height();
    name_->setGeometry(0, 0, width(), nameHeight);
    figure_->setGeometry(0, nameHeight + lineGap, width(), figure_->sizeHint().height());
}

FigureRow::FigureRow(const QStringList& names, QWidget* parent) : QWidget(parent) {
    auto* columns = new QHBoxLayout(this);
    columns->setContentsMargins(0, 0, 0, 0);
    columns->setSpacing(spacing::gap);
    for (const QString& name : names) {
        figures_.push_back(new NamedFigure(name, this));
        columns->addWidget(figures_.back(), 1);
    }
}

void FigureRow::setFigures(const QStringList& figures) {
    for (std::size_t i = 0; i < figures_.size(); ++i) {
        figures_[i]->setFigure(figures.value(static_cast<qsizetype>(i)));
    }
}

}  // namespace tallowcrest
