// Why a DXF drawing could not be read or written.
#pragma once

#include "host/base/host_text.h"

#include <QString>

struct DxfError {
    QString file;
    /// Line, from 1; in binary files the byte offset; -1 when the whole file is meant.
    qint64 line = -1;
    QString reason; ///< One English sentence without a full stop.
    bool inBinary = false;

    /// "plan.dxf, line 12: there is no section".
    QString text() const
    {
        const QString where = inBinary ? Host::tr("%1, byte %2") : Host::tr("%1, line %2");
        const QString place = line < 0 ? file : where.arg(file).arg(line);
        return place.isEmpty() ? reason : place + QStringLiteral(": ") + reason;
    }
};
