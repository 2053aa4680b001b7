#include "quillnote/frame/command_table.h"

#include "quillnote/aids/tick_commands.h"
#include "quillnote/authoring/align_marks.h"
#include "quillnote/authoring/all_marks.h"
#include "quillnote/authoring/flag_refresh.h"
#include "quillnote/authoring/mark_leaders.h"
#include "quillnote/authoring/mark_opinion.h"
#include "quillnote/authoring/mark_targets.h"
#include "quillnote/authoring/mark_vertices.h"
#include "quillnote/authoring/native_conversion.h"
#include "quillnote/authoring/numbering.h"
#include "quillnote/authoring/polygon_mark.h"
#include "quillnote/exchange/courier_files.h"
#include "quillnote/exchange/export_marks.h"
#include "quillnote/exchange/import_marks.h"
#include "quillnote/exchange/synchronisation.h"
#include "quillnote/frame/helper_programs.h"
#include "quillnote/frame/menu_loading.h"
#include "quillnote/frame/setup.h"
#include "quillnote/frame/small_commands.h"
#include "quillnote/reports/review_page.h"
#include "quillnote/reports/review_sheet.h"
#include "quillnote/reports/text_report.h"
#include "quillnote/reports/web_report.h"
#include "quillnote/reports/xml_report.h"
#include "quillnote/review/ask_commands.h"
#include "quillnote/review/view_by_name_command.h"
#include "quillnote/snapshot/commands/compare_snapshots.h"
#include "quillnote/snapshot/commands/delete_pictures.h"
#include "quillnote/snapshot/commands/refresh_snapshots.h"
#include "quillnote/snapshot/full_snapshot_view.h"

#include "host/aced/edcommands.h"
#include "host/aced/edinput.h"

#include <algorithm>
#include <string_view>

static constexpr int kModal = ACRX_CMD_MODAL;
static constexpr int kTransparent = ACRX_CMD_TRANSPARENT;
static constexpr int kPickSet = ACRX_CMD_USEPICKSET;
static constexpr int kSession = ACRX_CMD_SESSION;

/// Names in the demand-load record.
static constexpr RecordedNames kNotRecorded{nullptr, nullptr};
static constexpr RecordedNames kAsNamed{"", ""};

// A null function marks a command that is not built yet.
// clang-format off
static constexpr CommandRow kCommands[] = {
    // global name, local name, flags, demand-load record, function
    {"QN8_SynningOn", "SynningOn", kModal, kNotRecorded, QN8_SynningOn},
    {"QN8_SynningOff", "SynningOff", kModal, kNotRecorded, QN8_SynningOff},
    {"QN3_Quillnote", "QN3_Quillnote", kModal, kAsNamed, QN3_Quillnote},
    {"QN3_QuillnoteLeader", "QN3_leader", kModal, kAsNamed, QN3_QuillnoteLeader},
    {"QN3_PolygonMark", "PolygonMark", kModal, kNotRecorded, QN3_PolygonMark},
    {"QN3_PolygonMarkJig", "PolygonMark2", kModal, kNotRecorded, QN3_PolygonMarkJig},
    {"QN3_SplineMarkJig", "PolygonMark3", kModal, kNotRecorded, QN3_SplineMarkJig},
    {"QN3_addAleadLine", "addAleadLine", kModal, kNotRecorded, QN3_addAleadLine},
    {"QN3_EasyDraw", "QN3_EASY", kModal, kAsNamed, QN3_EasyDraw},
    {"QN3_QNeditMark", "QN3_Edit", kModal, kAsNamed, QN3_QNeditMark},
    {"QN3_YesOrErrTick", "QN3_Yes", kModal, kAsNamed, QN3_YesOrErrTick},
    {"QN3_TickErase", "QN3_TickErase", kModal, kAsNamed, QN3_TickErase},
    {"QN3_TickBIG", "QN3_TickBIG", kModal, kAsNamed, QN3_TickBIG},
    {"QN3_TickSmall", "QN3_TickSmall", kModal, kAsNamed, QN3_TickSmall},
    {"QN3_TickHeight", "QN3_TickHeight", kModal, kAsNamed, QN3_TickHeight},
    {"QN3_QuillnoteOutput", "QN3_QuillnoteOutput", kModal, kAsNamed, QN3_outputHtml},
    {"QN3_QuillnoteOutputTxt", "QN3_txt", kModal, kAsNamed, QN3_QuillnoteOutputTxt},
    {"QN3_QuillnoteOutput2", "QN3_QuillnoteOutput2", kModal, kAsNamed, QN3_outputHtmlWithNoPng},
    {"QN3_outputHtml", "QN3_Html", kModal, kAsNamed, QN3_outputHtml},
    {"QN3_outputHtmlWithNoPng", "QN3_HtmlN", kModal, kAsNamed, QN3_outputHtmlWithNoPng},
    {"QN8_ToXml", "QN8_ToXml", kModal, kAsNamed, QN8_ToXml},
    {"qn8_quillNoteYun", "quillNoteYun", kModal, kAsNamed, qn8_quillNoteYun},
    {"QN8_menuToYun", "QN8_menuToYun", kModal, kAsNamed, QN8_menuToYun},
    {"qn8_runPush", "qn8_runPush", kModal, kAsNamed, qn8_runPush},
    {"qn8_aboutYun", "qn8_aboutYun", kModal, kAsNamed, qn8_aboutYun},
    {"qn8_align1", "qn8_align1", kModal, kAsNamed, qn8_align1},
    {"qn8_align2", "qn8_align2", kModal, kAsNamed, qn8_align2},
    {"qn8_align0", "qn8_align0", kModal, kAsNamed, qn8_align0},
    {"qn8_drawlink", "qn8_drawlink", kSession, kAsNamed, nullptr},
    {"qn8_LinkDblClick", "qn8_LinkDblClick", kSession | kTransparent | kPickSet, kAsNamed, nullptr},
    {"QN8_LinksHide", "QN8_LinksHide", kModal, kAsNamed, nullptr},
    {"QN8_LinksDel", "QN8_LinksDel", kModal, kNotRecorded, nullptr},
    {"QN3_QuillnoteAsk", "QN3_QNAsk", kModal, kAsNamed, QN3_QuillnoteAsk},
    {"QN3_QuillnoteAsk2", "QN3_QNAsk2", kTransparent | kPickSet, kAsNamed, QN3_QuillnoteAsk2},
    {"QN3_addVertext", "QN3_addV", kTransparent | kPickSet, kNotRecorded, QN3_addVertext},
    {"QN3_allMarksShrink", "QN3_Shrink", kModal, kAsNamed, QN3_allMarksShrink},
    {"QN3_Redraw", "QN3_Redraw", kModal, kAsNamed, QN3_Redraw},
    {"QN3_AutoRedraw", "QN3_Auto", kModal, kNotRecorded, QN3_AutoRedraw},
    {"QN3_AutoOFF", "QN3_AutoOFF", kModal, kNotRecorded, QN3_AutoOFF},
    {"QN3_allMarksShow", "QN3_Show", kModal, {"QN3_Show", "QN3_allMarksShow"}, QN3_allMarksShow},
    {"QN3_allMarksHide", "QN3_Hide", kModal, kAsNamed, QN3_allMarksHide},
    {"QN3_ShowType", "QN3_ShowType", kModal, kAsNamed, QN3_ShowType},
    {"QN3_ShowText", "QN3_ShowText", kModal, kAsNamed, QN3_ShowText},
    {"QN3_reNumber", "QN3_reNumber", kModal, kAsNamed, QN3_reNumber},
    {"QN8_editNumber", "QN8_editNumber", kModal, kNotRecorded, QN8_editNumber},
    {"QN3_delSnapBitmapAll", "QN3_delSnapBitmap", kModal, {"QN3_delSnapBitmapAll", "QN3_delSnapBitmapAll"}, QN3_delSnapBitmapAll},
    {"qn3_wantReturn", "qn3_wantReturn", kModal, kAsNamed, qn3_wantReturn},
    {"QN3_whiteAll", "QN3_whiteAll", kModal, kAsNamed, nullptr},
    {"QN3_restoreColorAll", "QN3_restoreColorAll", kModal, kAsNamed, nullptr},
    {"QN3_DataFileOut", "QN3_DataFileOut", kModal, {"QN3_DataFileOut", "QN3f1"}, QN3_DataFileOut},
    {"QN3_DataFileIn", "QN3_DataFileIn", kModal, {"QN3_DataFileIn", "QN3f2"}, QN3_DataFileIn},
    {"-QN3_DataFileIn", "-QN3_DataFileIn", kModal, kNotRecorded, QN3_DataFileInQuiet},
    {"QN3_Setup", "quillNoteSetup", kModal, {"QN3_Setup", "QN3_Setup"}, QN3_Setup},
    {"QN8_whiteAttach", "QN8_whiteAttach", kModal, kNotRecorded, nullptr},
    {"QN8_xclip", "QN8_xclip", kModal, kNotRecorded, nullptr},
    {"QN8_setDiTuColor", "setDiTuColor", kModal, kNotRecorded, nullptr},
    {"QN8_ToNativeEnt", "toNativeEnt", kModal, kNotRecorded, QN8_ToNativeEnt},
    {"QN3_freshSnapshot", "QN3_freshSnap", kModal, {"QN3_freshSnapshot", "QN3_freshSnapshot"}, QN3_freshSnapshot},
    {"QN3_compareSnapshot", "QN3_cmpSnap", kModal, {"QN3_compareSnapshot", "QN3_compareSnapshot"}, QN3_compareSnapshot},
    {"QN3_ViewByName", "QN3_ViewByName", kModal, kAsNamed, QN3_ViewByName},
    {"QN3_FullSnapshotView", "QN3_FullSnapView", kModal, {"QN3_FullSnapshotView", "QN3_FullSnapshotView"}, QN3_FullSnapshotView},
    {"QN3_gotoWWW", "QN3_gotoWWW", kModal, kAsNamed, QN3_gotoWWW},
    {"QN3_HelpOnline", "QN3_HelpOnline", kModal, kAsNamed, QN3_HelpOnline},
    {"ptbq0", "ptbqMenu0", kModal, kNotRecorded, ptbq0},
    {"ptbq", "ptbqMenu", kModal, kNotRecorded, ptbq},
    // Commands of later versions stand behind the others.
    {"QN3_outputPage", "QN3_Page", kModal, kNotRecorded, QN3_outputPage},
    {"QN8_SynningPlace", "SynningPlace", kModal, kNotRecorded, QN8_SynningPlace},
};
// clang-format on

std::span<const CommandRow> commandTable()
{
    return kCommands;
}

static void sayNotBuilt(const char *globalName)
{
    acedRefuse(QStringLiteral("命令 %1 在此版本中尚未提供。").arg(QString::fromLatin1(globalName)));
}

void registerCommands()
{
    for (const CommandRow &row : kCommands) {
        std::function<void()> function;
        if (row.function)
            function = row.function;
        else
            function = [name = row.globalName] { sayNotBuilt(name); };
        acedRegCmds()->addCommand({.group = QString::fromUtf16(kCommandGroup),
                                   .globalName = QString::fromLatin1(row.globalName),
                                   .localName = QString::fromLatin1(row.localName),
                                   .flags = row.function ? row.flags : row.flags | kCommandNotBuilt,
                                   .function = std::move(function)});
    }
}

std::vector<AcadAppInfo::Command> recordedCommands()
{
    std::vector<AcadAppInfo::Command> names;
    for (const CommandRow &row : kCommands) {
        if (!row.recorded.global)
            continue;
        const bool asNamed = std::string_view(row.recorded.global).empty();
        names.push_back({QString::fromLatin1(asNamed ? row.globalName : row.recorded.global),
                         QString::fromLatin1(asNamed ? row.localName : row.recorded.local)});
    }
    return names;
}
