#include "app/console/module_verbs.h"

#include "app/console/console_front_end.h"
#include "app/console/documents.h"
#include "app/console/output_paths.h"

#include <algorithm>

namespace console
{

static const QString kOutputOption = QStringLiteral("-o");
static const QString kOverwriteOption = QStringLiteral("-f");

static Overwrite overwriteOf(const AcEdVerbCall &call)
{
    return call.has(kOverwriteOption) ? Overwrite::yes : Overwrite::no;
}

static int runOnFile(const AcEdVerb &verb, const QString &file, const QString &target,
                     const AcEdVerbCall &call, bool titled)
{
    const OpenDrawing drawing(file);
    if (!drawing.document())
        return kTrouble;
    drawing.tellDamage();
    if (QJsonObject damage{{QStringLiteral("file"), drawing.document()->fileName()}}; call.json) {
        addDamage(damage, *drawing.document());
        if (damage.size() > 1)
            acedPrintResult(damage);
    }
    endMessageLine();
    if (titled)
        acedPrintResult(file + QStringLiteral(":\n"));
    const int status = std::clamp(verb.run(call), int(kDone), int(kTrouble));
    if (target.isEmpty() || status == kTrouble)
        return status;
    if (const auto saved = saveCopy(drawing.document(), target, overwriteOf(call)); !saved) {
        printMessageLine(saved.error());
        return kTrouble;
    }
    return status;
}

/// The given option that names one file for the results; each drawing would overwrite those before it.
static const AcEdVerbOption *oneOutput(const AcEdVerb &verb, const AcEdVerbCall &call)
{
    const auto found = std::ranges::find_if(verb.options, [&](const AcEdVerbOption &option) {
        return option.value == QLatin1String("FILE") && call.has(option.name);
    });
    return found == verb.options.end() ? nullptr : &*found;
}

/// Files that are written when all drawings have been seen: what stands in the way is told before any is
/// opened.
static bool mayWriteShared(const AcEdVerb &verb, const AcEdVerbCall &call)
{
    const Overwrite overwrite = overwriteOf(call);
    for (const AcEdVerbOption &option : verb.options) {
        if (option.value != QLatin1String("OUT") || !call.has(option.name))
            continue;
        if (const auto planned = planSharedOutput(call.options.at(option.name), overwrite); !planned) {
            printMessageLine(planned.error());
            return false;
        }
    }
    return true;
}

int runModuleVerb(const AcEdVerb &verb, const QStringList &files, const AcEdVerbCall &call)
{
    const AcEdVerbOption *const output = oneOutput(verb, call);
    if (output && files.size() > 1) {
        printMessageLine(QStringLiteral("%1 %2 takes the result of one drawing; %3 are given")
                             .arg(verb.name, output->name)
                             .arg(files.size()));
        return kTrouble;
    }
    if (!mayWriteShared(verb, call))
        return kTrouble;
    const auto saveTo = call.options.find(kOutputOption);
    const bool saves = verb.saving != AcEdVerbSaving::never && saveTo != call.options.end();
    const auto targets = planOutputs(files, saves ? saveTo->second : QString(), overwriteOf(call));
    if (!targets) {
        printMessageLine(targets.error());
        return kTrouble;
    }
    int status = kDone;
    for (qsizetype i = 0; i < files.size(); ++i)
        status =
            std::max(status, runOnFile(verb, files[i], (*targets)[i], call, files.size() > 1 && !call.json));
    if (verb.finish && status != kTrouble)
        status = std::max(status, std::clamp(verb.finish(call), int(kDone), int(kTrouble)));
    return status;
}

} // namespace console
