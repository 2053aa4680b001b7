// The module over one open drawing, for the tests of its commands.
#pragma once

#include "quillnote/authoring/collect_marks.h"
#include "quillnote/authoring/new_mark.h"
#include "quillnote/entity/mark_class.h"
#include "quillnote/entity/mark_record.h"
#include "quillnote/entity/mark_state.h"
#include "quillnote/entity/password.h"
#include "quillnote/frame/command_table.h"
#include "quillnote/frame/reactors.h"
#include "quillnote/frame/settings/settings.h"
#include "quillnote/frame/settings/start_up_settings.h"
#include "quillnote/ui/ask_password.h"

#include "host/acdb/dbundo.h"
#include "host/aced/edcommands.h"
#include "host/aced/hostcommands.h"
#include "host/acgi/query/install.h"
#include "tests/support/memory_drawing.h"
#include "tests/support/script_front_end.h"
#include "tests/support/whole_drawing.h"

#include <gmock/gmock.h>

struct AuthoringTest : testing::Test {
    AuthoringTest()
    {
        registerCommands();
        acgi::install();
        acedRegisterHostCommands();
        registerMarkClass();
        createDocumentRegistry();
        createReactors();
        installPasswordPrompt();
        passwordState().reset();
        startUpSettings().reset();
        settings::setNumber(u"useLayer", 0);
        settings::setNumber(u"noPlotLayer", 0);
        settings::setText(u"LayerName", u"");
        settings::setText(u"chPwMD5", u"");
        settings::setText(u"name", u"张工");
        drawing = std::make_unique<tests::OpenDrawing>(tests::MemoryDrawing().open());
    }
    ~AuthoringTest() override
    {
        drawing.reset();
        removePasswordPrompt();
        deleteReactors();
        acedRegCmds()->removeGroup(QString::fromUtf16(kCommandGroup));
        unregisterMarkClass();
    }
    AcDbDatabase &database() const { return drawing->database(); }
    AcDbObjectId make(const QString &reviewer = QStringLiteral("张工"), const QString &text = {}) const
    {
        NewMark request;
        request.corner2 = {20, 10, 0};
        request.reviewerName = reviewer;
        request.opinionText = text;
        return createMark(database(), request);
    }
    /// What a test changed between commands becomes a step of its own.
    void closeStep() const { const AcDbUndoGroup next(database(), {}); }
    /// Runs a command of the module; what it printed.
    static QString run(const QString &command, const QStringList &answers = {},
                       const QStringList &dialogLines = {})
    {
        tests::ScriptFrontEnd script(answers, dialogLines);
        acedEditor()->runCommand(command);
        EXPECT_TRUE(script.isUsedUp()) << qPrintable(command);
        return script.printed;
    }
    /// The command says this and changes nothing, also no undo step.
    void expectRefused(const QString &command, const QStringList &answers, const QString &said,
                       const QStringList &dialogLines = {}) const
    {
        closeStep();
        const auto before = tests::wholeDrawing(database());
        const std::size_t position = database().undo().position();
        EXPECT_TRUE(run(command, answers, dialogLines).contains(said)) << qPrintable(command + said);
        EXPECT_EQ(tests::wholeDifference(before, tests::wholeDrawing(database())), QStringList());
        EXPECT_EQ(database().undo().position(), position) << qPrintable(command + said);
    }
    /// The command is one step: undo brings the whole drawing back, redo its result.
    QString runAndBack(const QString &command, const QStringList &answers = {},
                       const QStringList &dialogLines = {}) const
    {
        closeStep();
        const auto before = tests::wholeDrawing(database());
        const std::size_t position = database().undo().position();
        const QString printed = run(command, answers, dialogLines);
        const auto after = tests::wholeDrawing(database());
        EXPECT_EQ(database().undo().position(), position + 1);
        EXPECT_TRUE(database().undo().undo());
        EXPECT_EQ(tests::wholeDifference(before, tests::wholeDrawing(database())), QStringList());
        EXPECT_TRUE(database().undo().redo());
        EXPECT_EQ(tests::wholeDifference(after, tests::wholeDrawing(database())), QStringList());
        return printed;
    }
    std::unique_ptr<tests::OpenDrawing> drawing;
};
