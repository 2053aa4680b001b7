#include "app/console/run_verb.h"

#include "host/acap/recovery.h"
#include "host/aced/edcommands.h"
#include "host/base/file_bytes.h"

#include <QFile>

#include <cmath>
#include <cstdio>
#include <optional>

namespace console
{

static base::Result<Script, QString> readScript(const QString &path)
{
    if (path == u"-") {
        QFile input;
        if (!input.open(stdin, QIODevice::ReadOnly))
            return base::Failure{QStringLiteral("standard input cannot be read")};
        return Script::parse(input.readAll(), QStringLiteral("standard input"));
    }
    const auto bytes = base::readFileBytes(path);
    if (!bytes)
        return base::Failure{bytes.error().text()};
    const std::string_view view = bytes->view();
    return Script::parse(QByteArrayView(view.data(), qsizetype(view.size())), path);
}

/// Feeds the script's lines to the command prompt until its end, QUIT, or the first line that fails.
static void feedEditor(ScriptFrontEnd &face, AcApRecovery *recovery)
{
    AcEdPrompt prompt;
    while (!face.hasFailed() && !acedEditor()->isQuitting()) {
        const auto answer = face.answer(prompt);
        if (!answer)
            return;
        if (answer->kind != AcEdAnswer::text)
            continue;
        acedEditor()->execute(answer->typed);
        acedEditor()->runQueue();
        if (recovery)
            recovery->tick();
    }
}

static bool playScript(const Script &script, const RunOptions &options, AcApRecovery *recovery)
{
    ScriptFrontEnd face(script, options.echo);
    AcEdFrontEnd *const before = acedSetFrontEnd(&face);
    feedEditor(face, recovery);
    acedSetFrontEnd(before);
    return !face.hasFailed();
}

static int runOnFile(const Script &script, const QString &file, const QString &target,
                     const RunOptions &options)
{
    std::optional<AcApRecovery> recovery; // Hears of it when the drawing is closed.
    if (options.autosave >= 0)
        recovery.emplace(*acDocManager(), AcApRecovery::userFolder(),
                         std::chrono::milliseconds(std::llround(options.autosave * 1000)));
    const OpenDrawing drawing(file);
    if (!drawing.document())
        return kTrouble;
    if (!playScript(script, options, recovery ? &*recovery : nullptr)) {
        printMessageLine(QStringLiteral("%1: the script did not reach its end").arg(file));
        return kTrouble;
    }
    if (target.isEmpty())
        return kDone;
    if (const auto saved = saveCopy(drawing.document(), target, options.overwrite); !saved) {
        printMessageLine(saved.error());
        return kTrouble;
    }
    return kDone;
}

int runScript(const RunOptions &options)
{
    const auto script = readScript(options.script);
    if (!script) {
        printMessageLine(script.error());
        return kTrouble;
    }
    const auto targets = planOutputs(options.files, options.output, options.overwrite);
    if (!targets) {
        printMessageLine(targets.error());
        return kTrouble;
    }
    int status = kDone;
    for (qsizetype i = 0; i < options.files.size(); ++i)
        status = std::max(status, runOnFile(*script, options.files[i], (*targets)[i], options));
    return status;
}

} // namespace console
