#pragma once

#include <QString>

#include "presentation/widgets/collapse_button.h"
#include "presentation/widgets/theme.h"

namespace tallowcrest {

/// The header of a collapsible section: a chevron, an icon, a title and, at the right, a short note
/// for the collapsed section. Main thread.
class SectionHeader final : public CollapseButton {
    Q_OBJECT

public:
    SectionHeader(const QString& icon, const QString& title, QWidget* parent = nullptr);

    void setNote(const QString& note, const ThemeColor& color = &CrestTheme::secondaryText);
    const QString& note() const { return note_; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void describe() override;
    void paintEvent(QPaintEvent* event) override;

private:
    QString icon_;
    QString note_;
    ThemeColor noteColor_ = &CrestTheme::secondaryText;
};

}  // namespace tallowcrest
