#pragma once

#include <vector>

#include <QStringList>
#include <QWidget>

namespace tallowcrest {

class ElidedLabel;

/// A few figures side by side on a card, each below its name. The columns keep their place whatever
/// the figures are. Main thread.
class FigureRow final : public QWidget {
    Q_OBJECT

public:
    /// One column for each of `names`.
    explicit FigureRow(const QStringList& names, QWidget* parent = nullptr);

    /// As many figures as there are names.
    void setFigures(const QStringList& figures);

private:
    std::vector<ElidedLabel*> figures_;
};

}  // namespace tallowcrest
