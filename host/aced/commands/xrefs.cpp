// XREF: other drawings that this one shows without taking them in.
#include "host/acdb/dbsymtb.h"
#include "host/acdb/dbxref.h"
#include "host/acdb/dbxrefedit.h"
#include "host/aced/commands/commandtables.h"
#include "host/aced/commands/insertion.h"
#include "host/aced/commands/support.h"
#include "host/aced/edsysvar.h"
#include "host/base/host_text.h"
#include "host/base/path_name.h"
#include "host/base/wildcard.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <array>

namespace hostcommands
{

static AcDbXrefs &xrefs()
{
    return acdbCurDwg()->xrefs();
}

// Listing ------------------------------------------------------------------------------------------

static QString stateText(const AcDbXref &xref)
{
    switch (xref.state) {
    case AcDbXrefState::loaded:
        return Host::tr("已加载");
    case AcDbXrefState::unloaded:
        return Host::tr("已卸载");
    case AcDbXrefState::notFound:
        return Host::tr("未找到");
    case AcDbXrefState::refused:
        return Host::tr("不能读取");
    case AcDbXrefState::circular:
        return Host::tr("循环参照");
    }
    return {};
}

/// Tells what became of a reference that was attached or read again, and of those that it brings.
static void tellState(const AcDbXref &xref)
{
    if (xref.state == AcDbXrefState::loaded)
        acutPrintf(Host::tr("\n“%1”已加载。").arg(xref.name));
    else if (xref.state == AcDbXrefState::unloaded)
        acutPrintf(Host::tr("\n“%1”已卸载。").arg(xref.name));
    else
        acutPrintf(withReason(Host::tr("\n“%1”不能加载: %2").arg(xref.name), acdbXrefTrouble(xref)));
    if (!xref.database)
        return;
    for (const AcDbXref &nested : xref.database->xrefs().all()) {
        if (nested.state != AcDbXrefState::unloaded)
            tellState(nested);
    }
}

static void list()
{
    const std::vector<AcDbXref> &all = xrefs().all();
    if (all.empty())
        acutPrintf(Host::tr("\n本图没有外部参照。"));
    for (const AcDbXref &xref : all)
        acutPrintf(Host::tr("\n%1  %2  %3  %4")
                       .arg(xref.name, stateText(xref), xref.isOverlay ? Host::tr("覆盖") : Host::tr("附着"),
                            xref.path));
    for (const AcDbXref &xref : xrefs().nested())
        acutPrintf(Host::tr("\n  嵌套: %1  %2  %3").arg(xref.name, stateText(xref), xref.path));
}

// Attaching ----------------------------------------------------------------------------------------

/// The title of a file as a block may be called.
static QString nameFor(const QString &file)
{
    QString name = QFileInfo(file).completeBaseName();
    for (QChar &c : name) {
        if (!isBlockName(QString(c)))
            c = u'_';
    }
    return name;
}

/// The block that shows the file: a new one, or the one that shows it already; null when refused.
static AcDbObjectId blockShowing(const QString &file, bool isOverlay)
{
    const QString name = nameFor(file);
    const AcDbObjectId known = acdbCurDwg()->tableRecord(SymbolTable::block, name);
    if (!known.isNull()) {
        const AcDbXref *const xref = xrefs().find(known);
        if (!xref || xref->file != file) {
            acedRefuse(xref ? Host::tr("外部参照 %1 已存在，其文件为 %2。").arg(name, xref->path)
                            : Host::tr("本图已有名为 %1 的块。").arg(name));
            return {};
        }
        acutPrintf(Host::tr("\n外部参照“%1”已定义，使用现有定义。").arg(name));
        return known;
    }
    const AcDbObjectId block = acdbAttachXref(*acdbCurDwg(), name, file, isOverlay);
    if (block.isNull()) {
        acedRefuse(Host::tr("不能定义块 %1。").arg(name));
        return {};
    }
    const AcDbXref &xref = *xrefs().find(block);
    if (!xref.database) {
        acedRefuse(withReason(Host::tr("不能附着: %1"), acdbXrefTrouble(xref)));
        acdbDetachXref(*acdbCurDwg(), block);
        return {};
    }
    acdbTakeXrefRecords(*acdbCurDwg(), xref);
    return block;
}

static void takeUnits(AcDbObjectId block)
{
    const AcDbXref *const xref = xrefs().find(block);
    if (!xref || !xref->database || acdbCurDwg()->version() <= DrawingVersion::r12)
        return;
    if (const AcDbObjectPointer<AcDbBlockTableRecord> record(block, AcDb::kForWrite); record)
        record->setGroup(70, xref->database->headerInteger("$INSUNITS"), u"AcDbBlockTableRecord");
}

static void attach(bool isOverlay)
{
    const auto asked = askFile(AcEdPromptKind::fileToOpen, Host::tr("\n输入要附着的文件名: "), {});
    if (!asked || asked->path.isEmpty())
        return;
    // What is there and no drawing is refused when it is read.
    QString file = drawingFile(QString(asked->path).replace(u'\\', u'/'));
    if (file.isEmpty() && base::pathExists(asked->path) && !base::isFolder(asked->path))
        file = base::fullPath(asked->path);
    if (file.isEmpty()) {
        acedRefuse(Host::tr("没有找到文件 %1。").arg(asked->path));
        return;
    }
    if (file == acdbCurDwg()->file()) {
        acedRefuse(Host::tr("图形不能参照它自己。"));
        return;
    }
    const bool wasThere = acdbCurDwg()->tableRecord(SymbolTable::block, nameFor(file)).isValid();
    const AcDbObjectId block = blockShowing(file, isOverlay);
    if (block.isNull())
        return;
    takeUnits(block);
    tellState(*xrefs().find(block));
    if (const auto placement = askPlacement(false))
        insertReference(block, *placement, unitFactor(block));
    else if (!wasThere)
        acdbDetachXref(*acdbCurDwg(), block);
}

// Others -------------------------------------------------------------------------------------------

/// Does it to the references that the user names by a pattern.
template <class Work>
static void forNamed(const QString &prompt, Work work)
{
    const auto names = askText(prompt);
    if (!names || names->isEmpty())
        return;
    const base::Wildcard pattern(*names);
    std::vector<AcDbXref> chosen = xrefs().all();
    std::erase_if(chosen, [&](const AcDbXref &xref) {
        return !pattern.matches(xref.name) && xref.name.compare(*names, Qt::CaseInsensitive) != 0;
    });
    if (chosen.empty()) {
        acedRefuse(Host::tr("没有与“%1”匹配的外部参照。").arg(*names));
        return;
    }
    for (const AcDbXref &xref : chosen)
        work(xref);
}

static void refuse(const AcDbXref &xref, Acad::ErrorStatus status)
{
    if (status != Acad::eOk)
        acedRefuse(withReason(Host::tr("外部参照 %1: %2").arg(xref.name), reasonText(status)));
}

static void detach()
{
    forNamed(Host::tr("\n输入要拆离的外部参照名: "), [](const AcDbXref &xref) {
        const Acad::ErrorStatus status = acdbDetachXref(*acdbCurDwg(), xref.block);
        if (status == Acad::eOk)
            acutPrintf(Host::tr("\n“%1”已拆离。").arg(xref.name));
        refuse(xref, status);
    });
}

static void bind()
{
    forNamed(Host::tr("\n输入要绑定的外部参照名: "), [](const AcDbXref &xref) {
        std::size_t leftOut = 0;
        const Acad::ErrorStatus status = acdbBindXref(*acdbCurDwg(), xref.block, leftOut);
        if (status == Acad::eFileNotFound)
            acedRefuse(Host::tr("外部参照 %1 未加载，不能绑定。").arg(xref.name));
        else
            refuse(xref, status);
        if (status == Acad::eOk)
            acutPrintf(Host::tr("\n“%1”已绑定。").arg(xref.name));
        if (leftOut > 0)
            acutPrintf(Host::tr("\n%1 个对象属于本图没有的类，未插入。").arg(leftOut));
    });
}

static void unload()
{
    forNamed(Host::tr("\n输入要卸载的外部参照名: "), [](const AcDbXref &xref) {
        refuse(xref, acdbSetXrefUnloaded(xref.block, true));
        tellState(*xrefs().find(xref.block));
    });
}

static void reload(const AcDbXref &xref)
{
    if (xref.state == AcDbXrefState::unloaded)
        refuse(xref, acdbSetXrefUnloaded(xref.block, false));
    xrefs().reload(xref.block);
    const AcDbXref &now = *xrefs().find(xref.block);
    acdbTakeXrefRecords(*acdbCurDwg(), now);
    tellState(now);
}

static void reload()
{
    forNamed(Host::tr("\n输入要重载的外部参照名: "), [](const AcDbXref &xref) { reload(xref); });
}

static void path()
{
    forNamed(Host::tr("\n输入要编辑其路径的外部参照名: "), [](const AcDbXref &xref) {
        acutPrintf(Host::tr("\n旧路径: %1").arg(xref.path));
        const auto asked = askFile(AcEdPromptKind::fileToOpen, Host::tr("\n输入新路径: "), xref.file);
        if (!asked || asked->path.isEmpty())
            return;
        refuse(xref, acdbSetXrefPath(xref.block, asked->path));
        reload(*xrefs().find(xref.block));
    });
}

static void pathType()
{
    const auto type = askKeyword(QStringLiteral("Full Relative None"),
                                 Host::tr("\n输入路径类型 [完整(Full)/相对(Relative)/无(None)] <相对>: "),
                                 QStringLiteral("Relative"));
    if (!type)
        return;
    const QString folder = acdbCurDwg()->folder();
    if (*type == QLatin1String("Relative") && folder.isEmpty()) {
        acedRefuse(Host::tr("图形尚未命名，没有相对路径。"));
        return;
    }
    forNamed(Host::tr("\n输入要改变路径类型的外部参照名: "), [&](const AcDbXref &xref) {
        const QString file = xref.file.isEmpty() ? QString(xref.path).replace(u'\\', u'/') : xref.file;
        refuse(xref, acdbSetXrefPath(xref.block, *type == QLatin1String("None") ? QFileInfo(file).fileName()
                                                 : *type == QLatin1String("Full")
                                                     ? file
                                                     : QDir(folder).relativeFilePath(file)));
    });
}

static void xref()
{
    static constexpr std::array<std::pair<const char *, void (*)()>, 9> kOptions{{
        {"?", list},
        {"Bind", bind},
        {"Detach", detach},
        {"Path", path},
        {"PAthtype", pathType},
        {"Unload", unload},
        {"Reload", reload},
        {"Overlay", [] { attach(true); }},
        {"Attach", [] { attach(false); }},
    }};
    QStringList keywords;
    for (const auto &[name, option] : kOptions)
        keywords << QLatin1String(name);
    const auto choice =
        askKeyword(keywords.join(u' '),
                   Host::tr("\n输入选项 [?/绑定(B)/拆离(D)/路径(P)/路径类型(PA)/卸载(U)/重载(R)/"
                            "覆盖(O)/附着(A)] <附着>: "),
                   QStringLiteral("Attach"));
    const auto option = std::ranges::find_if(
        kOptions, [&](const auto &entry) { return choice && *choice == QLatin1String(entry.first); });
    if (option != kOptions.end())
        option->second();
}

std::span<const Entry> xrefCommands()
{
    static constexpr std::array entries{
        Entry{"-XREF", QT_TRANSLATE_NOOP("Host", "外部参照"), ACRX_CMD_MODAL, xref},
        Entry{"XCLIP", QT_TRANSLATE_NOOP("Host", "剪裁"), ACRX_CMD_MODAL | ACRX_CMD_USEPICKSET, xclip},
    };
    return entries;
}

} // namespace hostcommands
