#include "presentation/screens/shared/process_table_view.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include <QAccessible>
#include <QFontMetrics>
#include <QHeaderView>
#include <QKeyEvent>
#include <QPainter>
#include <QToolTip>

#include "presentation/screens/shared/process_row_delegate.h"
#include "presentation/screens/shared/process_table_model.h"
#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

/// Room for most names with their notes. What is left in a wide window goes to the name and to the
/// numbers, so that no figure is far from its name.
constexpr int comfortableName = 420;

}  // namespace

ProcessTableView::ProcessTableView(QWidget* parent) : QTableView(parent) {
    delegate_ = new ProcessRowDelegate(this);
    setItemDelegate(delegate_);
    connect(delegate_, &ProcessRowDelegate::reviewRequested, this,
            &ProcessTableView::reviewRequested);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setSelectionBehavior(QAbstractItemView::SelectItems);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // Always there, so that the columns do not move when a filter leaves few rows.
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setTabKeyNavigation(false);
    setShowGrid(false);
    setFrameShape(QFrame::NoFrame);
    setMouseTracking(true);
    setWordWrap(false);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    // First the minimum: no default may be below it.
    verticalHeader()->setMinimumSectionSize(ProcessRowDelegate::rowHeight);
    verticalHeader()->setDefaultSectionSize(ProcessRowDelegate::rowHeight);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setSectionsClickable(false);
    applyTheme();
}

void ProcessTableView::setModel(QAbstractItemModel* model) {
    QTableView::setModel(model);
    sizeColumns();
    if (model == nullptr) {
        return;
    }
    connect(selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &ProcessTableView::reviewSelected);
    // The row below the pointer may now be another process than the one the tip names.
    const auto endToolTip = [this] {
        if (pointer_) {
            QToolTip::hideText();
        }
    };
    connect(model, &QAbstractItemModel::layoutChanged, this, endToolTip);
    connect(model, &QAbstractItemModel::rowsInserted, this, endToolTip);
    connect(model, &QAbstractItemModel::rowsRemoved, this, endToolTip);
}

QRect ProcessTableView::visualRect(const QModelIndex& index) const {
    // To assistive technology a cell that has a place is one that shows.
    return isVisible() ? QTableView::visualRect(index) : QRect();
}

void ProcessTableView::setEmptyDetail(const QString& detail) {
    if (emptyDetail_ != detail) {
        emptyDetail_ = detail;
        viewport()->update();
    }
}

void ProcessTableView::sizeColumns() {
    if (model() == nullptr) {
        return;
    }
    QHeaderView* header = horizontalHeader();
    const auto fix = [header](int column, int width) {
        header->setSectionResizeMode(column, QHeaderView::Fixed);
        header->resizeSection(column, width);
    };
    // Wide enough for the largest figures, so that no sample moves a column.
    const QFont& font = CrestFonts::current().body;
    const int padding = 2 * spacing::unit;
    const std::pair<int, int> figures[] = {
        {ProcessTableModel::cpuColumn, figuresWidth(font, u"0000.0%"_s) + padding},
        {ProcessTableModel::memoryColumn, figuresWidth(font, u"000,000.0 MB"_s) + padding},
        {ProcessTableModel::memoryPercentColumn, figuresWidth(font, u"100.0%"_s) + padding},
    };
    int room = viewport()->width() - ProcessRowDelegate::actionWidth();
    for (const auto& [column, width] : figures) {
        room -= width;
    }
    const int numbers = static_cast<int>(std::size(figures));
    const int more = std::max(0, room - comfortableName) / (2 * numbers);
    fix(ProcessTableModel::processColumn, std::max(0, room - numbers * more));
    for (const auto& [column, width] : figures) {
        fix(column, width + more);
    }
    fix(ProcessTableModel::actionColumn, ProcessRowDelegate::actionWidth());
    emit columnsSized();
}

int ProcessTableView::heightOfRows(int rows) const {
    const QHeaderView& titles = *horizontalHeader();
    const int header =
        titles.isHidden() ? 0 : std::max(titles.minimumHeight(), titles.sizeHint().height());
    return header + rows * ProcessRowDelegate::rowHeight;
}

int ProcessTableView::wholeRowsHeight(int height) const {
    const int rows = std::max(0, height - heightOfRows(0)) / ProcessRowDelegate::rowHeight;
    return rows > 0 ? heightOfRows(rows) : height;
}

void WholeRowsItem::setGeometry(const QRect& place) {
    QWidgetItem::setGeometry(
        QRect(place.topLeft(), QSize(place.width(), table_->wholeRowsHeight(place.height()))));
}

void ProcessTableView::applyTheme() {
    const CrestTheme& theme = CrestTheme::current();
    QPalette colors = palette();
    if (colors.color(QPalette::Base) == theme.cardBackground &&
        colors.color(QPalette::Button) == theme.cardBackground) {
        return;
    }
    colors.setColor(QPalette::Base, theme.cardBackground);
    colors.setColor(QPalette::Button, theme.cardBackground);
    colors.setColor(QPalette::ButtonText, theme.secondaryText);
    setPalette(colors);
    horizontalHeader()->setFont(CrestFonts::current().caption);
}

void ProcessTableView::changeEvent(QEvent* event) {
    QTableView::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        applyTheme();
    } else if (event->type() == QEvent::FontChange) {
        sizeColumns();
    }
}

void ProcessTableView::focusInEvent(QFocusEvent* event) {
    QTableView::focusInEvent(event);
    // Queued, because Qt reports the table itself only after this event.
    QMetaObject::invokeMethod(this, &ProcessTableView::reportFocusedRow, Qt::QueuedConnection);
}

void ProcessTableView::reportFocusedRow() {
    if (QAccessible::isActive() && hasFocus() && currentIndex().isValid()) {
        QAccessibleTableInterface* cells =
            QAccessible::queryAccessibleInterface(this)->tableInterface();
        QAccessibleEvent focused(cells->cellAt(currentIndex().row(), currentIndex().column()),
                                 QAccessible::Focus);
        QAccessible::updateAccessibility(&focused);
    }
}

void ProcessTableView::hideEvent(QHideEvent* event) {
    QTableView::hideEvent(event);
    isPressed_ = false;  // the button is released elsewhere
    // To assistive technology the current cell is the focused one.
    if (currentIndex().isValid()) {
        currentWhileHidden_ = currentIndex();
        setCurrentIndex({});
    }
}

void ProcessTableView::showEvent(QShowEvent* event) {
    QTableView::showEvent(event);
    if (!currentIndex().isValid() && currentWhileHidden_.isValid()) {
        setAutoScroll(false);
        setCurrentIndex(currentWhileHidden_);
        setAutoScroll(true);
    }
}

void ProcessTableView::resizeEvent(QResizeEvent* event) {
    QTableView::resizeEvent(event);
    sizeColumns();
    emit viewMoved();
}

void ProcessTableView::keyPressEvent(QKeyEvent* event) {
    emit touched();
    const bool asksForReview = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter ||
                               event->key() == Qt::Key_Space;
    if (asksForReview && currentIndex().isValid()) {
        emit reviewRequested(currentIndex());
        return;
    }
    QTableView::keyPressEvent(event);
}

QModelIndex ProcessTableView::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) {
    // Keys move by whole rows.
    const int rows = model() != nullptr ? model()->rowCount() : 0;
    switch (action) {
        case MoveHome:
            return rows > 0 ? model()->index(0, 0) : QModelIndex();
        case MoveEnd:
            return rows > 0 ? model()->index(rows - 1, 0) : QModelIndex();
        case MoveLeft:
        case MoveRight:
            return currentIndex();
        default:
            return QTableView::moveCursor(action, modifiers).siblingAtColumn(0);
    }
}

void ProcessTableView::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    if (hasFocus()) {
        QTableView::currentChanged(current, previous);
    } else {
        // To assistive technology Qt's table would give the focus to the cell.
        QAbstractItemView::currentChanged(current, previous);
    }
    // The view repaints only the cell, but the focus ring surrounds the row.
    for (const QModelIndex& index : {current, previous}) {
        if (index.isValid()) {
            updateRow(index.row());
        }
    }
}

bool ProcessTableView::viewportEvent(QEvent* event) {
    switch (event->type()) {
        case QEvent::MouseMove:
            followPointer(static_cast<QMouseEvent*>(event)->position().toPoint());
            [[fallthrough]];
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
        case QEvent::MouseButtonRelease:
            isPressed_ = static_cast<QMouseEvent*>(event)->buttons() != Qt::NoButton;
            emit touched();
            break;
        case QEvent::Wheel:
            emit touched();
            break;
        case QEvent::Leave:
            followPointer(std::nullopt);
            emit pointerLeft();
            break;
        default:
            break;
    }
    return QTableView::viewportEvent(event);
}

QItemSelectionModel::SelectionFlags ProcessTableView::selectionCommand(const QModelIndex&,
                                                                       const QEvent*) const {
    return QItemSelectionModel::NoUpdate;
}

void ProcessTableView::reviewSelected(const QItemSelection& selected) {
    const QModelIndexList cells = selected.indexes();
    if (!cells.isEmpty()) {
        // So that the same cell can be selected again.
        selectionModel()->clearSelection();
        if (cells.first().column() == ProcessTableModel::actionColumn) {
            emit reviewRequested(cells.first());
        }
    }
}

std::pair<int, int> ProcessTableView::rowsInView() const {
    const int last = rowAt(viewport()->height() - 1);
    const int lastInModel = model() != nullptr ? model()->rowCount() - 1 : -1;
    // While rows are removed, the view may still have more of them than the model.
    return {std::max(0, rowAt(0)), last < 0 ? lastInModel : std::min(last, lastInModel)};
}

void ProcessTableView::scrollContentsBy(int dx, int dy) {
    QTableView::scrollContentsBy(dx, dy);
    // The rows move although the pointer does not.
    followPointer(pointer_);
    emit viewMoved();
}

void ProcessTableView::followPointer(std::optional<QPoint> place) {
    pointer_ = place;
    const int row = rowBelowPointer();
    const int before = delegate_->hoveredRow();
    if (row != before) {
        delegate_->setHoveredRow(row);
        updateRow(before);
        updateRow(row);
    }
}

void ProcessTableView::updateRow(int row) {
    if (row >= 0) {
        viewport()->update(0, rowViewportPosition(row), viewport()->width(), rowHeight(row));
    }
}

void ProcessTableView::paintEvent(QPaintEvent* event) {
    QTableView::paintEvent(event);
    if (model() == nullptr || model()->rowCount() > 0) {
        return;
    }
    const CrestTheme& theme = CrestTheme::current();
    QPainter painter(viewport());
    const QRect area = viewport()->rect();
    const QFontMetrics headingMetrics(CrestFonts::current().heading);
    QRect heading(area.left(), area.top() + area.height() / 3, area.width(),
                  headingMetrics.height());
    painter.setFont(CrestFonts::current().heading);
    painter.setPen(theme.text);
    painter.drawText(heading, Qt::AlignCenter, u"Select Process"_s);
    painter.setFont(CrestFonts::current().body);
    painter.setPen(theme.secondaryText);
    painter.drawText(heading.translated(0, heading.height() + spacing::unit), Qt::AlignCenter,
                     emptyDetail_);
}

}  // namespace tallowcrest
