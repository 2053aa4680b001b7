// Commands on files: drawings opened, saved and closed; modules loaded.
#include "host/aced/commands/commandtables.h"
#include "host/aced/commands/support.h"
#include "host/aced/edmessage.h"
#include "host/aced/edsysvar.h"
#include "host/acrx/rxmodule.h"
#include "host/base/host_text.h"
#include "host/base/path_name.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <array>

namespace hostcommands
{

static void openFile(const QString &path)
{
    if (AcEdDrawingKeeper *const keeper = acedFrontEnd().drawingKeeper()) {
        if (!keeper->open(path))
            acedRefuse(Host::tr("没有打开图形。"));
    } else if (const auto opened = acDocManager()->openDocument(path); !opened) {
        acedFail(withReason(Host::tr("不能打开图形: %1"), opened.error()));
    }
}

static void open()
{
    const QString proposed = curDoc() ? curDoc()->fileName() : QString();
    const auto file = askFile(AcEdPromptKind::filesToOpen, Host::tr("\n输入要打开的图形文件名: "), proposed);
    if (!file || file->path.isEmpty())
        return;
    openFile(file->path);
    for (const QString &path : file->further)
        openFile(path);
}

static void newDrawing()
{
    acDocManager()->newDocument();
}

static void save(AcApDocument *document, const QString &path, bool copyOnly)
{
    AcEdDrawingKeeper *const keeper = acedFrontEnd().drawingKeeper();
    if (keeper && !copyOnly) {
        if (!keeper->save(document, path))
            acedRefuse(Host::tr("没有保存图形。"));
    } else if (const auto saved = acDocManager()->saveDocument(document, path, copyOnly); !saved) {
        acedFail(withReason(Host::tr("不能保存图形: %1"), saved.error()));
    } else if (!saved->note.isEmpty()) {
        acutPrintf(u'\n' + saved->note);
    }
}

/// The title with the ending that it can be saved under.
static QString nameToSave(const AcApDocument &document)
{
    const QFileInfo present(document.isNamedDrawing() ? document.fileName() : document.docTitle());
    const QString name = present.completeBaseName() + u'.' + acDocManager()->suffixToSave(document);
    return document.isNamedDrawing() ? present.dir().filePath(name) : name;
}

/// With the ending of the present name when the user typed none; a folder gets a file of the present name.
static QString withEnding(const AcApDocument &document, const QString &path)
{
    if (path.endsWith(u'/') || base::isFolder(path))
        return QDir(path).filePath(QFileInfo(nameToSave(document)).fileName());
    if (!QFileInfo(path).suffix().isEmpty())
        return path;
    return path + u'.' + acDocManager()->suffixToSave(document);
}

/// Asks unless the file is new, the document's own, or EXPERT says not to.
static bool mayOverwrite(const AcApDocument &document, const QString &path)
{
    const QString file = base::fullPath(path);
    if (!base::pathExists(path) || file == document.fileName() || acedIntVar(QStringLiteral("EXPERT")) >= 2)
        return true;
    return askYes(Host::tr("\n已有名为 %1 的文件。替换它吗?").arg(file), false).value_or(false);
}

/// What another format cannot hold is listed before it is written, and wants a yes.
static bool mayConvert(const AcApDocument &document, const QString &path, bool copyOnly)
{
    if (acedFrontEnd().drawingKeeper() && !copyOnly)
        return true; // It asks by itself.
    const QStringList losses = acDocManager()->lossesOfSaving(document, path);
    for (const QString &loss : losses)
        acutPrintf(u'\n' + loss);
    return losses.isEmpty() ||
           askYes(Host::tr("\n另存为 %1 会有以上损失。继续吗?").arg(path), false).value_or(false);
}

static void saveUnderAskedName(bool copyOnly)
{
    AcApDocument *const document = curDoc();
    const QString present = nameToSave(*document);
    const auto file =
        askFile(AcEdPromptKind::fileToSave, Host::tr("\n图形另存为 <%1>: ").arg(present), present);
    if (!file)
        return;
    const QString path = withEnding(*document, file->path.isEmpty() ? present : file->path);
    if ((file->mayReplace || mayOverwrite(*document, path)) && mayConvert(*document, path, copyOnly))
        save(document, path, copyOnly);
}

static void saveAs()
{
    saveUnderAskedName(false);
}

/// Writes a file of another name beside the document, which keeps its own.
static void saveCopy()
{
    saveUnderAskedName(curDoc()->isNamedDrawing());
}

static void quickSave()
{
    if (curDoc()->isNamedDrawing())
        save(curDoc(), {}, false);
    else
        saveAs();
}

/// Without a keeper the command line asks whether changes may be lost.
static bool mayClose(const std::vector<AcApDocument *> &documents, const QString &question)
{
    if (std::ranges::none_of(documents, &AcApDocument::isModified))
        return true;
    if (AcEdDrawingKeeper *const keeper = acedFrontEnd().drawingKeeper())
        return keeper->mayClose(documents);
    return askYes(question, false).value_or(false);
}

static void close()
{
    AcApDocument *const document = curDoc();
    if (!document)
        return;
    const QString question = Host::tr("\n%1 的修改尚未保存。放弃修改吗?").arg(document->docTitle());
    if (mayClose({document}, question))
        acDocManager()->closeDocument(document);
}

static void quit()
{
    const std::vector<AcApDocument *> documents = acDocManager()->allDocuments();
    const auto modified = std::ranges::count_if(documents, &AcApDocument::isModified);
    if (mayClose(documents, Host::tr("\n%1 个图形的修改尚未保存。放弃修改并退出吗?").arg(modified)))
        acedEditor()->requestQuit();
}

static void loadModule()
{
    const auto path = askText(Host::tr("\n输入模块文件名: "));
    if (!path || path->isEmpty())
        return;
    const auto loaded = acrxDynamicLinker()->loadModule(*path);
    if (!loaded) {
        acedFail(withReason(Host::tr("不能加载模块: %1"), loaded.error()));
        return;
    }
    // A module hears of drawings that were open before it came.
    if (curDoc())
        acrxDynamicLinker()->send(*loaded, AcRx::kLoadDwgMsg);
}

std::span<const Entry> fileCommands()
{
    static constexpr int kFlags = ACRX_CMD_SESSION | ACRX_CMD_NOUNDO;
    static constexpr std::array entries{
        Entry{"OPEN", QT_TRANSLATE_NOOP("Host", "打开"), kFlags, open},
        Entry{"NEW", QT_TRANSLATE_NOOP("Host", "新建"), kFlags, newDrawing},
        Entry{"SAVE", QT_TRANSLATE_NOOP("Host", "保存副本"), ACRX_CMD_NOUNDO, saveCopy},
        Entry{"QSAVE", QT_TRANSLATE_NOOP("Host", "保存"), ACRX_CMD_NOUNDO, quickSave},
        Entry{"SAVEAS", QT_TRANSLATE_NOOP("Host", "另存为"), ACRX_CMD_NOUNDO, saveAs},
        Entry{"CLOSE", QT_TRANSLATE_NOOP("Host", "关闭"), kFlags, close},
        Entry{"QUIT", QT_TRANSLATE_NOOP("Host", "退出"), kFlags, quit, "EXIT"},
        Entry{"APPLOAD", QT_TRANSLATE_NOOP("Host", "加载模块"), kFlags, loadModule, "AP"},
    };
    return entries;
}

} // namespace hostcommands
