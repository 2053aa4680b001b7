#include "app/console/modules.h"

#include "app/console/console_front_end.h"
#include "host/acrx/rxmodule.h"

#include <QCoreApplication>
#include <QDir>

namespace console
{

QString reviewModulePath()
{
    return QDir::cleanPath(QCoreApplication::applicationDirPath() +
                           QStringLiteral("/../lib/libquillnote3.so"));
}

static void load(const QString &what, const QString &path)
{
    if (const auto loaded = acrxDynamicLinker()->loadModule(path); !loaded)
        printMessageLine(QStringLiteral("%1 is not loaded: %2").arg(what, loaded.error()));
}

void loadModules()
{
    load(QStringLiteral("the review module"), reviewModulePath());
    // Read afterwards: a module that is loaded renews its own record.
    for (const AcadAppInfo &record : AcadAppInfo::readAll()) {
        if (record.loadReasons & AcadAppInfo::kOnAutoCADStartup)
            load(QStringLiteral("the module %1").arg(record.appName), record.moduleName);
    }
    endMessageLine(); // Results follow, on standard output.
}

} // namespace console
