// Every command that changes a drawing, as a user runs it: one step, and undo and redo bring back the whole
// drawing. The program's own module is loaded, so the commands are the shipped ones.
#include "app/console/modules.h"
#include "host/acap/docman.h"
#include "host/acdb/dbundo.h"
#include "host/aced/edcommands.h"
#include "host/aced/hostcommands.h"
#include "host/acgi/query/install.h"
#include "host/acrx/rxmodule.h"
#include "host/acui/acuiinstall.h"
#include "tests/support/files.h"
#include "tests/support/script_front_end.h"
#include "tests/support/whole_drawing.h"

#include <gmock/gmock.h>

/// What a user types, one line an answer; lines that begin with "@" answer dialogs.
struct CommandCase {
    const char *name;
    const char *lines;
    int steps = 1; ///< Undo steps that it makes.
};

static void PrintTo(const CommandCase &row, std::ostream *out)
{
    *out << row.name;
}

// Two rectangle marks, a leader mark and a polygon mark stand in the drawing before each case.
static const char *const kMarks = "QN3_Quillnote\n4500,-300\n6500,1200\n@set 1003 \"one\"\n@ok\n"
                                  "QN3_Quillnote\n300,500\n1200,2900\n@set 1003 \"two\"\n@ok\n"
                                  "QN3_QuillnoteLeader\n2000,2000\n3000,5000\n@set 1003 \"three\"\n@ok\n"
                                  "QN3_PolygonMark\n7000,1000\n9000,1000\n8000,3000\n\n"
                                  "QN8_editNumber\n2000,2000\n30\n";

static const CommandCase kCases[] = {
    {"line", "LINE\n0,0\n50,60\n90,10\n\n"},
    {"circle", "CIRCLE\n300,300\n25\n"},
    {"text", "TEXT\n10,10\n20\n0\nsome text\n"},
    {"erase everything", "ERASE\nALL\n\n"},
    {"move everything", "MOVE\nALL\n\n0,0\n10,20\n"},
    {"copy everything", "COPY\nALL\n\n0,0\n15000,0\n\n"},
    {"rotate everything", "ROTATE\nALL\n\n0,0\n30\n"},
    {"scale everything", "SCALE\nALL\n\n0,0\n2\n"},
    {"mirror everything", "MIRROR\nALL\n\n0,0\n0,10\nN\n"},
    {"mirror and erase", "MIRROR\nALL\n\n0,0\n0,10\nY\n"},
    {"new layer", "LAYER\nM\nNEW\nC\n3\n\n\n"},
    {"rectangle mark", "QN3_Quillnote\n0,0\n100,100\n@set 1003 \"new\"\n@ok\n"},
    {"leader mark", "QN3_QuillnoteLeader\n0,0\n100,100\n@set 1003 \"new\"\n@ok\n"},
    {"polygon mark", "QN3_PolygonMark\n0,0\n100,0\n100,100\n\n"},
    {"polygon mark with a text",
     "QN3_PolygonMarkJig\n0,0\n100,0\n100,100\n\n500,500\n@set 1003 \"new\"\n@ok\n"},
    {"spline mark without text", "QN3_SplineMarkJig\n0,0\n100,0\n100,100\n\n\n"},
    {"vertex", "QN3_addVertext\n8000,1000\n"},
    {"leaders", "QN3_addAleadLine\n2000,2000\n2500,2500\n2600,2500\n\n"},
    {"opinion", "QN3_QNeditMark\n2000,2000\n@set 1003 \"changed\"\n@ok\n"},
    {"number", "QN8_editNumber\n2000,2000\n20\n"},
    {"new numbers", "QN3_reNumber\nYES\n"},
    {"hidden marks", "QN3_allMarksHide\n"},
    {"shrunk marks", "QN3_allMarksShrink\n"},
    {"plain entities", "QN8_ToNativeEnt\n"},
};

struct UndoOfCommands : testing::TestWithParam<CommandCase> {
    static void SetUpTestSuite()
    {
        acgi::install();
        acuiInstall();
        acedRegisterHostCommands();
        tests::ScriptFrontEnd quiet;
        console::loadModules();
    }
    static void TearDownTestSuite()
    {
        tests::ScriptFrontEnd quiet;
        acrxDynamicLinker()->unloadAll();
        acuiUninstall();
    }
    UndoOfCommands()
    {
        const auto opened = acDocManager()->openDocument(tests::samplePath(QStringLiteral("plan.dxf")));
        if (opened)
            document = *opened;
        run(kMarks);
    }
    ~UndoOfCommands() override { acDocManager()->closeDocument(document); }

    /// Runs typed lines to their end; what the editor printed.
    static void run(const char *lines)
    {
        tests::ScriptFrontEnd script;
        for (const QString &line :
             QString::fromUtf8(lines).split(u'\n').first(QString::fromUtf8(lines).count(u'\n'))) {
            if (line.startsWith(u'@'))
                script.addDialogLine(line.mid(1));
            else
                script.add(line);
        }
        acedEditor()->processInput();
        ASSERT_TRUE(script.isUsedUp()) << script.printed.toStdString();
        ASSERT_TRUE(script.refusals.isEmpty()) << script.printed.toStdString();
    }

    tests::ScriptFrontEnd quiet;
    AcApDocument *document = nullptr;
};

TEST_P(UndoOfCommands, BringsBackTheWholeDrawing)
{
    AcDbDatabase &database = *document->database();
    AcDbUndo &undo = database.undo();
    const auto before = tests::wholeDrawing(database);
    const std::size_t position = undo.position();
    run(GetParam().lines);
    const auto after = tests::wholeDrawing(database);
    ASSERT_FALSE(before == after) << "the command changed nothing";
    ASSERT_EQ(undo.position(), position + std::size_t(GetParam().steps));
    for (int round = 0; round < 2; ++round) {
        for (int step = 0; step < GetParam().steps; ++step)
            ASSERT_TRUE(undo.undo());
        EXPECT_EQ(tests::wholeDifference(before, tests::wholeDrawing(database)), QStringList());
        for (int step = 0; step < GetParam().steps; ++step)
            ASSERT_TRUE(undo.redo());
        EXPECT_EQ(tests::wholeDifference(after, tests::wholeDrawing(database)), QStringList());
    }
}

INSTANTIATE_TEST_SUITE_P(Commands, UndoOfCommands, testing::ValuesIn(kCases));
