#include "tests/quillnote/entity/mark_streams.h"

#include "quillnote/entity/mark_fields.h"

#include "host/acdb/dbsymtb.h"
#include "tests/quillnote/entity/group_lines.h"
#include "tests/support/files.h"
#include "tests/support/memory_drawing.h"

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>

namespace tests
{

static QByteArray littleEndian(int value)
{
    const char bytes[] = {char(value & 0xFF), char((value >> 8) & 0xFF)};
    return QByteArray(bytes, 2);
}

QByteArray markStream(int version, std::int16_t targetStyle)
{
    QByteArray stream = littleEndian(version);
    for (const QByteArray &line : readFile(testDataPath("quillnote/entity/full_mark.hex")).split('\n')) {
        const QByteArray item = line.split('#').front().trimmed();
        const qsizetype space = item.indexOf(' ');
        if (item.isEmpty() || item.left(space).toInt() > version)
            continue;
        const QByteArray bytes = item.mid(space + 1);
        stream += bytes == "{style}" ? littleEndian(targetStyle) : QByteArray::fromHex(bytes);
    }
    return stream;
}

ResbufList dxfGroups()
{
    return groupsFromLines(readFile(testDataPath("corpus/mark_dxf/full.txt")));
}

QString fieldLines(const QuillnoteObj3 &mark)
{
    QString lines;
    for (const auto &[name, value] : markFieldValues(mark)) {
        const QByteArray array = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
        lines += name + u'=' + QString::fromUtf8(array).mid(1).chopped(1) + u'\n';
    }
    return lines;
}

std::unique_ptr<AcDbDatabase> drawingOfStreams()
{
    constexpr std::uint64_t kNeighbour = 0x1F;
    MemoryDrawing drawing;
    while (drawing.entity("LINE", {{10, AcGePoint3d(0, 0, 0)}, {11, AcGePoint3d(1, 1, 0)}}) < kNeighbour)
        ;
    return drawing.open();
}

void setFullMark(QuillnoteObj3 &mark, AcDbDatabase &database)
{
    AcDbMemoryFiler filer(AcDb::kFileFiler, &database, markStream());
    ASSERT_EQ(mark.dwgInFields(&filer), Acad::eOk);
}

AcDbObjectId append(AcDbDatabase &database, std::unique_ptr<QuillnoteObj3> mark)
{
    AcDbObjectPointer<AcDbBlockTableRecord> space(database.modelSpaceId(), AcDb::kForWrite);
    AcDbObjectId id;
    EXPECT_EQ(space->appendAcDbEntity(id, mark.get()), Acad::eOk);
    mark.release()->close();
    return id;
}

} // namespace tests
