// The program: sets up the application and the host, loads the modules, runs what the command line asks for.
#include "app/console/command_line.h"
#include "app/console/console_front_end.h"
#include "app/console/modules.h"
#include "app/window/window_run.h"
#include "host/aced/hostcommands.h"
#include "host/acgi/query/install.h"
#include "host/acrx/rxmodule.h"
#include "host/acui/acuiinstall.h"
#include "host/base/terminal_text.h"
#include "host/os/shell.h"

#include <QApplication>

static QtMessageHandler &qtHandler()
{
    static QtMessageHandler handler = nullptr;
    return handler;
}

/// Qt remarks on everything that a session without a desktop lacks; nobody can do anything about it.
static void passMessage(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    if (!text.startsWith(QLatin1String("This plugin does not support")) &&
        !text.startsWith(QLatin1String("QStandardPaths: XDG_RUNTIME_DIR")))
        qtHandler()(type, context, base::terminalText(text));
}

static bool hasDisplay()
{
    for (const char *variable : {"QT_QPA_PLATFORM", "WAYLAND_DISPLAY", "DISPLAY"}) {
        if (!qEnvironmentVariableIsEmpty(variable))
            return true;
    }
    return false;
}

int main(int argc, char **argv)
{
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    const bool inWindow = hasDisplay() && console::asksForWindow(arguments);
    // Nothing else needs a display: pictures and dialogs of a console run live in memory.
    if (!inWindow && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    qtHandler() = qInstallMessageHandler(passMessage);
    int applicationArguments = 1; // The options are ours, not Qt's.
    const QApplication application(applicationArguments, argv);
    QApplication::setApplicationName(QStringLiteral("Quillnote"));
    QApplication::setQuitOnLastWindowClosed(false);

    console::ConsoleFrontEnd frontEnd;
    acedSetFrontEnd(&frontEnd);
    os::setShellEnabled(inWindow);
    acedRegisterHostCommands();
    acgi::install();
    acuiInstall();
    const auto loadModules = [&arguments] {
        if (!console::runsWithoutModules(arguments))
            console::loadModules();
    };

    int status = 0;
    if (inWindow) {
        status = window::run(console::filesOf(arguments), loadModules);
    } else {
        loadModules(); // Their verbs belong to the command line.
        status = console::runCommandLine(arguments);
    }

    acrxDynamicLinker()->unloadAll();
    console::endMessageLine();
    acuiUninstall();
    acedSetFrontEnd(nullptr);
    return status;
}
