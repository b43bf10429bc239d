#pragma once

#include <QAbstractButton>
#include <QString>

#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/theme.h"

namespace tallowcrest {

/// The header of a collapsible section: a chevron for its state, an icon, a title and, at the
/// right, a short note for the collapsed section. The whole row is one button; Return and Space
/// toggle the state, the right arrow expands and the left one collapses. To assistive technology it
/// is a button that is expanded or collapsed. Main thread.
class SectionHeader final : public QAbstractButton, public AccessibleButton {
    Q_OBJECT

public:
    SectionHeader(const QString& icon, const QString& title, QWidget* parent = nullptr);

    /// Only shows the state; the owner calls this in answer to `collapseWanted`.
    void setExpanded(bool expanded);
    bool isExpanded() const { return isExpanded_; }

    void setNote(const QString& note, const ThemeColor& color = &CrestTheme::secondaryText);
    const QString& note() const { return note_; }

    QAccessible::Role accessibleRole() const override { return QAccessible::Button; }
    void addAccessibleState(QAccessible::State& state) const override;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    void collapseWanted(bool collapsed);

protected:
    void enterEvent(QEnterEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void describe();

    QString icon_;
    QString note_;
    ThemeColor noteColor_ = &CrestTheme::secondaryText;
    bool isExpanded_ = true;
    bool hasRing_ = false;
};

}  // namespace tallowcrest
