#pragma once

#include "core/routes.h"
#include "presentation/widgets/section_card.h"
#include "presentation/words/dashboard_text.h"

namespace tallowcrest {

/// A section of the dashboard that can be collapsed. The page first sets whether it is collapsed
/// and then gives it the state to show. While collapsed it updates only its caption and the note in
/// its header. Main thread.
class OverviewBlock : public SectionCard {
    Q_OBJECT

public:
    /// `identifier` is the object name of the card. That of the header, which collapses and expands
    /// it, is "section." followed by the raw value of `section`.
    OverviewBlock(DashboardSection section, const QString& identifier, const QString& icon,
                  const QString& title)
        : SectionCard(icon, title), section_(section) {
        setObjectName(identifier);
        using namespace Qt::StringLiterals;
        header()->setObjectName(u"section."_s + dashboard_text::text(rawValue(section)));
        connect(header(), &SectionHeader::collapseWanted, this, &OverviewBlock::collapseWanted);
    }

    DashboardSection section() const { return section_; }

signals:
    /// The owner asked to collapse or expand the section. It stays as it is until `setCollapsed`.
    void collapseWanted(bool collapsed);

private:
    DashboardSection section_;
};

}  // namespace tallowcrest
