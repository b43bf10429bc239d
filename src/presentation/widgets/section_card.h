#pragma once

#include <QString>

#include "presentation/widgets/accessible_figure.h"
#include "presentation/widgets/card.h"
#include "presentation/widgets/section_header.h"

namespace tallowcrest {

/// A card that can be closed down to its header and its caption. What it holds stands in `body`,
/// which is hidden while it is closed. To assistive technology it is a group. Main thread.
class SectionCard : public Card, public AccessibleFigure {
    Q_OBJECT

public:
    /// What lies around the content while the section is open: the card's own ground and border,
    /// or nothing, for content that is made of cards itself.
    enum class Frame { card, none };

    SectionCard(const QString& icon, const QString& title, Frame frame = Frame::card,
                QWidget* parent = nullptr);

    SectionHeader* header() const { return header_; }
    QWidget* body() const { return body_; }
    /// The layout of `body`.
    QVBoxLayout* bodyLayout() const { return bodyLayout_; }

    /// One quiet line below the header, also while the section is closed; empty takes it away.
    void setSectionCaption(const QString& caption);
    /// Keeps room for `pattern` with any digits.
    void reserveSectionCaption(const QString& pattern);

    void setCollapsed(bool collapsed);
    bool isCollapsed() const { return !header_->isExpanded(); }

    QAccessible::Role accessibleRole() const override { return QAccessible::Grouping; }
    /// What it holds speaks for itself.
    QString accessibleValue() const override { return {}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    ElidedLabel* caption();
    void fitMargins();

    Frame frame_;
    SectionHeader* header_ = nullptr;
    QVBoxLayout* below_ = nullptr;
    ElidedLabel* caption_ = nullptr;
    QWidget* body_ = nullptr;
    QVBoxLayout* bodyLayout_ = nullptr;
};

}  // namespace tallowcrest
