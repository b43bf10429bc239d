#include "presentation/screens/remote_macs/peer_list.h"

#include <algorithm>

#include <QKeyEvent>
#include <QPainter>
#include <QStyledItemDelegate>

#include "presentation/screens/remote_macs/peer_list_model.h"
#include "presentation/screens/remote_macs/remote_macs_lines.h"
#include "presentation/widgets/figure_text.h"
#include "presentation/widgets/icon.h"
#include "presentation/widgets/page_scroll_area.h"
#include "presentation/widgets/text_lines.h"
#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using remote_macs_lines::PeerPath;

struct PathMark {
    QString icon;
    QColor CrestTheme::*color;
};

PathMark markOf(PeerPath path) {
    switch (path) {
        case PeerPath::active:
            return {u"checkmark.circle"_s, &CrestTheme::good};
        case PeerPath::listed:
            return {u"hourglass"_s, &CrestTheme::caution};
        case PeerPath::offline:
            break;
    }
    return {u"xmark.circle"_s, &CrestTheme::secondaryText};
}

void paintText(QPainter& painter, const QRect& room, const QString& words, const QFont& font,
               const QColor& color) {
    painter.setFont(font);
    painter.setPen(color);
    const QStringList lines = fittedLines(words, font, room.width(), 1);
    if (!lines.isEmpty()) {
        painter.drawText(room, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                         lines.first());
    }
}

/// Paints the name of a peer with its path, above its system and address.
class PeerDelegate final : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const override {
        return {0, PeerList::rowHeight};
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        const CrestTheme& theme = CrestTheme::current();
        const CrestFonts& fonts = CrestFonts::current();
        const QRect row = option.rect;
        painter->save();
        painter->setClipRect(row);
        painter->fillRect(row.left(), row.top(), row.width(), 1, theme.hairline);

        const auto [icon, color] =
            markOf(static_cast<PeerPath>(index.data(PeerListModel::pathKindRole).toInt()));
        const int top = row.top() + (row.height() - spacing::iconSmall) / 2;
        painter->drawPixmap(row.left() + spacing::unit / 2, top,
                            tintedIcon(icon, theme.*color, spacing::iconSmall,
                                       painter->device()->devicePixelRatioF()));
        const int left = row.left() + spacing::iconSmall + spacing::unit + spacing::unit / 2;
        // The right half belongs to the path, which begins in the same column in all rows.
        const int middle = left + (row.right() - left) * 2 / 5;
        const int line = row.height() / 2 - 4;
        const QRect upper(left, row.top() + 5, middle - left - spacing::gap, line);
        paintText(*painter, upper, index.data().toString(), fonts.heading, theme.text);
        paintText(*painter, upper.translated(0, line),
                  index.data(PeerListModel::placeRole).toString(), fonts.caption,
                  theme.secondaryText);
        paintText(*painter, QRect(middle, row.top(), row.right() - middle, row.height()),
                  index.data(PeerListModel::pathRole).toString(), fonts.body, theme.*color);
        if (option.state.testFlag(QStyle::State_HasFocus)) {
            painter->setPen(QPen(theme.accentText, 2));
            painter->setBrush(Qt::NoBrush);
            painter->drawRect(row.adjusted(1, 1, -1, -1));
        }
        painter->restore();
    }
};

}  // namespace

PeerList::PeerList(QWidget* parent) : QListView(parent) {
    setObjectName(u"remote.tailscale.peers"_s);
    setAccessibleName(u"Tailscale peers"_s);
    setAccessibleDescription(u"The other machines of the tailnet and the paths to them"_s);
    model_ = new PeerListModel(this);
    setModel(model_);
    setItemDelegate(new PeerDelegate(this));
    setUniformItemSizes(true);
    setFrameShape(QFrame::NoFrame);
    setSelectionMode(QAbstractItemView::NoSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    applyTheme();
}

void PeerList::setPeers(const std::vector<TailDevice>& peers) {
    model_->setPeers(peers);
    const int height = std::min(static_cast<int>(peers.size()), mostRowsInView) * rowHeight;
    if (height != minimumHeight()) {
        setFixedHeight(height);
    }
}

bool PeerList::event(QEvent* event) {
    // These keys scroll the list and not the page while the list has the focus.
    if (event->type() == QEvent::ShortcutOverride &&
        isPageScrollKey(static_cast<QKeyEvent*>(event)->key())) {
        event->accept();
        return true;
    }
    return QListView::event(event);
}

void PeerList::changeEvent(QEvent* event) {
    QListView::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        applyTheme();
    }
}

void PeerList::applyTheme() {
    const CrestTheme& theme = CrestTheme::current();
    QPalette colors = palette();
    if (colors.color(QPalette::Base) != theme.cardBackground) {
        colors.setColor(QPalette::Base, theme.cardBackground);
        setPalette(colors);
    }
}

}  // namespace tallowcrest
