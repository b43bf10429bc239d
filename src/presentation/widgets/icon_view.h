#pragma once

#include <QString>
#include <QWidget>

#include "presentation/widgets/theme.h"

namespace tallowcrest {

/// A line icon beside a text that says the same; it therefore has no accessible name. An unknown
/// icon leaves its place empty. Main thread.
class IconView : public QWidget {
    Q_OBJECT

public:
    explicit IconView(const QString& icon, const ThemeColor& color = &CrestTheme::text,
                      int size = spacing::iconRegular, QWidget* parent = nullptr);

    void setIcon(const QString& icon);
    const QString& icon() const { return icon_; }
    void setColor(const ThemeColor& color);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString icon_;
    ThemeColor color_;
};

}  // namespace tallowcrest
