#pragma once

#include "core/routes.h"
#include "presentation/widgets/section_card.h"
#include "presentation/words/dashboard_text.h"

namespace tallowcrest {

/// One part of the overview. The page tells it whether the owner has closed it, and then what to
/// show. While it is closed it updates only its caption and the note of its header.
/// Main thread.
class OverviewBlock : public SectionCard {
    Q_OBJECT

public:
    /// `identifier` is the card's own; the header, which closes and opens it, is "section." and the
    /// raw value of `section`.
    OverviewBlock(DashboardSection section, const QString& identifier, const QString& icon,
                  const QString& title, Frame frame = Frame::card)
        : SectionCard(icon, title, frame), section_(section) {
        setObjectName(identifier);
        header()->setObjectName(QStringLiteral("section.") +
                                dashboard_text::text(rawValue(section)));
        connect(header(), &SectionHeader::collapseWanted, this, &OverviewBlock::collapseWanted);
    }

    DashboardSection section() const { return section_; }

signals:
    /// The owner wants it closed or open.
    void collapseWanted(bool collapsed);

private:
    DashboardSection section_;
};

}  // namespace tallowcrest
