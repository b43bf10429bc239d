#pragma once

#include "presentation/screens/remote_macs/remote_health_lines.h"
#include "presentation/widgets/collapse_button.h"

namespace tallowcrest {

/// The head of a machine's block: its name, status, load and how old they are, on one line or, in
/// a narrow block, on two. Painted as a whole, because a page may have many. Main thread.
class RemoteHealthHead final : public CollapseButton {
    Q_OBJECT

public:
    explicit RemoteHealthHead(QWidget* parent = nullptr);

    void show(const remote_health_lines::Head& head);
    const remote_health_lines::Head& shown() const { return shown_; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void describe() override;
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    struct Places {
        QRect name, host, status, cpu, memory, age;
    };
    Places places() const;
    bool isNameElided() const;

    remote_health_lines::Head shown_;
};

}  // namespace tallowcrest
