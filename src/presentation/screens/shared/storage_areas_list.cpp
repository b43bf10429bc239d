#include "presentation/screens/shared/storage_areas_list.h"

#include <QGridLayout>
#include <QVBoxLayout>

#include "presentation/screens/shared/list_rows.h"
#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/level_bar.h"
#include "presentation/widgets/text_button.h"
#include "presentation/widgets/text_lines.h"
#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

StorageAreaRow::StorageAreaRow(const QString& identifier, bool canReveal, QWidget* parent)
    : QWidget(parent) {
    setObjectName(identifier);
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(0, spacing::unit / 2, 0, spacing::unit / 2);
    grid->setHorizontalSpacing(spacing::gap);
    grid->setVerticalSpacing(spacing::unit / 2);
    name_ = makeLabel(identifier + u".name"_s, onCard(&CrestFonts::body), 1, this);
    size_ = makeLabel(identifier + u".size"_s, onCard(&CrestFonts::body), 1, this);
    size_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    size_->setReservedText(u"0000.0 GB"_s);
    size_->setUnitColor(&CrestTheme::secondaryText);
    bar_ = new LevelBar(this);
    explanation_ = makeLabel(identifier + u".path"_s,
                             onCard(&CrestFonts::caption, &CrestTheme::secondaryText), 3, this);
    explanation_->setElideMode(Qt::ElideMiddle);
    grid->addWidget(name_, 0, 0);
    grid->addWidget(size_, 0, 1);
    grid->addWidget(bar_, 1, 0, 1, 3);
    grid->addWidget(explanation_, 2, 0, 1, 3);
    grid->setColumnStretch(0, 1);
    if (canReveal) {
        reveal_ = new TextButton(identifier + u".reveal"_s, &CrestTheme::accentText, this);
        reveal_->setText(u"Reveal"_s);
        setSpokenDescription(*reveal_, u"Shows it in the file manager"_s);
        grid->addWidget(reveal_, 0, 2);
        connect(reveal_, &TextButton::clicked, this, &StorageAreaRow::revealWanted);
    }
}

void StorageAreaRow::setLine(const StorageLine& line) {
    name_->setText(line.name);
    size_->setText(line.size);
    bar_->setLevel(line.percent, &CrestTheme::accent);
    explanation_->setText(line.explanation);
    if (reveal_ != nullptr) {
        setSpokenName(*reveal_, u"Reveal "_s + line.name);
        reveal_->setToolTip(toolTipText(line.explanation));
    }
}

QWidget* StorageAreaRow::lastControl() const {
    return reveal_;
}

StorageAreasList::StorageAreasList(const QString& identifier, bool canReveal, const QString& note,
                                   QWidget* parent)
    : QWidget(parent), identifier_(identifier), canReveal_(canReveal) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, spacing::unit, 0, 0);
    layout->setSpacing(spacing::unit);
    const auto addLabel = [&](const char* part, const LabelStyle& style, int lines) {
        auto* label = makeLabel(identifier + QString::fromLatin1(part), style, lines, this);
        layout->addWidget(label);
        return label;
    };
    addLabel("-heading", onCard(&CrestFonts::heading), 2)
        ->setText(u"Largest Measured Storage Areas"_s);
    list_ = new QVBoxLayout;
    list_->setSpacing(0);
    layout->addLayout(list_);
    const auto quiet = onCard(&CrestFonts::caption, &CrestTheme::secondaryText);
    addLabel("-hint", quiet, 5)
        ->setText(
            u"Choose Find Offenders to rank large user storage areas. The scan is read-only and "
            "does not make those folders eligible for automatic cleanup."_s);
    addLabel("-note", quiet, 5)->setText(note);
}

void StorageAreasList::addRow() {
    const std::size_t index = rows_.size();
    auto* row = new StorageAreaRow(identifier_ + u"-%1"_s.arg(index + 1), canReveal_, this);
    connect(row, &StorageAreaRow::revealWanted, this,
            [this, index] { emit revealWanted(DiskStorageOffender(shown_.at(index))); });
    list_->addWidget(row);
    // A new control would come after all others of the window.
    QWidget* const before = rows_.empty() ? previous_ : rows_.back()->lastControl();
    if (before != nullptr && canReveal_) {
        setTabOrder(before, row->lastControl());
    }
    rows_.push_back(row);
}

void StorageAreasList::show(const std::vector<DiskStorageOffender>& areas) {
    if (areas == shown_) {
        return;
    }
    shown_ = areas;
    showLines(rows_, storageLines(shown_), [this] { addRow(); });
}

}  // namespace tallowcrest
