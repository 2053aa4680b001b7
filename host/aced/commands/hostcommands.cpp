// Registers the host's commands and their short names.
#include "host/aced/hostcommands.h"

#include "host/aced/commands/commandtables.h"
#include "host/aced/edfrontend.h"
#include "host/aced/edpicture.h"
#include "host/acgi/query/region.h"

#include <array>

using namespace hostcommands;

static const QString kGroup = QStringLiteral("HOST");

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
            acedRegCmds()->addCommand(
                {.group = kGroup,
                 .globalName = name,
                 .localName = name,
                 .flags = entry.flags,
                 .function = entry.run,
                 .title = entry.title,
                 .aliases = QString::fromLatin1(entry.aliases).split(u' ', Qt::SkipEmptyParts)});
        }
    }
}
