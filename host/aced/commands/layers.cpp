// LAYER on the command line: one option after the other until Enter.
#include "host/acdb/dbsymtb.h"
#include "host/aced/commands/commandtables.h"
#include "host/aced/commands/support.h"
#include "host/aced/edsysvar.h"
#include "host/base/host_text.h"
#include "host/base/wildcard.h"

#include <algorithm>
#include <array>
#include <functional>

namespace hostcommands
{

static QString currentLayer()
{
    return acedTextVar(QStringLiteral("CLAYER"), QStringLiteral("0"));
}

static bool isCurrent(const AcDbLayerTableRecord &layer)
{
    return layer.getName().compare(currentLayer(), Qt::CaseInsensitive) == 0;
}

static AcDbObjectId layerNamed(const QString &name)
{
    return acdbCurDwg()->tableRecord(SymbolTable::layer, name);
}

/// Characters that patterns, lists and file formats need for themselves.
static bool isGoodName(const QString &name)
{
    static const QString refused = QStringLiteral("<>/\\\":;?*|,=`");
    return !name.isEmpty() && name.size() <= 255 &&
           std::ranges::none_of(name, [](QChar c) { return refused.contains(c) || c.unicode() < 32; });
}

static bool createLayer(const QString &name)
{
    if (!isGoodName(name)) {
        acedRefuse(Host::tr("图层名“%1”无效。").arg(name));
        return false;
    }
    AcDbObjectId added;
    const Acad::ErrorStatus status =
        AcDbSymbolTable(*acdbCurDwg(), SymbolTable::layer).addLike(QStringLiteral("0"), name, added);
    if (status == Acad::eDuplicateKey)
        return true;
    if (status != Acad::eOk) {
        acedRefuse(Host::tr("不能新建图层“%1”: %2").arg(name, reasonText(status)));
        return false;
    }
    AcDbObjectPointer<AcDbLayerTableRecord> layer(acrxCast<AcDbLayerTableRecord>(added.stub()->object));
    layer->setIsFrozen(false);
    layer->setIsLocked(false);
    layer->setIsOff(false);
    layer->setIsPlottable(true);
    layer->setColorIndex(7);
    layer->setLinetype(QStringLiteral("CONTINUOUS"));
    return true;
}

/// A missing layer and a frozen one are refused.
static void makeCurrent(const QString &name)
{
    QString spelling;
    {
        AcDbObjectPointer<AcDbLayerTableRecord> layer(layerNamed(name), AcDb::kForRead);
        if (!layer || layer->isFrozen()) {
            acedRefuse(layer ? Host::tr("图层“%1”已冻结，不能置为当前。").arg(name)
                             : Host::tr("没有图层“%1”。").arg(name));
            return;
        }
        spelling = layer->getName();
    }
    acedSetVar(QStringLiteral("CLAYER"), resbuf(5005, spelling));
}

static void changeLayers(const QString &names, const std::function<void(AcDbLayerTableRecord &)> &change)
{
    const base::Wildcard pattern(names);
    std::size_t found = 0;
    for (const AcDbObjectId id : AcDbSymbolTable(*acdbCurDwg(), SymbolTable::layer).records()) {
        AcDbObjectPointer<AcDbLayerTableRecord> layer(id, AcDb::kForRead);
        if (!layer || !pattern.matches(layer->getName()))
            continue;
        ++found;
        if (layer->upgradeOpen() == Acad::eOk)
            change(*layer);
    }
    if (found == 0)
        acedRefuse(Host::tr("没有与“%1”匹配的图层。").arg(names));
}

static void askLayers(const QString &action, const std::function<void(AcDbLayerTableRecord &)> &change)
{
    const auto names = askText(Host::tr("\n输入%1的图层名列表: ").arg(action));
    if (names && !names->isEmpty())
        changeLayers(*names, change);
}

/// Enter means the current layer.
static void askLayersOrCurrent(const QString &action,
                               const std::function<void(AcDbLayerTableRecord &)> &change)
{
    const auto names = askText(Host::tr("\n输入%1的图层名列表 <%2>: ").arg(action, currentLayer()));
    if (names)
        changeLayers(names->isEmpty() ? currentLayer() : *names, change);
}

// Options ----------------------------------------------------------------------------------------------

static void listLayers()
{
    const auto names = askText(Host::tr("\n输入要列出的图层名 <*>: "));
    if (!names)
        return;
    acutPrintf(Host::tr("\n当前图层: %1").arg(currentLayer()));
    const base::Wildcard pattern(names->isEmpty() ? QStringLiteral("*") : *names);
    for (const AcDbObjectId id : AcDbSymbolTable(*acdbCurDwg(), SymbolTable::layer).records()) {
        AcDbObjectPointer<AcDbLayerTableRecord> layer(id, AcDb::kForRead);
        if (!layer || !pattern.matches(layer->getName()))
            continue;
        QStringList state{layer->isOff() ? Host::tr("关") : Host::tr("开")};
        if (layer->isFrozen())
            state << Host::tr("冻结");
        if (layer->isLocked())
            state << Host::tr("锁定");
        if (!layer->isPlottable())
            state << Host::tr("不打印");
        acutPrintf(Host::tr("\n%1  %2  颜色 %3  线型 %4")
                       .arg(layer->getName(), state.join(u' '))
                       .arg(layer->colorIndex())
                       .arg(layer->linetype()));
    }
}

static void make()
{
    const auto name = askText(Host::tr("\n输入新图层的名称 (成为当前图层) <%1>: ").arg(currentLayer()));
    if (name && !name->isEmpty() && createLayer(*name))
        makeCurrent(*name);
}

static void set()
{
    const auto name = askText(Host::tr("\n输入要置为当前的图层名 <%1>: ").arg(currentLayer()));
    if (name && !name->isEmpty())
        makeCurrent(*name);
}

static void create()
{
    const auto names = askText(Host::tr("\n输入新图层的名称列表: "));
    for (const QString &name : names.value_or(QString()).split(u',', Qt::SkipEmptyParts))
        createLayer(name.trimmed());
}

static void turnOn()
{
    askLayers(Host::tr("要打开"), [](AcDbLayerTableRecord &layer) { layer.setIsOff(false); });
}

static void turnOff()
{
    askLayers(Host::tr("要关闭"), [](AcDbLayerTableRecord &layer) {
        if (!isCurrent(layer) ||
            askYes(Host::tr("\n要关闭当前图层“%1”吗?").arg(layer.getName()), false).value_or(false))
            layer.setIsOff(true);
    });
}

static void freeze()
{
    askLayers(Host::tr("要冻结"), [](AcDbLayerTableRecord &layer) {
        if (isCurrent(layer))
            acedRefuse(Host::tr("不能冻结当前图层“%1”。").arg(layer.getName()));
        else
            layer.setIsFrozen(true);
    });
}

static void thaw()
{
    askLayers(Host::tr("要解冻"), [](AcDbLayerTableRecord &layer) { layer.setIsFrozen(false); });
}

static void lock()
{
    askLayers(Host::tr("要锁定"), [](AcDbLayerTableRecord &layer) { layer.setIsLocked(true); });
}

static void unlock()
{
    askLayers(Host::tr("要解锁"), [](AcDbLayerTableRecord &layer) { layer.setIsLocked(false); });
}

/// A number from 1 to 255 or one of the seven names.
static std::optional<int> readColor(const QString &text)
{
    static const QStringList names{
        QStringLiteral("red"),  QStringLiteral("yellow"),  QStringLiteral("green"), QStringLiteral("cyan"),
        QStringLiteral("blue"), QStringLiteral("magenta"), QStringLiteral("white")};
    if (const qsizetype named = names.indexOf(text.toLower()); named >= 0)
        return int(named) + 1;
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    return isNumber && number >= 1 && number <= 255 ? std::optional(number) : std::nullopt;
}

static void color()
{
    const auto text = askText(Host::tr("\n输入颜色名或颜色号 (1-255): "));
    const auto index = text ? readColor(*text) : std::nullopt;
    if (index)
        askLayersOrCurrent(Host::tr("使用该颜色"),
                           [&](AcDbLayerTableRecord &layer) { layer.setColorIndex(*index); });
    else if (text)
        acedRefuse(Host::tr("颜色“%1”无效。").arg(*text));
}

static void linetype()
{
    const auto name = askText(Host::tr("\n输入已加载的线型名 <CONTINUOUS>: "));
    if (!name)
        return;
    const QString wanted = name->isEmpty() ? QStringLiteral("CONTINUOUS") : *name;
    const AcDbObjectPointer<AcDbSymbolTableRecord> known(
        acdbCurDwg()->tableRecord(SymbolTable::linetype, wanted), AcDb::kForRead);
    if (!known) {
        acedRefuse(Host::tr("没有加载线型“%1”。").arg(wanted));
        return;
    }
    const QString spelling = known->getName();
    askLayersOrCurrent(Host::tr("使用该线型"),
                       [&](AcDbLayerTableRecord &layer) { layer.setLinetype(spelling); });
}

static void plot()
{
    const auto choice =
        askKeyword(QStringLiteral("Plot No"), Host::tr("\n输入打印设置 [打印(P)/不打印(N)] <打印>: "),
                   QStringLiteral("Plot"));
    if (!choice)
        return;
    const bool plottable = *choice == QLatin1String("Plot");
    askLayersOrCurrent(Host::tr("使用该设置"),
                       [&](AcDbLayerTableRecord &layer) { layer.setIsPlottable(plottable); });
}

static void layer()
{
    static constexpr std::array<std::pair<const char *, void (*)()>, 13> kOptions{{{"?", listLayers},
                                                                                   {"Make", make},
                                                                                   {"Set", set},
                                                                                   {"New", create},
                                                                                   {"ON", turnOn},
                                                                                   {"OFF", turnOff},
                                                                                   {"Color", color},
                                                                                   {"Ltype", linetype},
                                                                                   {"Plot", plot},
                                                                                   {"Freeze", freeze},
                                                                                   {"Thaw", thaw},
                                                                                   {"LOck", lock},
                                                                                   {"Unlock", unlock}}};
    QStringList keywords;
    for (const auto &[name, option] : kOptions)
        keywords << QLatin1String(name);
    while (!acedEditor()->isCancelled()) {
        const auto choice =
            askKeyword(keywords.join(u' '),
                       Host::tr("\n输入选项 [?/新建并置为当前(M)/置为当前(S)/新建(N)/开(ON)/关(OFF)/"
                                "颜色(C)/线型(L)/打印(P)/冻结(F)/解冻(T)/锁定(LO)/解锁(U)]: "),
                       QString());
        if (!choice || choice->isEmpty())
            return;
        const auto option = std::ranges::find_if(
            kOptions, [&](const auto &entry) { return *choice == QLatin1String(entry.first); });
        if (option != kOptions.end())
            option->second();
    }
}

std::span<const Entry> layerCommands()
{
    static constexpr std::array entries{
        Entry{"LAYER", QT_TRANSLATE_NOOP("Host", "图层"), ACRX_CMD_MODAL, layer, "LA -LAYER"},
    };
    return entries;
}

} // namespace hostcommands
