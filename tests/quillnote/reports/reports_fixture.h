// A drawing with marks of every kind that reports tell apart, and commands run on it.
#pragma once

#include "quillnote/authoring/collect_marks.h"
#include "quillnote/authoring/new_mark.h"
#include "quillnote/entity/mark_class.h"
#include "quillnote/entity/mark_record.h"
#include "quillnote/entity/mark_values.h"
#include "quillnote/frame/settings/settings.h"

#include "host/aced/edcommands.h"
#include "host/aced/edinput.h"
#include "host/aced/edspace.h"
#include "host/aced/hostcommands.h"
#include "host/acgi/query/install.h"
#include "host/os/shell.h"
#include "tests/support/files.h"
#include "tests/support/golden.h"
#include "tests/support/memory_drawing.h"
#include "tests/support/script_front_end.h"

#include <gmock/gmock.h>

struct ReportsTest : testing::Test {
    ReportsTest()
    {
        acgi::install();
        acedRegisterHostCommands();
        registerMarkClass();
        settings::setText(u"name", u"王工");
        settings::setText(u"Location", folder.path(QStringLiteral("installed/")));
        settings::setText(u"TempleteHTML", u"");
        settings::setNumber(u"useTemplet", 0);
        os::setShellRecorder([this](const os::ShellRequest &request) { requests.push_back(request); });
    }
    ~ReportsTest() override
    {
        os::setShellRecorder({});
        settings::setText(u"Location", u"");
        unregisterMarkClass();
    }

    static AcDbObjectId mark(AcDbDatabase &database, const QString &text,
                             std::int16_t status = handling::kNone, const QString &feedback = {})
    {
        NewMark request;
        request.corner2 = {20, 10, 0};
        request.reviewerName = QStringLiteral("王工");
        request.opinionText = text;
        const AcDbObjectId id = createMark(database, request);
        AcDbObjectPointer<QuillnoteObj3> made(id, AcDb::kForWrite);
        made->feedbackContent = feedback;
        made->feedbackType = status;
        return id;
    }

    inline static const QString kLongText = QString(64 * 1024, u'长');

    /// One mark a state: answered, sub-numbered, with leader, hostile, hidden, drawn by hand and with 64 KB
    /// of text, on a sheet, without a name and with a status that is none.
    static void addEveryKind(const tests::OpenDrawing &drawing)
    {
        AcDbDatabase &database = drawing.database();
        mark(database, QStringLiteral("门洞净宽 900，请核对\r\n第 2 行"));
        {
            AcDbObjectPointer<QuillnoteObj3> made(
                mark(database, QStringLiteral("二"), handling::kDisputed, QStringLiteral("已改")),
                AcDb::kForWrite);
            made->markNumber = 5;
            made->subNumber = 2;
            made->feedbackName = QStringLiteral("李工");
        }
        {
            AcDbObjectPointer<QuillnoteObj3> made(
                mark(database, {}, handling::kPartlyCorrected, QStringLiteral("部分")), AcDb::kForWrite);
            made->leaderMode = LeaderMode::leader;
            made->textBoxCorner1 = {30, 20, 0};
            made->textBoxCorner2 = {60, 40, 0};
        }
        mark(database, QStringLiteral("<script>alert(1)</script> \"引号\" & 'x'"), handling::kCorrected);
        mark(database, QStringLiteral("😀 m² Ø12"), handling::kRefused);
        AcDbObjectPointer<QuillnoteObj3>(mark(database, QStringLiteral("隐藏")), AcDb::kForWrite)
            ->displayMode = DisplayMode::hidden;
        AcDbObjectPointer<QuillnoteObj3>(mark(database, kLongText), AcDb::kForWrite)->sketchData =
            QByteArray("no sketch");
        acedMakeSpaceCurrent(drawing.document(), database.paperSpaceId());
        AcDbObjectPointer<QuillnoteObj3> last(mark(database, QStringLiteral("图纸空间"), 9), AcDb::kForWrite);
        last->suggestionName.clear();
        acedMakeSpaceCurrent(drawing.document(), database.modelSpaceId());
    }

    /// With short names for the path of the drawing and for the long text.
    static QByteArray shortened(const QString &report, const QString &drawing)
    {
        const QByteArray longText = QByteArray("\xb3\xa4").repeated(kLongText.size());
        return tests::readFile(report).replace(drawing.toUtf8(), "<DRAWING>").replace(longText, "<LONG>");
    }

    tests::TempDir folder;
    std::vector<os::ShellRequest> requests;
};
