#include "host/acap/process.h"

#include <QFile>
#include <QSysInfo>

#include <cerrno>
#include <csignal>
#include <unistd.h>

namespace
{

struct ProcessState {
    char state = '?';  ///< As ps shows it; '?' when there is no such process, or no way to tell.
    quint64 start = 0; ///< 0 likewise.
};

} // namespace

static ProcessState stateOf(qint64 pid)
{
    QFile file(QStringLiteral("/proc/%1/stat").arg(pid));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    // The program's name stands in brackets and may hold anything; its state is field 3, its start field 22.
    const QByteArray line = file.readAll();
    const QList<QByteArray> fields = line.mid(line.lastIndexOf(')') + 2).split(' ');
    constexpr qsizetype kStart = 22 - 3;
    return {fields.value(0).isEmpty() ? '?' : fields.value(0)[0], fields.value(kStart).toULongLong()};
}

const AcApProcess &acapThisProcess()
{
    static const AcApProcess process{QSysInfo::machineHostName(), ::getpid(), stateOf(::getpid()).start};
    return process;
}

bool acapIsGone(const AcApProcess &process)
{
    if (process.host != acapThisProcess().host || process.pid <= 0)
        return false;
    if (::kill(pid_t(process.pid), 0) != 0)
        return errno == ESRCH;
    // One that was killed keeps its number until its parent has taken notice.
    const ProcessState present = stateOf(process.pid);
    if (present.state == 'Z' || present.state == 'X')
        return true;
    return present.start != 0 && process.start != 0 && present.start != process.start;
}
