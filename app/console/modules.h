// Loading the modules that the program works with.
#pragma once

#include <QString>

namespace console
{

/// The review module: in ../lib beside the program's own folder.
QString reviewModulePath();

/// Loads the review module, then those that left a record that asks for it at start-up. What cannot be
/// loaded is told in a line each; the program goes on without.
void loadModules();

} // namespace console
