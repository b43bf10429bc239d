#include "presentation/screens/load/order_header.h"

#include <algorithm>

#include <QPainter>

#include "presentation/screens/load/load_lines.h"
#include "presentation/screens/shared/process_table_model.h"
#include "presentation/screens/shared/process_table_view.h"
#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/text_button.h"
#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

constexpr std::array identifiers{u"processes.order.process", u"processes.order.cpu",
                                 u"processes.order.memory", u"processes.order.memory-percent"};

}  // namespace

OrderHeader::OrderHeader(ProcessTableView& table, QWidget* parent)
    : QWidget(parent), table_(table) {
    setFixedHeight(TextButton::buttonHeight);
    for (std::size_t i = 0; i < buttons_.size(); ++i) {
        const auto column = static_cast<ProcessColumn>(i);
        auto* button =
            new TextButton(QString::fromUtf16(identifiers.at(i)), &CrestTheme::secondaryText, this);
        button->setAlignment(column == ProcessColumn::process ? Qt::AlignLeft : Qt::AlignRight);
        connect(button, &TextButton::clicked, this, [this, column] { emit clicked(column); });
        buttons_.at(i) = button;
    }
    makeImpactOrder();
    action_ = new ElidedLabel(u"Action"_s, onCard(&CrestFonts::caption, &CrestTheme::secondaryText),
                              this);
    action_->setAlignment(Qt::AlignHCenter | Qt::AlignVCenter);
    setOrder(std::nullopt);
    setTabOrder(buttons_.front(), impactOrder_);
    setTabOrder(buttons_.back(), &table_);
    connect(&table_, &ProcessTableView::columnsSized, this, &OrderHeader::placeTitles);
}

void OrderHeader::makeImpactOrder() {
    impactOrder_ = new TextButton(u"processes.impact-order"_s, &CrestTheme::accentText, this);
    impactOrder_->setText(u"Impact order"_s);
    impactOrder_->setAccessibleName(impactOrder_->text());
    setExplanation(*impactOrder_, impactOrderEffect());
    connect(impactOrder_, &TextButton::clicked, this, [this] {
        // The focus must not get lost with the button.
        if (impactOrder_->hasFocus()) {
            table_.setFocus();
        }
        emit impactOrderWanted();
    });
}

void OrderHeader::setOrder(const std::optional<ProcessOrder>& order) {
    for (std::size_t i = 0; i < buttons_.size(); ++i) {
        const auto column = static_cast<ProcessColumn>(i);
        const ColumnTitle shown = columnTitle(order, column);
        TextButton& button = *buttons_.at(i);
        button.setText(shown.text);
        button.setColor(shown.isOrdered ? &CrestTheme::text : &CrestTheme::secondaryText);
        setSpokenName(button, shown.spoken);
        setExplanation(button, shown.effect);
    }
    impactOrder_->setVisible(order.has_value());
    placeTitles();
}

void OrderHeader::placeTitles() {
    const auto place = [this](QWidget& title, int column) {
        // The line below the titles stays visible.
        title.setGeometry(table_.columnViewportPosition(column), 0, table_.columnWidth(column),
                          height() - 1);
    };
    for (std::size_t i = 0; i < buttons_.size(); ++i) {
        place(*buttons_.at(i), static_cast<int>(i));
    }
    place(*action_, ProcessTableModel::actionColumn);
    // On the title of the names, right behind its text.
    const TextButton& names = *buttons_.front();
    const int text = std::min(names.sizeHint().width(), names.width());
    impactOrder_->setGeometry(
        text, 0, std::min(impactOrder_->sizeHint().width(), names.width() - text), names.height());
}

void OrderHeader::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(CrestTheme::current().hairline);
    // As long as the lines between the rows, which end at the scroll bar.
    painter.drawLine(0, height() - 1, table_.viewport()->width() - 1, height() - 1);
}

}  // namespace tallowcrest
