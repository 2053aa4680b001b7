// "run": a script of commands on each file.
#pragma once

#include "app/console/documents.h"
#include "app/console/output_paths.h"
#include "app/console/script_front_end.h"

namespace console
{

struct RunOptions {
    QString script; ///< Path, or "-" for standard input.
    QStringList files;
    QString output; ///< Empty: nothing is saved but by the script itself.
    Overwrite overwrite = Overwrite::no;
    double autosave = -1.0; ///< Seconds between a change and its recovery copy; below 0: none are kept.
    ScriptFrontEnd::Echo echo = ScriptFrontEnd::Echo::off;
};

/// The exit status. One file's failure does not keep the others from their turn.
int runScript(const RunOptions &options);

} // namespace console
