#include "host/aced/edshell.h"

#include "host/aced/edfrontend.h"
#include "host/base/host_text.h"
#include "host/os/shell.h"

static void tellUnless(os::ShellStatus status, const QString &target)
{
    if (status != os::ShellStatus::started)
        acutPrintf(Host::tr("\n请打开：%1").arg(target));
}

void acedOpenWithDesktop(const QString &target)
{
    tellUnless(os::shellOpen(target), target);
}

void acedOpenWithProgram(const QString &program, const QString &file)
{
    tellUnless(os::startProgram(program, {file}), file);
}
