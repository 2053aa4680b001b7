// The host's messages, and the order of start-up and unload.
#include "quillnote/frame/entry_point.h"

#include "quillnote/authoring/flag_refresh.h"
#include "quillnote/authoring/numbering.h"
#include "quillnote/entity/mark_class.h"
#include "quillnote/entity/mark_grips.h"
#include "quillnote/entity/mark_state.h"
#include "quillnote/entity/password.h"
#include "quillnote/exchange/synchronisation.h"
#include "quillnote/frame/command_table.h"
#include "quillnote/frame/lisp_functions.h"
#include "quillnote/frame/menu_loading.h"
#include "quillnote/frame/reactors.h"
#include "quillnote/frame/settings/settings.h"
#include "quillnote/frame/settings/start_up_settings.h"
#include "quillnote/frame/verbs.h"
#include "quillnote/review/review_palette.h"
#include "quillnote/snapshot/pending_snapshot.h"
#include "quillnote/snapshot/snapshot_viewer.h"
#include "quillnote/ui/ask_password.h"

#include "host/aced/edcommands.h"
#include "host/aced/edfrontend.h"
#include "host/aced/edmessage.h"
#include "host/aced/edsysvar.h"

static constexpr int kNoticeLimit = 10;

/// Only a person reads it: a script would use up the ten times unseen.
static void showNotice()
{
    if (acedFrontEnd().isScripted())
        return;
    const QString notice = settings::text(u"NoticeString");
    const int shown = settings::number(u"NoticeStringN");
    if (notice.isEmpty() || shown >= kNoticeLimit)
        return;
    acedAlert(notice);
    settings::setNumber(u"NoticeStringN", shown + 1);
}

static void writeDemandLoadRecord(const QString &modulePath)
{
    AcadAppInfo info;
    info.appName = kProductName.toString();
    info.moduleName = modulePath;
    info.description = QStringLiteral("Quillnote version 7.0");
    info.loadReasons =
        AcadAppInfo::kOnProxyDetection | AcadAppInfo::kOnAutoCADStartup | AcadAppInfo::kOnCommandInvocation;
    info.groupName = QString::fromUtf16(kCommandGroup);
    info.commands = recordedCommands();
    info.writeToRegistry();
}

/// A module that is loaded again starts as it did the first time.
static void resetState()
{
    passwordState().reset();
    markDrawingState().reset();
    appendState().reset();
    pendingSnapshot().reset();
    startUpSettings().reset();
}

static void initialise(void *packet)
{
    resetState();
    acrxDynamicLinker()->unlockApplication(packet);
    acrxDynamicLinker()->registerAppMDIAware(packet);
    settings::declareTypes();
    createDocumentRegistry();
    readStartUpSettings();
    registerMarkClass();
    installPasswordPrompt();
    setTargetReshaped(renewFingerprint);
    showNotice();
    registerCommands();
    registerVerbs();
    writeDemandLoadRecord(static_cast<AcRxModulePacket *>(packet)->path);
    createReactors();
    acutPrintf(QStringLiteral("\n评图标签软件Quillnote加载成功！"));
}

static void unload()
{
    QN8_SynningOff();
    deleteReactors();
    stopFlagRefresh();
    closeReviewPalette();
    closeSnapshotViewers();
    pendingSnapshot().reset();
    removeVerbs();
    acedRegCmds()->removeGroup(QString::fromUtf16(kCommandGroup));
    setTargetReshaped(nullptr);
    removePasswordPrompt();
    unregisterMarkClass();
}

// A second pass after a LISP call would only queue the menu again, so these steps run once a drawing.
static void drawingLoaded()
{
    queueMenuLoad();
    defineLispFunctions();
    if (settings::number(u"autoFlagRefresh") > 0)
        startFlagRefresh();
}

AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode message, void *packet)
{
    switch (message) {
    case AcRx::kInitAppMsg:
        initialise(packet);
        break;
    case AcRx::kUnloadAppMsg:
        unload();
        break;
    case AcRx::kLoadDwgMsg:
        drawingLoaded();
        break;
    case AcRx::kInvkSubrMsg:
        invokeLispFunction();
        break;
    default:
        break;
    }
    return AcRx::kRetOK;
}
