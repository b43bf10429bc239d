#pragma once

#include <QString>
#include <QWidget>

class QHBoxLayout;
class QVBoxLayout;

namespace tallowcrest {

class ElidedLabel;
class IconView;

/// A rounded area with a hairline border that groups related content. Its header is optional. Main
/// thread.
class Card : public QWidget {
    Q_OBJECT

public:
    explicit Card(QWidget* parent = nullptr);

    /// Shows `heading` at the top, with the line icon `icon` unless that is empty. The heading is
    /// the card's accessible name.
    void setHeader(const QString& icon, const QString& heading);
    /// A secondary line below the heading; an empty text removes it.
    void setCaption(const QString& caption);
    /// Removes border and padding, for a card within the card of a section.
    void setFrameless();
    /// Reserves the width of `pattern` with any digits, for a caption with figures.
    void reserveCaption(const QString& pattern);

    /// The header row, where a card may add controls at the right.
    QHBoxLayout* headerLayout();
    /// The layout of the card's content, below the header.
    QVBoxLayout* contentLayout() { return content_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    ElidedLabel* caption();

    bool isFrameless_ = false;
    QVBoxLayout* outer_ = nullptr;
    QVBoxLayout* content_ = nullptr;
    QHBoxLayout* header_ = nullptr;
    IconView* icon_ = nullptr;
    ElidedLabel* heading_ = nullptr;
    ElidedLabel* caption_ = nullptr;
};

}  // namespace tallowcrest
