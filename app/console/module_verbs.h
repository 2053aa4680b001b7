// Verbs that modules bring: each works on the drawing that is current.
#pragma once

#include "host/aced/edverbs.h"

namespace console
{

/// Runs the verb on each file in turn; the exit status is the worst one. Without `--json` each file's result
/// stands below its name when there are several. Several files and an option that names one FILE are refused;
/// so is an OUT that may not be written. Nothing is written for all files together when one of them is
/// trouble.
int runModuleVerb(const AcEdVerb &verb, const QStringList &files, const AcEdVerbCall &call);

} // namespace console
