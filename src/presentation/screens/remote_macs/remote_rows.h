#pragma once

#include <vector>

#include <QString>
#include <QWidget>

#include "presentation/screens/remote_macs/remote_health_lines.h"

class QTimer;
class QVBoxLayout;

namespace tallowcrest {

class ElidedLabel;
class RemoteRow;

/// The processes or the app groups of one machine, a row each with two buttons. A row keeps its
/// controls for as long as what it stands for is listed, wherever that is. When a row with the
/// focus goes, the focus proxy of the list gets it. When rows have come, gone or moved, presses of
/// the mouse are ignored for a moment: what is below the pointer may not be what it was. Main
/// thread.
class RemoteRows final : public QWidget {
    Q_OBJECT

public:
    /// The button beside "Copy".
    enum class Action { quit, neverQuit };

    /// The object names of the buttons begin with `identifier`.
    RemoteRows(const QString& title, Action action, const QString& identifier,
               QWidget* parent = nullptr);

    /// Without rows it shows `noRows`, or hides itself if that is empty, too. Returns whether the
    /// controls or their order have changed.
    bool show(const std::vector<remote_health_lines::Row>& rows, const QString& noRows);

    /// The buttons, in the order of the tab key.
    std::vector<QWidget*> controls() const;

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

signals:
    /// `row` is an index in the rows of the last `show`.
    void copyWanted(std::size_t row);
    void actionWanted(std::size_t row);

private:
    RemoteRow* makeRow(const remote_health_lines::Row& row);
    std::size_t indexOf(const RemoteRow& row) const;

    Action action_;
    QString identifier_;
    std::vector<RemoteRow*> rows_;
    ElidedLabel* noRows_ = nullptr;
    QVBoxLayout* column_ = nullptr;
    QTimer* pause_ = nullptr;  ///< active while presses are ignored
    bool isFirst_ = true;      ///< before the first `show`
};

}  // namespace tallowcrest
