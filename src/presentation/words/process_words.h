#pragma once

#include <QString>
#include <QStringList>

#include "core/local_records.h"

namespace tallowcrest {

struct ProcessDetail;

/// The texts that tell a process from others with its name. `detail` is null when it is not known.
/// Main thread.
namespace process_words {

/// What stands between the items of a note.
QString separator();

/// What a row shows behind the name: "812 · root · server.py": the PID, the user if it is another
/// one, and the argument that tells most.
QString note(const ProcessSample& row, const ProcessDetail* detail);

/// The same for assistive technology: "PID 812", "root", "server.py".
QStringList spoken(const ProcessSample& row, const ProcessDetail* detail);

/// The whole command line, as far as it is read; the command while it is not known.
QString commandLine(const ProcessSample& row, const ProcessDetail* detail);

/// What is announced when the owner puts the row under review: "Under review: NAME".
QString underReview(const ProcessSample& row);

/// The text of a row's tool tip: PID and user, the command, and the whole command line.
QString toolTip(const ProcessSample& row, const ProcessDetail* detail);

}  // namespace process_words

}  // namespace tallowcrest
