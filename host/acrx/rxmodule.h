// Loading of modules: shared libraries with one entry point that receives numbered messages.
#pragma once

#include "host/base/result.h"

#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

namespace AcRx
{
enum AppMsgCode : int {
    kInitAppMsg = 1,
    kUnloadAppMsg = 2,
    kLoadDwgMsg = 3,
    kUnloadDwgMsg = 4,
    kInvkSubrMsg = 5,
};
enum AppRetCode : int { kRetOK = 0, kRetError = 3 };
} // namespace AcRx

/// What the host hands to the entry point: the module it is talking to.
struct AcRxModulePacket {
    QString path;          ///< Path under which the host loaded the module.
    bool unlocked = false; ///< The module said that it may be unloaded.
    bool mdiAware = false; ///< The module said that it knows several documents.
};

using AcRxEntryPoint = AcRx::AppRetCode (*)(AcRx::AppMsgCode message, void *packet);

/// The modules in the process, in loading order.
class AcRxDynamicLinker
{
public:
    /// Loads the library, finds `acrxEntryPoint` and sends it kInitAppMsg. Loading a loaded module
    /// again does nothing. The error is a sentence for the user.
    base::Result<AcRxModulePacket *, QString> loadModule(const QString &path);
    /// Takes part in the message flow without a file, as tests do with linked-in modules.
    AcRxModulePacket *attachModule(const QString &path, AcRxEntryPoint entry);
    /// Sends kUnloadAppMsg and forgets the module; false when it is not loaded or not unlocked.
    bool unloadModule(const QString &path);
    /// The last module goes first.
    void unloadAll();

    /// Sends a message to every module.
    void broadcast(AcRx::AppMsgCode message);
    /// Sends a message to one module; kRetError when it is not loaded.
    AcRx::AppRetCode send(AcRxModulePacket *module, AcRx::AppMsgCode message);

    void unlockApplication(void *packet);
    void registerAppMDIAware(void *packet);
    /// The module that is handling a message right now, or null.
    AcRxModulePacket *current() const { return m_current; }

private:
    struct Module {
        AcRxModulePacket packet;
        AcRxEntryPoint entry = nullptr;
    };
    Module *find(const QString &path);
    AcRx::AppRetCode deliver(Module &module, AcRx::AppMsgCode message);

    std::vector<std::unique_ptr<Module>> m_modules;
    AcRxModulePacket *m_current = nullptr;
};

AcRxDynamicLinker *acrxDynamicLinker();

/// The demand-load record: what the host must know to load a module before anybody asks for it by path.
/// Kept in the settings store, one record an application name.
class AcadAppInfo
{
public:
    enum LoadReason : int { kOnProxyDetection = 1, kOnAutoCADStartup = 2, kOnCommandInvocation = 4 };
    struct Command {
        QString globalName;
        QString localName;
    };

    QString appName;
    QString moduleName; ///< Path of the library.
    QString description;
    int loadReasons = 0;
    QString groupName;
    std::vector<Command> commands;

    /// False when the store cannot be written.
    bool writeToRegistry() const;
    static std::vector<AcadAppInfo> readAll();
};
