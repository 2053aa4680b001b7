#include "quillnote/aids/tick_commands.h"

#include "quillnote/aids/tick_symbols.h"
#include "quillnote/authoring/mark_layer.h"
#include "quillnote/authoring/mark_targets.h"
#include "quillnote/entity/mark_state.h"
#include "quillnote/frame/settings/settings.h"

#include "host/acap/docman.h"
#include "host/acdb/dbents.h"
#include "host/aced/edfrontend.h"
#include "host/aced/edinput.h"
#include "host/aced/edmessage.h"
#include "host/aced/edselect.h"
#include "host/aced/edsysvar.h"
#include "host/acgi/display/display.h"

#include <QFileInfo>

#include <algorithm>
#include <array>
#include <optional>
#include <vector>

static constexpr settings::Number kHeight = u"YesTickHeight";

static bool isHeld(const char *key)
{
    return acedFrontEnd().heldKeys().contains(QLatin1String(key));
}

// Placing
// ----------------------------------------------------------------------------------------------------

namespace
{

/// System variables, and the current layer, are what they were when this ends.
class KeptVariables
{
public:
    KeptVariables() : m_layer(acedTextVar(QStringLiteral("CLAYER")))
    {
        for (std::size_t i = 0; i < kUnits.size(); ++i)
            m_units[i] = acedIntVar(kUnits[i].toString());
    }
    ~KeptVariables()
    {
        for (std::size_t i = 0; i < kUnits.size(); ++i)
            acedSetIntVar(kUnits[i].toString(), m_units[i]);
        if (acedTextVar(QStringLiteral("CLAYER")) != m_layer)
            acedSetVar(QStringLiteral("CLAYER"), {1, m_layer});
    }
    KeptVariables(const KeptVariables &) = delete;
    KeptVariables &operator=(const KeptVariables &) = delete;

    /// Symbols have no units: they come in as large as they are drawn.
    static void dropUnits()
    {
        for (const QStringView name : kUnits)
            acedSetIntVar(name.toString(), 0);
    }

private:
    static constexpr std::array<QStringView, 2> kUnits{u"INSUNITSDEFSOURCE", u"INSUNITSDEFTARGET"};

    std::array<int, kUnits.size()> m_units{};
    QString m_layer;
};

} // namespace

static bool hasAllFiles()
{
    for (std::size_t i = 0; i < kTickSymbols; ++i) {
        const QString file = tickFile(tickBlock(TickSymbol(i)));
        if (QFileInfo(file).isFile())
            continue;
        acedAlert(QStringLiteral("文件<%1>没有找到！").arg(file));
        return false;
    }
    return true;
}

static AcEdSelectionSet erasedAround(const AcGePoint3d &point, double size)
{
    const AcGeVector3d third(size / 3.0, size / 3.0, 0.0);
    const AcGePoint3d low = point - third;
    const AcGePoint3d high = point + third;
    AcEdSelectionSet ticks;
    if (acedSSGet(QStringLiteral("C"), &low, &high, tickFilter(), ticks) == RTNORM)
        eraseTicks(ticks);
    return ticks;
}

/// By the keys that are down as the point comes; none for Alt, which erases.
static std::optional<TickSymbol> heldSymbol()
{
    if (isHeld("Ctrl"))
        return TickSymbol::error;
    if (isHeld("Shift"))
        return TickSymbol::question;
    if (isHeld("Alt"))
        return std::nullopt;
    return settings::number(u"defaultGreen") != 0 ? TickSymbol::yesGreen : TickSymbol::yesRed;
}

static AcEdSelectionSet placed(TickSymbol symbol, const AcGePoint3d &point, double size)
{
    acedCommandS({QStringLiteral("_INSERT"), tickFile(tickBlock(symbol)), point, size, size, 0.0});
    AcEdSelectionSet last;
    acedSSGet(QStringLiteral("L"), nullptr, nullptr, {}, last);
    return last;
}

/// What was placed or erased, latest last; typing U takes it back one by one.
static void takeBack(std::vector<AcEdSelectionSet> &changed)
{
    if (changed.empty())
        return;
    for (const AcDbObjectId id : changed.back()) {
        if (const AcDbObjectPointer<AcDbEntity> tick(id, AcDb::kForWrite, true); tick)
            tick->erase(!tick->isErased());
    }
    changed.pop_back();
}

void QN3_YesOrErrTick()
{
    if (!hasAllFiles())
        return;
    const KeptVariables kept;
    const PickVariables quiet;
    KeptVariables::dropUnits();
    if (settings::number(u"useLayer") != 0)
        ensureMarkLayer(*acdbCurDwg());
    const double size = settings::number(kHeight);
    std::vector<AcEdSelectionSet> changed;
    for (;;) {
        AcGePoint3d point;
        acedInitGet(0, QStringLiteral("Undo"));
        const int result = acedGetPoint(nullptr, QStringLiteral("\n请点取标记位置(按住Ctrl打叉)>"), point);
        const auto symbol = heldSymbol();
        if (result == RTKWORD)
            takeBack(changed);
        else if (result != RTNORM)
            return;
        else if (symbol)
            changed.push_back(placed(*symbol, point, size));
        else
            changed.push_back(erasedAround(point, size));
    }
}

// All of them
// ------------------------------------------------------------------------------------------------

void QN3_TickErase()
{
    acutPrintf(QStringLiteral(
        "\n删除叉和对勾标记，请选择，程序会自动过滤。若键入 ALL并回车将删除全部叉和对勾标记。"));
    AcEdSelectionSet ticks;
    if (acedSSGet(QString(), nullptr, nullptr, tickFilter(), ticks) == RTNORM)
        eraseTicks(ticks);
}

static void resizeAll(double factor)
{
    AcDbDatabase &database = *acdbCurDwg();
    for (const AcDbObjectId id : findTicks(database)) {
        if (const AcDbObjectPointer<AcDbEntity> tick(id, AcDb::kForWrite); tick)
            multiplyTickScale(*tick, factor);
    }
    markDrawingState().flagScale *= factor;
    acgi::displayOf(database).regenerate();
}

static constexpr double kLarger = 1.5;
static constexpr double kSmaller = 0.75;

static bool isTurnedRound()
{
    return isHeld("Shift") || isHeld("Ctrl");
}

void QN3_TickBIG()
{
    resizeAll(isTurnedRound() ? kSmaller : kLarger);
}

void QN3_TickSmall()
{
    resizeAll(isTurnedRound() ? kLarger : kSmaller);
}

void QN3_TickHeight()
{
    double height = 0.0;
    const QString prompt = QStringLiteral("\n请输入对勾标记的高度[%1]: ").arg(settings::number(kHeight));
    if (acedGetReal(prompt, height) != RTNORM)
        return;
    constexpr double kMost = 2147483647.0;
    settings::setNumber(kHeight, height < 1.0 ? kHeight->range.otherwise : int(std::min(height, kMost)));
}
