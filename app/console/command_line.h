// The command line: which verbs there are, what they take, and running the one that was named.
#pragma once

#include <QStringList>

#include <string>
#include <vector>

namespace console
{

/// True when the verb that the arguments name works without modules, or they say so ("--no-module").
bool runsWithoutModules(const std::vector<std::string> &arguments);

/// True when the arguments name no verb and no option but "--no-module": only drawings, or nothing.
bool asksForWindow(const std::vector<std::string> &arguments);
/// The drawings among such arguments.
QStringList filesOf(const std::vector<std::string> &arguments);

/// Parses the arguments (without the program's name) and runs what they ask for. The verbs of modules count,
/// so modules are loaded before. Help and version go to standard output, complaints to standard error. The
/// exit status.
int runCommandLine(const std::vector<std::string> &arguments);

} // namespace console
