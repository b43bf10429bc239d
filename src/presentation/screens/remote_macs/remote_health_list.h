#pragma once

#include <string>
#include <vector>

#include <QWidget>

#include "presentation/screens/remote_macs/remote_health_lines.h"
#include "remote/remote_profiles.h"

class QVBoxLayout;

namespace tallowcrest {

class RemoteHealthBlock;

/// A block for each machine of the last scan. A machine keeps its block, and the owner what is
/// being typed there, for as long as the scans list it. Each signal comes with the machine as its
/// block shows it. Main thread.
class RemoteHealthList final : public QWidget {
    Q_OBJECT

public:
    explicit RemoteHealthList(QWidget* parent = nullptr);

    /// Hidden without machines.
    void show(std::vector<RemoteHealthFacts> facts);

    /// In the order of the machines.
    std::vector<QWidget*> blocks() const;
    /// Null when no machine has that record.
    QWidget* block(const std::string& id) const;

signals:
    void profileChanged(const RemoteHealth& machine, const RemoteProfileChange& change);
    void operationWanted(const RemoteHealth& machine, RemoteOperation operation);
    void processCopyWanted(const RemoteHealth& machine, const RemoteProcess& process);
    void processQuitWanted(const RemoteHealth& machine, const RemoteProcess& process);
    void appCopyWanted(const RemoteHealth& machine, const RemoteAppImpact& app);
    void neverQuitWanted(const RemoteAppImpact& app);
    /// The owner opened or closed the details in the block.
    void blockResized(QWidget* block);

private:
    struct Entry {
        RemoteHealthBlock* block;
        RemoteHealthFacts facts;  ///< as the block shows them
    };

    RemoteHealthBlock* makeBlock();
    /// Takes the block of the machine out of `entries_`, or makes one.
    RemoteHealthBlock* takeBlock(const std::string& id);
    /// A copy: the receiver of a signal may have other facts shown.
    RemoteHealth machineOf(const RemoteHealthBlock* block) const;

    QVBoxLayout* column_ = nullptr;
    std::vector<Entry> entries_;
    int blocksMade_ = 0;  ///< ever, for their object names
};

}  // namespace tallowcrest
