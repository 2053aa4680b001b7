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
    const auto bytes = base::readFileBytes(path, base::Pipes::read);
    if (!bytes)
        return base::Failure{bytes.error().text()};
    const std::string_view view = bytes->view();
    return Script::parse(QByteArrayView(view.data(), qsizetype(view.size())), path);
}

/// Recovery copies of a run. A copy that cannot be written is told once; the run goes on, and ends in
/// trouble.
class Autosave
{
public:
    explicit Autosave(double seconds)
        : m_recovery(*acDocManager(), AcApRecovery::userFolder(),
                     std::chrono::milliseconds(std::llround(seconds * 1000)))
    {
    }
    void tick()
    {
        m_recovery.tick();
        look();
    }
    /// Waits for the copies that were begun; false when one could not be written.
    bool finish()
    {
        m_recovery.finish();
        look();
        return m_trouble.isEmpty();
    }

private:
    void look()
    {
        const QString trouble = m_recovery.trouble();
        if (trouble.isEmpty() || !m_trouble.isEmpty())
            return;
        m_trouble = trouble;
        printMessageLine(QStringLiteral("no recovery copy: %1").arg(trouble));
    }

    AcApRecovery m_recovery; // Hears of it when the drawing is closed.
    QString m_trouble;
};

/// Feeds the script's lines to the command prompt until its end, QUIT, or the first line that fails.
static void feedEditor(ScriptFrontEnd &face, Autosave *autosave)
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
        if (autosave)
            autosave->tick();
    }
}

static bool playScript(const Script &script, const RunOptions &options, Autosave *autosave)
{
    ScriptFrontEnd face(script, options.echo);
    AcEdFrontEnd *const before = acedSetFrontEnd(&face);
    feedEditor(face, autosave);
    acedSetFrontEnd(before);
    return !face.hasFailed();
}

static int runOnFile(const Script &script, const QString &file, const QString &target,
                     const RunOptions &options)
{
    std::optional<Autosave> autosave;
    if (options.autosave >= 0)
        autosave.emplace(options.autosave);
    const OpenDrawing drawing(file);
    if (!drawing.document())
        return kTrouble;
    drawing.tellDamage();
    const bool played = playScript(script, options, autosave ? &*autosave : nullptr);
    int status = !autosave || autosave->finish() ? kDone : kTrouble;
    if (!played) {
        printMessageLine(QStringLiteral("%1: the script did not reach its end").arg(file));
        return kTrouble;
    }
    if (target.isEmpty())
        return status;
    if (const auto saved = saveCopy(drawing.document(), target, options.overwrite); !saved) {
        printMessageLine(saved.error());
        return kTrouble;
    }
    return status;
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
