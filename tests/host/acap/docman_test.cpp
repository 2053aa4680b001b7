// The document manager: opening, saving, closing, locks, and the order in which others are told.
#include "host/acap/docman.h"

#include "host/acap/docview.h"
#include "host/acdb/dbsymtb.h"
#include "host/acdb/dbundo.h"

#include "host/acrx/rxmodule.h"
#include "tests/support/files.h"
#include "tests/support/memory_drawing.h"

#include <gmock/gmock.h>

#include <QFile>

using testing::ElementsAre;

namespace
{

/// Writes down what it is told, as "created plan.dxf (current: none)".
class Recorder : public AcApDocManagerReactor
{
public:
    explicit Recorder(AcApDocManager &manager) : m_manager(manager) { m_manager.addReactor(this); }
    ~Recorder() override { m_manager.removeReactor(this); }

    void documentCreated(AcApDocument *document) override { note("created", document); }
    void documentToBeDestroyed(AcApDocument *document) override { note("toBeDestroyed", document); }
    void documentToBeActivated(AcApDocument *document) override { note("toBeActivated", document); }
    void documentActivated(AcApDocument *document) override { note("activated", document); }
    void documentToBeDeactivated(AcApDocument *document) override { note("toBeDeactivated", document); }
    void documentLockModeChanged(AcApDocument *document) override
    {
        events.push_back("lock " + std::to_string(document->lockMode()));
    }

    std::vector<std::string> events;

private:
    void note(const char *event, AcApDocument *document)
    {
        const AcApDocument *const current = m_manager.curDocument();
        events.push_back(std::string(event) + ' ' + document->docTitle().toStdString() +
                         " (current: " + (current ? current->docTitle().toStdString() : "none") + ')');
    }

    AcApDocManager &m_manager;
};

std::vector<int> &moduleMessages()
{
    static std::vector<int> messages;
    return messages;
}

AcRx::AppRetCode recordMessage(AcRx::AppMsgCode message, void *packet)
{
    moduleMessages().push_back(message);
    if (message == AcRx::kInitAppMsg)
        acrxDynamicLinker()->unlockApplication(packet);
    return AcRx::kRetOK;
}

std::unique_ptr<AcDbDatabase> emptyDrawing()
{
    return tests::MemoryDrawing().open();
}

void change(AcApDocument &document, int number)
{
    document.database()->setHeaderVariable("$USERI1", {{70, std::int64_t(number)}});
}

const QByteArray kSmallDxf = "0\nSECTION\n2\nENTITIES\n0\nLINE\n8\n0\n10\n1.0\n20\n2.0\n11\n3.0\n21\n4.0\n"
                             "0\nENDSEC\n0\nEOF\n";

} // namespace

TEST(DocumentManager, TellsOfDocumentsInOrder)
{
    AcApDocManager manager;
    Recorder recorder(manager);
    manager.addDocument(emptyDrawing(), "/plans/a.dxf");
    AcApDocument *const b = manager.addDocument(emptyDrawing(), {});
    manager.closeDocument(b);

    EXPECT_THAT(recorder.events,
                ElementsAre("created a.dxf (current: none)", "toBeActivated a.dxf (current: none)",
                            "activated a.dxf (current: a.dxf)", "created Drawing1.dxf (current: a.dxf)",
                            "toBeDeactivated a.dxf (current: a.dxf)",
                            "toBeActivated Drawing1.dxf (current: a.dxf)",
                            "activated Drawing1.dxf (current: Drawing1.dxf)",
                            "toBeDeactivated Drawing1.dxf (current: Drawing1.dxf)",
                            "toBeDestroyed Drawing1.dxf (current: Drawing1.dxf)",
                            "toBeActivated a.dxf (current: none)", "activated a.dxf (current: a.dxf)"));
}

TEST(DocumentManager, ModulesHearOfADrawingWhenItIsCurrent)
{
    acrxDynamicLinker()->attachModule("recorder", recordMessage);
    moduleMessages().clear();
    AcApDocument *const document = acDocManager()->addDocument(emptyDrawing(), {});
    EXPECT_EQ(acdbCurDwg(), document->database());
    EXPECT_THAT(moduleMessages(), ElementsAre(AcRx::kLoadDwgMsg));
    acDocManager()->closeDocument(document);
    EXPECT_EQ(curDoc(), nullptr);
    EXPECT_THAT(moduleMessages(), ElementsAre(AcRx::kLoadDwgMsg, AcRx::kUnloadDwgMsg));
    EXPECT_TRUE(acrxDynamicLinker()->unloadModule("recorder"));
}

TEST(DocumentManager, ClosingAnotherDocumentLeavesTheCurrentOne)
{
    AcApDocManager manager;
    AcApDocument *const first = manager.addDocument(emptyDrawing(), "/plans/a.dxf");
    AcApDocument *const second = manager.addDocument(emptyDrawing(), "/plans/b.dxf");
    Recorder recorder(manager);
    manager.closeDocument(first);
    EXPECT_EQ(manager.curDocument(), second);
    EXPECT_THAT(recorder.events, ElementsAre("toBeDestroyed a.dxf (current: b.dxf)"));
    manager.closeDocument(first); // Not open any more: nothing happens.
    EXPECT_EQ(manager.documents().size(), 1u);
}

TEST(DocumentManager, AFileIsOpenOnce)
{
    const tests::TempDir folder;
    const QString file = folder.write("plan.dxf", kSmallDxf);
    QFile::link(file, folder.path("link.dxf"));
    AcApDocManager manager;
    const auto opened = manager.openDocument(file);
    ASSERT_TRUE(opened) << qPrintable(opened.error());
    manager.newDocument();
    ASSERT_NE(manager.curDocument(), *opened);
    for (const QString &again : {file, folder.path("./plan.dxf"), folder.path("link.dxf")}) {
        const auto second = manager.openDocument(again);
        ASSERT_TRUE(second) << qPrintable(again);
        EXPECT_EQ(*second, *opened) << qPrintable(again);
    }
    EXPECT_EQ(manager.curDocument(), *opened);
    EXPECT_EQ(manager.documents().size(), 2u);
}

TEST(DocumentManager, TheFormatIsToldByTheContent)
{
    const tests::TempDir folder;
    AcApDocManager manager;
    EXPECT_TRUE(manager.openDocument(folder.write("misnamed.dwg", kSmallDxf)));

    struct Case {
        const char *name;
        QByteArray bytes;
        const char *reason;
    };
    const Case cases[] = {
        {"new.dxf", QByteArray("AC1032\0\0", 8), "too short"},
        {"old.dwg", QByteArray("AC1009\0\0", 8), "R12"},
        {"future.dwg", QByteArray("AC1099\0\0", 8), "AC1099"},
        {"text.dxf", "hello\n", "text.dxf"},
        {"empty.dxf", "", "empty.dxf"},
    };
    for (const Case &c : cases) {
        const auto opened = manager.openDocument(folder.write(c.name, c.bytes));
        ASSERT_FALSE(opened) << c.name;
        EXPECT_TRUE(opened.error().contains(c.reason)) << qPrintable(opened.error());
    }
    EXPECT_FALSE(manager.openDocument(folder.path("missing.dxf")));
    EXPECT_EQ(manager.documents().size(), 1u);
}

static const QByteArray kTwoSheets =
    "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1015\n9\n$TILEMODE\n70\n1\n9\n$HANDSEED\n5\n50\n0\nENDSEC\n"
    "0\nSECTION\n2\nTABLES\n0\nTABLE\n2\nBLOCK_RECORD\n5\n1\n70\n3\n"
    "0\nBLOCK_RECORD\n5\n20\n2\n*Model_Space\n0\nBLOCK_RECORD\n5\n23\n2\n*Paper_Space\n"
    "0\nBLOCK_RECORD\n5\n24\n2\n*Paper_Space0\n0\nENDTAB\n0\nENDSEC\n"
    "0\nSECTION\n2\nOBJECTS\n0\nDICTIONARY\n5\nC\n330\n0\n100\nAcDbDictionary\n281\n1\n0\nENDSEC\n0\nEOF\n";

TEST(DocumentManager, TheShownLayoutIsKeptAndIsNoChange)
{
    const tests::TempDir folder;
    AcApDocManager manager;
    const auto first = manager.openDocument(folder.write("two.dxf", kTwoSheets));
    ASSERT_TRUE(first) << qPrintable(first.error());
    AcDbDatabase &database = *(*first)->database();
    for (const std::uint64_t handle : {0x24, 0x23, 0x20, 0x24}) {
        acapKeepLayout(database, database.getAcDbObjectId({handle}));
        EXPECT_FALSE((*first)->isModified());
        EXPECT_EQ(database.undo().position(), 0u);
        const QString file = folder.path("copy%1.dxf").arg(handle);
        ASSERT_TRUE(manager.saveDocument(*first, file, true));
        AcApDocManager later;
        const auto opened = later.openDocument(file);
        ASSERT_TRUE(opened) << qPrintable(opened.error());
        EXPECT_EQ((*opened)->database()->currentSpaceId().handle().value, handle);
        EXPECT_FALSE((*opened)->isModified());
        QFile::remove(file);
    }
}

TEST(DocumentManager, ADrawingWhoseChangesWereAllUndoneIsAsItWasSaved)
{
    AcApDocManager manager;
    AcApDocument *const document = manager.newDocument();
    AcDbUndo &undo = document->database()->undo();
    const tests::TempDir folder;
    const auto step = [&](int value) {
        const AcDbUndoGroup group(*document->database(), QStringLiteral("step"));
        change(*document, value);
    };
    step(5);
    step(6);
    ASSERT_TRUE(manager.saveDocument(document, folder.path("plan.dxf")));
    step(7);
    EXPECT_TRUE(document->isModified());
    undo.undo();
    EXPECT_FALSE(document->isModified());
    undo.undo();
    EXPECT_TRUE(document->isModified()) << "the file has what was undone";
    undo.redo();
    EXPECT_FALSE(document->isModified());
    undo.undo();
    step(6);
    EXPECT_TRUE(document->isModified()) << "the same again is another step";
    {
        const AcDbUndoGroup group(*document->database(), QStringLiteral("refused"));
        const std::uint64_t state = document->database()->editState();
        undo.attempt([&] {
            change(*document, 8);
            return false;
        });
        EXPECT_EQ(document->database()->editState(), state);
    }
}

TEST(DocumentManager, SavingSettlesNameAndChanges)
{
    const tests::TempDir folder;
    AcApDocManager manager;
    AcApDocument *const document = manager.newDocument();
    EXPECT_FALSE(document->isNamedDrawing());
    EXPECT_FALSE(document->isModified());
    EXPECT_FALSE(manager.saveDocument(document, {})) << "there is no name to save under";

    change(*document, 5);
    EXPECT_TRUE(document->isModified());
    ASSERT_TRUE(manager.saveDocument(document, folder.path("copy.dxf"), true));
    EXPECT_TRUE(document->isModified());
    EXPECT_FALSE(document->isNamedDrawing());

    ASSERT_TRUE(manager.saveDocument(document, folder.path("plan.dxf")));
    EXPECT_FALSE(document->isModified());
    EXPECT_EQ(document->docTitle(), "plan.dxf");
    EXPECT_EQ(tests::readFile(folder.path("plan.dxf")), tests::readFile(folder.path("copy.dxf")));

    // The name is taken: neither another document nor another format may have it.
    AcApDocument *const other = manager.newDocument();
    EXPECT_FALSE(manager.saveDocument(other, folder.path("plan.dxf")));
    EXPECT_FALSE(manager.saveDocument(other, folder.path("plan.dwg")));
    EXPECT_FALSE(manager.saveDocument(other, folder.path("no/such/folder.dxf")));

    manager.closeDocument(document);
    const auto reopened = manager.openDocument(folder.path("plan.dxf"));
    ASSERT_TRUE(reopened) << qPrintable(reopened.error());
    EXPECT_EQ((*reopened)->database()->headerInteger("$USERI1"), 5);
}

TEST(DocumentLocks, NestAndShowTheStrongest)
{
    AcApDocManager manager;
    AcApDocument *const document = manager.addDocument(emptyDrawing(), {});
    Recorder recorder(manager);
    EXPECT_EQ(manager.lockDocument(document, AcAp::kRead), Acad::eOk);
    EXPECT_EQ(manager.lockDocument(document, AcAp::kWrite), Acad::eOk);
    EXPECT_EQ(manager.lockDocument(document, AcAp::kRead), Acad::eOk);
    EXPECT_EQ(document->lockMode(), AcAp::kWrite);
    EXPECT_EQ(manager.lockDocument(document, AcAp::kXWrite), Acad::eLockViolation);
    for (const AcAp::DocLockMode left : {AcAp::kWrite, AcAp::kRead, AcAp::kNone}) {
        EXPECT_EQ(manager.unlockDocument(document), Acad::eOk);
        EXPECT_EQ(document->lockMode(), left);
    }
    EXPECT_EQ(manager.unlockDocument(document), Acad::eLockViolation);
    EXPECT_THAT(recorder.events, ElementsAre("lock 32", "lock 4", "lock 32", "lock 0"));
}

TEST(DocumentLocks, AnExclusiveLockSuffersNoOther)
{
    AcApDocument *const document = acDocManager()->addDocument(emptyDrawing(), {});
    {
        const AcAxDocLock exclusive(document, AcAp::kXWrite);
        EXPECT_EQ(exclusive.lockStatus(), Acad::eOk);
        EXPECT_EQ(AcAxDocLock(document).lockStatus(), Acad::eLockViolation);
        EXPECT_EQ(document->lockMode(), AcAp::kXWrite) << "a refused lock takes none away";
    }
    EXPECT_EQ(document->lockMode(), AcAp::kNone);
    EXPECT_EQ(AcAxDocLock(nullptr).lockStatus(), Acad::eNoDocument);
    EXPECT_EQ(AcAxDocLock(document, AcAp::kNone).lockStatus(), Acad::eInvalidInput);
    acDocManager()->closeDocument(document);
}
