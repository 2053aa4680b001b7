#include "app/console/module_verbs.h"

#include "app/console/console_front_end.h"
#include "app/console/documents.h"

#include <algorithm>

namespace console
{

static int runOnFile(const AcEdVerb &verb, const QString &file, const AcEdVerbCall &call, bool titled)
{
    const OpenDrawing drawing(file);
    if (!drawing.document())
        return kTrouble;
    endMessageLine();
    if (titled)
        acedPrintResult(file + QStringLiteral(":\n"));
    return std::clamp(verb.run(call), int(kDone), int(kTrouble));
}

int runModuleVerb(const AcEdVerb &verb, const QStringList &files, const AcEdVerbCall &call)
{
    int status = kDone;
    for (const QString &file : files)
        status = std::max(status, runOnFile(verb, file, call, files.size() > 1 && !call.json));
    return status;
}

} // namespace console
