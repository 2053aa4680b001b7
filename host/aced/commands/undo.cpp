// UNDO, U and REDO. What a step was is told by its command's name.
#include "host/acdb/dbundo.h"
#include "host/aced/commands/commandtables.h"
#include "host/aced/commands/support.h"
#include "host/base/host_text.h"

#include <algorithm>
#include <array>

namespace hostcommands
{

static AcDbUndo &undoLog()
{
    return acdbCurDwg()->undo();
}

/// The steps of a group that UNDO Begin opened are one step, and only when the group has ended.
static bool refuseInGroup()
{
    if (undoLog().isOpen())
        acedRefuse(Host::tr("正在编组，请先结束编组 (UNDO End)。"));
    return undoLog().isOpen();
}

static void undoSteps(int count)
{
    if (refuseInGroup())
        return;
    for (int i = 0; i < count; ++i) {
        const QStringList labels = undoLog().undoLabels();
        if (!undoLog().undo()) {
            acutPrintf(Host::tr("\n所有操作都已放弃。"));
            break;
        }
        acutPrintf((i == 0 ? QStringLiteral("\n") : QString()) + labels.value(0) + u' ');
    }
    // Marks in what was undone are gone.
    std::erase_if(DocumentMemory::of(curDoc()).undoMarks,
                  [](std::size_t mark) { return mark > undoLog().position(); });
}

static void undoOne()
{
    undoSteps(1);
}

static void redo()
{
    if (refuseInGroup())
        return;
    const QStringList labels = undoLog().redoLabels();
    if (undoLog().redo())
        acutPrintf(u'\n' + labels.value(0));
    else
        acutPrintf(Host::tr("\n没有可重做的操作。"));
}

static void beginGroup()
{
    DocumentMemory &memory = DocumentMemory::of(curDoc());
    // A group within a group is the same group.
    if (!std::exchange(memory.groupOpen, true))
        undoLog().beginGroup(QStringLiteral("GROUP"));
}

static void endGroup()
{
    if (std::exchange(DocumentMemory::of(curDoc()).groupOpen, false))
        undoLog().endGroup();
    else
        acutPrintf(Host::tr("\n没有打开的编组。"));
}

static void mark()
{
    if (!refuseInGroup())
        DocumentMemory::of(curDoc()).undoMarks.push_back(undoLog().position());
}

static void backToMark()
{
    std::vector<std::size_t> &marks = DocumentMemory::of(curDoc()).undoMarks;
    std::size_t target = 0;
    if (!marks.empty()) {
        target = marks.back();
        marks.pop_back();
    } else if (!askYes(Host::tr("\n没有标记，这将放弃所有操作。确定吗?"), true).value_or(false)) {
        return;
    }
    const std::size_t position = undoLog().position();
    undoSteps(position > target ? int(position - target) : 0);
}

static void undo()
{
    acedInitGet(RSG_NOZERO | RSG_NONEG, QStringLiteral("BEgin End Mark Back"));
    int count = 1;
    const int result =
        acedGetInt(Host::tr("\n输入要放弃的操作数目或 [开始(BE)/结束(E)/标记(M)/后退(B)] <1>: "), count);
    if (result == RTNORM || result == RTNONE) {
        undoSteps(result == RTNORM ? count : 1);
        return;
    }
    if (result != RTKWORD)
        return;
    static constexpr std::array<std::pair<const char *, void (*)()>, 4> kActions{
        {{"BEgin", beginGroup}, {"End", endGroup}, {"Mark", mark}, {"Back", backToMark}}};
    const QString keyword = acedGetInput();
    for (const auto &[name, action] : kActions) {
        if (keyword == QLatin1String(name))
            action();
    }
}

std::span<const Entry> undoCommands()
{
    static constexpr std::array entries{
        Entry{"UNDO", QT_TRANSLATE_NOOP("Host", "撤销"), ACRX_CMD_NOUNDO, undo},
        Entry{"U", QT_TRANSLATE_NOOP("Host", "撤销"), ACRX_CMD_NOUNDO, undoOne},
        Entry{"REDO", QT_TRANSLATE_NOOP("Host", "重做"), ACRX_CMD_NOUNDO, redo},
    };
    return entries;
}

} // namespace hostcommands
