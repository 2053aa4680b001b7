// Registers the host's commands and their short names.
#include "host/aced/hostcommands.h"

#include "host/aced/commands/commandtables.h"
#include "host/aced/edfrontend.h"
#include "host/aced/edpicture.h"
#include "host/acgi/query/region.h"
#include "host/base/assert.h"

#include <array>

using namespace hostcommands;

static const QString kGroup = QStringLiteral("HOST");

/// Short names as people type them.
static constexpr std::array<std::pair<const char *, const char *>, 26> kAliases{{
    {"L", "LINE"},    {"C", "CIRCLE"}, {"PO", "POINT"},     {"DT", "TEXT"},    {"E", "ERASE"},
    {"M", "MOVE"},    {"CO", "COPY"},  {"CP", "COPY"},      {"RO", "ROTATE"},  {"SC", "SCALE"},
    {"MI", "MIRROR"}, {"Z", "ZOOM"},   {"P", "PAN"},        {"RE", "REGEN"},   {"LA", "LAYER"},
    {"DV", "DVIEW"},  {"LI", "LIST"},  {"LS", "LIST"},      {"DI", "DIST"},    {"MS", "MSPACE"},
    {"PS", "PSPACE"}, {"V", "VIEW"},   {"REA", "REGENALL"}, {"TO", "TOOLBAR"}, {"AP", "APPLOAD"},
    {"I", "INSERT"},
}};

/// An alias is the same command under another local name, in a group of its own: what reactors hear is the
/// command's global name.
static void registerAliases()
{
    for (const auto &[alias, name] : kAliases) {
        const AcEdCommand *const found = acedRegCmds()->lookup(QLatin1String(name));
        QUILL_ASSERT(found);
        const AcEdCommand command = *found; // The table may move while it grows.
        acedRegCmds()->addCommand(kGroup + u'.' + QLatin1String(alias), command.globalName,
                                  QLatin1String(alias), command.flags, command.function);
    }
}

static std::optional<AcGiViewport> screenView(const AcDbDatabase &database)
{
    const AcApDocument *const document = acDocManager()->document(&database);
    return document ? std::optional(acedViewport(*document)) : std::nullopt;
}

void acedRegisterHostCommands()
{
    acgi::setScreenView(screenView);
    acDocManager()->setProgress(
        [](const QString &what, double share) { return acedFrontEnd().progress(what, share); });
    const std::array tables{fileCommands(),       editCommands(),  undoCommands(), viewCommands(),
                            coordinateCommands(), layerCommands(), drawCommands(), blockCommands(),
                            inquiryCommands(),    menuCommands(),  plotCommands(), layoutCommands(),
                            gripCommands(),       xrefCommands()};
    for (const std::span<const Entry> table : tables) {
        for (const Entry &entry : table) {
            const QString name = QLatin1String(entry.name);
            acedRegCmds()->addCommand(kGroup, name, name, entry.flags, entry.run);
        }
    }
    registerAliases();
}
