// Which program wrote something down, and whether it still runs.
#pragma once

#include <QString>

/// A process of a computer. Its start tells it from a later one that got the same number.
struct AcApProcess {
    QString host;
    qint64 pid = 0;
    quint64 start = 0; ///< Clock ticks since the computer started; 0 when unknown.

    friend bool operator==(const AcApProcess &, const AcApProcess &) = default;
};

const AcApProcess &acapThisProcess();
/// True when it is known not to run any more. Nothing is known of other computers.
bool acapIsGone(const AcApProcess &process);
