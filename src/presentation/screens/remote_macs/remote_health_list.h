#pragma once

#include <string>
#include <vector>

#include <QWidget>

#include "presentation/screens/remote_macs/remote_health_lines.h"
#include "remote/remote_profiles.h"

class QVBoxLayout;

namespace tallowcrest {

class RemoteHealthBlock;

/// A block for each machine of the last scan. A machine keeps its block, and with it the text being
/// typed there, for as long as the scans list it. The signals are those of the blocks. Main thread.
class RemoteHealthList final : public QWidget {
    Q_OBJECT

public:
    explicit RemoteHealthList(QWidget* parent = nullptr);

    /// Hidden without machines.
    void show(const std::vector<RemoteHealthFacts>& facts);

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
    RemoteHealthBlock* makeBlock();
    void arrange();

    QVBoxLayout* column_ = nullptr;
    std::vector<RemoteHealthBlock*> blocks_;
    int blocksMade_ = 0;  ///< ever, for their object names
};

}  // namespace tallowcrest
