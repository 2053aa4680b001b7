#include "host/acrx/rxmodule.h"

#include "host/base/host_text.h"
#include "host/os/settings_store.h"

#include <QFileInfo>
#include <QLibrary>

#include <algorithm>

AcRxDynamicLinker *acrxDynamicLinker()
{
    static AcRxDynamicLinker linker;
    return &linker;
}

AcRxDynamicLinker::Module *AcRxDynamicLinker::find(const QString &path)
{
    const auto found =
        std::ranges::find(m_modules, path, [](const auto &module) { return module->packet.path; });
    return found == m_modules.end() ? nullptr : found->get();
}

AcRx::AppRetCode AcRxDynamicLinker::deliver(Module &module, AcRx::AppMsgCode message)
{
    AcRxModulePacket *const outer = m_current;
    m_current = &module.packet;
    const AcRx::AppRetCode answer = module.entry(message, &module.packet);
    m_current = outer;
    return answer;
}

base::Result<AcRxModulePacket *, QString> AcRxDynamicLinker::loadModule(const QString &path)
{
    const QString canonical = QFileInfo(path).canonicalFilePath();
    if (Module *const loaded = find(canonical))
        return &loaded->packet;
    if (canonical.isEmpty())
        return base::Failure{Host::tr("%1: no such module").arg(path)};
    QLibrary library(canonical);
    const auto entry = reinterpret_cast<AcRxEntryPoint>(library.resolve("acrxEntryPoint"));
    if (!entry)
        return base::Failure{library.errorString()};
    return attachModule(canonical, entry);
}

AcRxModulePacket *AcRxDynamicLinker::attachModule(const QString &path, AcRxEntryPoint entry)
{
    m_modules.push_back(std::make_unique<Module>(Module{{path, false, false}, entry}));
    Module &module = *m_modules.back();
    deliver(module, AcRx::kInitAppMsg);
    return &module.packet;
}

bool AcRxDynamicLinker::unloadModule(const QString &path)
{
    Module *const module = find(path);
    if (!module || !module->packet.unlocked)
        return false;
    // The library stays mapped: code of the module may still be on the stack or in Qt's tables.
    deliver(*module, AcRx::kUnloadAppMsg);
    std::erase_if(m_modules, [module](const auto &m) { return m.get() == module; });
    return true;
}

void AcRxDynamicLinker::unloadAll()
{
    while (!m_modules.empty()) {
        deliver(*m_modules.back(), AcRx::kUnloadAppMsg);
        m_modules.pop_back();
    }
}

void AcRxDynamicLinker::broadcast(AcRx::AppMsgCode message)
{
    for (const auto &module : m_modules)
        deliver(*module, message);
}

AcRx::AppRetCode AcRxDynamicLinker::send(AcRxModulePacket *module, AcRx::AppMsgCode message)
{
    const auto found = std::ranges::find(m_modules, module, [](const auto &m) { return &m->packet; });
    return found == m_modules.end() ? AcRx::kRetError : deliver(**found, message);
}

void AcRxDynamicLinker::unlockApplication(void *packet)
{
    static_cast<AcRxModulePacket *>(packet)->unlocked = true;
}

void AcRxDynamicLinker::registerAppMDIAware(void *packet)
{
    static_cast<AcRxModulePacket *>(packet)->mdiAware = true;
}

static const QString kApplications = QStringLiteral("Software\\QuillnoteHost\\Applications");
static const QString kApplicationList = QStringLiteral("Names");

static QStringList recordedNames()
{
    const QString names = os::SettingsStore::user().text(kApplications, kApplicationList).value_or(QString());
    return names.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

bool AcadAppInfo::writeToRegistry() const
{
    os::SettingsStore &store = os::SettingsStore::user();
    const QString key = kApplications + QLatin1Char('\\') + appName;
    QStringList commandLines;
    for (const Command &command : commands)
        commandLines << command.globalName + QLatin1Char('\t') + command.localName;
    bool written = store.setText(key, QStringLiteral("Loader"), moduleName) &&
                   store.setText(key, QStringLiteral("Description"), description) &&
                   store.setNumber(key, QStringLiteral("LoadReasons"), std::uint32_t(loadReasons)) &&
                   store.setText(key, QStringLiteral("Group"), groupName) &&
                   store.setText(key, QStringLiteral("Commands"), commandLines.join(QLatin1Char('\n')));
    QStringList names = recordedNames();
    if (written && !names.contains(appName)) {
        names << appName;
        written = store.setText(kApplications, kApplicationList, names.join(QLatin1Char('\n')));
    }
    return written;
}

std::vector<AcadAppInfo> AcadAppInfo::readAll()
{
    os::SettingsStore &store = os::SettingsStore::user();
    std::vector<AcadAppInfo> all;
    for (const QString &name : recordedNames()) {
        const QString key = kApplications + QLatin1Char('\\') + name;
        const auto text = [&](const char *value) {
            return store.text(key, QString::fromLatin1(value)).value_or(QString());
        };
        AcadAppInfo info{name,
                         text("Loader"),
                         text("Description"),
                         int(store.number(key, QStringLiteral("LoadReasons")).value_or(0)),
                         text("Group"),
                         {}};
        for (const QString &line : text("Commands").split(QLatin1Char('\n'), Qt::SkipEmptyParts))
            info.commands.push_back(
                {line.section(QLatin1Char('\t'), 0, 0), line.section(QLatin1Char('\t'), 1)});
        all.push_back(std::move(info));
    }
    return all;
}
