#include "host/os/shell.h"

#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QUrl>

namespace os
{

namespace
{
struct Shell {
    bool enabled = true;
    std::function<void(const ShellRequest &)> recorder;
};
} // namespace

static Shell &shell()
{
    static Shell state;
    return state;
}

/// What can be said without starting anything; `started` means that nothing stands against it.
static ShellStatus admit(const ShellRequest &request)
{
    if (shell().recorder) {
        shell().recorder(request);
        return ShellStatus::started;
    }
    return shell().enabled ? ShellStatus::started : ShellStatus::disabled;
}

static bool hasDisplay()
{
    return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

static ShellStatus start(const QString &program, const QStringList &arguments, const QString &workingFolder)
{
    const QString found = program.contains(u'/') ? program : QStandardPaths::findExecutable(program);
    if (found.isEmpty() || !QFileInfo(found).isFile())
        return ShellStatus::notFound;
    if (!workingFolder.isEmpty() && !QFileInfo(workingFolder).isDir())
        return ShellStatus::notFound;
    return QProcess::startDetached(found, arguments, workingFolder) ? ShellStatus::started
                                                                    : ShellStatus::failed;
}

/// "C:\..." has a scheme of one letter; addresses have longer ones.
static bool isAddress(const QString &target)
{
    return QUrl(target).scheme().size() > 1;
}

ShellStatus shellOpen(const QString &pathOrUrl)
{
    const ShellRequest request{pathOrUrl, {}, {}, false};
    if (shell().recorder || !shell().enabled)
        return admit(request);
    if (!hasDisplay())
        return ShellStatus::noDesktop;
    if (!isAddress(pathOrUrl) && !QFileInfo::exists(pathOrUrl))
        return ShellStatus::notFound;
    // An absolute path cannot be taken for an option.
    const QString target = isAddress(pathOrUrl) ? pathOrUrl : QFileInfo(pathOrUrl).absoluteFilePath();
    return start(QStringLiteral("xdg-open"), {target}, {});
}

ShellStatus startProgram(const QString &program, const QStringList &arguments, const QString &workingFolder)
{
    const ShellStatus admitted = admit({program, arguments, workingFolder, true});
    if (shell().recorder || admitted != ShellStatus::started)
        return admitted;
    return start(program, arguments, workingFolder);
}

void setShellEnabled(bool enabled)
{
    shell().enabled = enabled;
}

void setShellRecorder(std::function<void(const ShellRequest &)> recorder)
{
    shell().recorder = std::move(recorder);
}

} // namespace os
