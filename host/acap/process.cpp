#include "host/acap/process.h"

#include <QFile>
#include <QSysInfo>

#include <cerrno>
#include <csignal>
#include <unistd.h>

/// 0 when there is no such process, or no way to tell.
static quint64 startOf(qint64 pid)
{
    QFile file(QStringLiteral("/proc/%1/stat").arg(pid));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    // The program's name stands in brackets and may hold anything; the start is field 22.
    const QByteArray line = file.readAll();
    const QList<QByteArray> fields = line.mid(line.lastIndexOf(')') + 2).split(' ');
    constexpr qsizetype kStart = 22 - 3;
    return fields.value(kStart).toULongLong();
}

const AcApProcess &acapThisProcess()
{
    static const AcApProcess process{QSysInfo::machineHostName(), ::getpid(), startOf(::getpid())};
    return process;
}

bool acapIsGone(const AcApProcess &process)
{
    if (process.host != acapThisProcess().host || process.pid <= 0)
        return false;
    if (::kill(pid_t(process.pid), 0) != 0)
        return errno == ESRCH;
    const quint64 start = startOf(process.pid);
    return start != 0 && process.start != 0 && start != process.start;
}
