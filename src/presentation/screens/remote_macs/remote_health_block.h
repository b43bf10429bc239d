#pragma once

#include <optional>

#include "presentation/screens/remote_macs/remote_health_lines.h"
#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/card.h"
#include "remote/remote_profiles.h"

namespace tallowcrest {

class ElidedLabel;
class RemoteHealthHead;
class RemoteProfileEditor;
class RemoteRows;
class RemoteToolRow;

/// What the last scan found of one machine, what can be done for it, and its profile. Only the head
/// is always visible; the details below it are built when they are opened for the first time. They
/// open by themselves for a machine that needs attention and for the one under inspection, until
/// the owner opens or closes them. Main thread.
class RemoteHealthBlock final : public Card, public AccessibleFigure {
    Q_OBJECT

public:
    /// The object names of the block and its parts begin with `identifier`.
    explicit RemoteHealthBlock(const QString& identifier, QWidget* parent = nullptr);

    /// Shows new facts about the same machine, or its figures' new age. Rows keep their controls,
    /// and with them the focus, for as long as what they stand for is listed.
    void show(const RemoteHealthFacts& facts);

    /// As of the last `show`.
    const RemoteHealth& machine() const { return facts_->machine; }
    bool isExpanded() const;
    /// Puts the controls of the block behind `before` in the order of the tab key. Returns the last
    /// one.
    QWidget* chainTabs(QWidget* before);

    QAccessible::Role accessibleRole() const override { return QAccessible::Grouping; }
    /// Empty: the children describe themselves.
    QString accessibleValue() const override { return {}; }

signals:
    // Each comes with the machine as the block shows it.

    /// The owner changed one field of the profile; texts come at each change, as they were typed.
    void profileChanged(const RemoteHealth& machine, const RemoteProfileChange& change);
    void operationWanted(const RemoteHealth& machine, RemoteOperation operation);
    void processCopyWanted(const RemoteHealth& machine, const RemoteProcess& process);
    void processQuitWanted(const RemoteHealth& machine, const RemoteProcess& process);
    void appCopyWanted(const RemoteHealth& machine, const RemoteAppImpact& app);
    /// The owner asked to put the group on the Never Quit list, or to take it off. The switch stays
    /// as it is until `show`.
    void neverQuitWanted(const RemoteAppImpact& app);
    /// The owner opened or closed the details.
    void expandedChanged(bool isExpanded);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void setExpanded(bool expanded);
    void makeDetails();
    QWidget* makeFacts();
    QWidget* makeRows();
    void showDetails();

    std::optional<RemoteHealthFacts> facts_;
    bool isChosen_ = false;  ///< the owner opened or closed the details
    RemoteHealthHead* head_ = nullptr;
    QWidget* details_ = nullptr;  ///< null until they are opened; so is what follows
    ElidedLabel* profile_ = nullptr;
    ElidedLabel* system_ = nullptr;
    ElidedLabel* topCPU_ = nullptr;
    ElidedLabel* topMemory_ = nullptr;
    ElidedLabel* recommendation_ = nullptr;
    ElidedLabel* setupHint_ = nullptr;
    ElidedLabel* result_ = nullptr;
    RemoteProfileEditor* editor_ = nullptr;
    QWidget* lists_ = nullptr;  ///< the two that follow
    RemoteRows* processes_ = nullptr;
    RemoteRows* apps_ = nullptr;
    RemoteToolRow* tools_ = nullptr;
};

}  // namespace tallowcrest
