// What the commands on one mark have in common: they change nothing but a mark, ask for its password, and
// leave marks on locked layers alone.
#include "host/acdb/dbsymtb.h"
#include "tests/quillnote/authoring/authoring_fixture.h"

namespace
{

/// Of the mark that OneMarkTest makes; each picks it by its right edge.
struct Change {
    QString command;
    QStringList answers;
    QStringList dialogLines{};
};
const Change kChanges[] = {
    {QStringLiteral("QN3_addVertext"), {"100,20"}},
    {QStringLiteral("QN8_editNumber"), {"100,20", "5"}},
    {QStringLiteral("QN3_QNeditMark"), {"100,20"}, {"set 1003 \"new\"", "ok"}},
};

struct OneMarkTest : AuthoringTest {
    OneMarkTest() { startUpSettings().style = 4; }
    AcDbObjectId makeRectangle() const
    {
        NewMark request;
        request.corner2 = {100, 60, 0};
        request.opinionText = QStringLiteral("old");
        return createMark(database(), request);
    }
};

} // namespace

TEST_F(OneMarkTest, NothingElseIsTaken)
{
    run(QStringLiteral("LINE"), {"100,0", "100,60", ""});
    for (const Change &change : kChanges)
        expectRefused(change.command, {"100,20"}, QStringLiteral("不是评图标签。"));
    expectRefused(QStringLiteral("qn8_align0"), {"100,20"}, QStringLiteral("不是评图标签。"));
}

TEST_F(OneMarkTest, LockedLayersKeepTheirMarks)
{
    settings::setNumber(u"useLayer", 1);
    makeRectangle();
    AcDbObjectPointer<AcDbLayerTableRecord>(
        database().tableRecord(SymbolTable::layer, QStringLiteral("评图标签")), AcDb::kForWrite)
        ->setIsLocked(true);
    const QString refusal = QStringLiteral("\n该评图标签无法修改：");
    for (const Change &change : kChanges)
        expectRefused(change.command, change.answers, refusal, change.dialogLines);
    expectRefused(QStringLiteral("addAleadLine"), {"L", "30,300"}, refusal);
}

TEST_F(OneMarkTest, AProtectedMarkAsksForItsPasswordOnce)
{
    startUpSettings().chineseVersion = true;
    settings::setText(u"chPwMD5", hashPassword(QStringLiteral("open")).toUpper());
    makeRectangle();
    for (const Change &change : kChanges) {
        passwordState().reset();
        expectRefused(change.command, {"100,20"}, QStringLiteral("\n密码错误！"),
                      {"set 1032 \"wrong\"", "click 1"});
        expectRefused(change.command, {"100,20"}, {}, {"cancel"});
        const QStringList password{"set 1032 \" open \"", "click 1"};
        runAndBack(change.command, change.answers, password + change.dialogLines);
        database().undo().undo();
        runAndBack(change.command, change.answers, change.dialogLines);
        database().undo().undo();
    }
}
