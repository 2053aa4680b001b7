// Handing files to the desktop and starting other programs.
#pragma once

#include <QString>
#include <QStringList>

#include <functional>

namespace os
{

enum class ShellStatus {
    started,
    noDesktop, ///< No display to open anything on; nothing was started.
    disabled,  ///< Switched off with setShellEnabled(false); nothing was started.
    notFound,  ///< The file, the program or the desktop's opener is not there.
    failed,    ///< The system refused to start the program.
};

struct ShellRequest {
    QString target;        ///< File, address or program.
    QStringList arguments; ///< Only for programs.
    QString workingFolder; ///< Only for programs; empty is the current one.
    bool isProgram = false;

    friend bool operator==(const ShellRequest &, const ShellRequest &) = default;
};

/// Opens a file, a folder or an address ("https://...") with the program that the user's desktop has
/// for it. Does not wait.
ShellStatus shellOpen(const QString &pathOrUrl);

/// Starts a program by path or by its name on the search path. Does not wait.
ShellStatus startProgram(const QString &program, const QStringList &arguments = {},
                         const QString &workingFolder = {});

/// Console runs switch the shell off.
void setShellEnabled(bool enabled);

/// While a recorder is set it receives the requests, nothing starts, and callers are told `started`.
/// An empty function ends the recording.
void setShellRecorder(std::function<void(const ShellRequest &)> recorder);

} // namespace os
