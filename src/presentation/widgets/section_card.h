#pragma once

#include <QString>

#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/card.h"
#include "presentation/widgets/section_header.h"

namespace tallowcrest {

/// A card that collapses to its header and its caption. Its content belongs into `body`, which is
/// hidden while the card is collapsed. To assistive technology it is a group. Main thread.
class SectionCard : public Card, public AccessibleFigure {
    Q_OBJECT

public:
    SectionCard(const QString& icon, const QString& title, QWidget* parent = nullptr);

    SectionHeader* header() const { return header_; }
    QWidget* body() const { return body_; }
    /// The layout of `body`.
    QVBoxLayout* bodyLayout() const { return bodyLayout_; }

    /// A secondary line below the header, also while collapsed; an empty text removes it.
    void setSectionCaption(const QString& caption);
    /// Reserves the width of `pattern` with any digits.
    void reserveSectionCaption(const QString& pattern);

    void setCollapsed(bool collapsed);
    bool isCollapsed() const { return !header_->isExpanded(); }

    QAccessible::Role accessibleRole() const override { return QAccessible::Grouping; }
    /// Empty: the children describe themselves.
    QString accessibleValue() const override { return {}; }

private:
    ElidedLabel* caption();
    void fitMargins();

    SectionHeader* header_ = nullptr;
    QVBoxLayout* below_ = nullptr;
    ElidedLabel* caption_ = nullptr;
    QWidget* body_ = nullptr;
    QVBoxLayout* bodyLayout_ = nullptr;
};

}  // namespace tallowcrest
