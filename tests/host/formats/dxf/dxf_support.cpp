#include "dxf_support.h"

#include "host/formats/dxf/dxfscan.h"

namespace tests
{

template <class Visit>
static void forEachGroup(const QByteArray &groups, Visit visit)
{
    for (const QByteArray &line : groups.split('|')) {
        const qsizetype blank = line.indexOf(' ');
        const int code = line.left(blank).toInt();
        visit(code, blank < 0 ? QByteArray() : line.mid(blank + 1));
    }
}

QByteArray dxfText(const QByteArray &groups, const QByteArray &lineEnd, int codeWidth)
{
    QByteArray text;
    forEachGroup(groups, [&](int code, const QByteArray &value) {
        text += QByteArray::number(code).rightJustified(codeWidth) + lineEnd + value + lineEnd;
    });
    return text;
}

template <class Number>
static QByteArray raw(Number number)
{
    return QByteArray(reinterpret_cast<const char *>(&number), sizeof number);
}

// Written from the description of the format, not by the program's own encoder.
static QByteArray binaryValue(int code, const QByteArray &value)
{
    const auto in = [code](int first, int last) { return code >= first && code <= last; };
    if (in(10, 59) || in(110, 149) || in(210, 239) || in(1010, 1059))
        return raw(value.toDouble());
    if (in(60, 79) || in(170, 179) || in(270, 289) || in(370, 389) || in(1060, 1070))
        return raw(value.toShort());
    if (in(90, 99) || in(420, 429) || in(440, 459) || code == 1071)
        return raw(value.toInt());
    if (in(160, 169))
        return raw(value.toLongLong());
    if (in(290, 299))
        return raw(char(value.toInt()));
    if (in(310, 319) || code == 1004) {
        const QByteArray bytes = QByteArray::fromHex(value);
        return raw(char(bytes.size())) + bytes;
    }
    return value + '\0';
}

QByteArray dxfBinary(const QByteArray &groups, bool shortCodes)
{
    QByteArray bytes("AutoCAD Binary DXF\r\n\x1a\0", 22);
    forEachGroup(groups, [&](int code, const QByteArray &value) {
        if (!shortCodes)
            bytes += raw(std::int16_t(code));
        else if (code < 255)
            bytes += raw(std::uint8_t(code));
        else
            bytes += '\xff' + raw(std::int16_t(code));
        bytes += binaryValue(code, value);
    });
    return bytes;
}

QByteArray smallDrawing(const QByteArray &version)
{
    const QByteArray instances = version >= "AC1018" ? "91 1|" : "";
    return "0 SECTION|2 HEADER|9 $ACADVER|1 " + version +
           "|9 $DWGCODEPAGE|3 ANSI_1252|9 $INSBASE|10 0.0|20 0.0|30 0.0|9 $CLAYER|8 0|9 $HANDSEED|5 50|0 "
           "ENDSEC"
           "|0 SECTION|2 CLASSES|0 CLASS|1 SPECIAL|2 AcDbSpecial|3 Maker|90 0|" +
           instances +
           "280 0|281 1|0 ENDSEC"
           "|0 SECTION|2 TABLES"
           "|0 TABLE|2 LAYER|5 2|330 0|100 AcDbSymbolTable|70 2"
           "|0 LAYER|5 10|330 2|100 AcDbSymbolTableRecord|100 AcDbLayerTableRecord|2 0|70 0|62 7|6 CONTINUOUS"
           "|0 LAYER|5 11|330 2|100 AcDbSymbolTableRecord|100 AcDbLayerTableRecord|2 WALL|70 0|62 1|6 "
           "CONTINUOUS"
           "|0 ENDTAB"
           "|0 TABLE|2 APPID|5 3|330 0|100 AcDbSymbolTable|70 1"
           "|0 APPID|5 12|330 3|100 AcDbSymbolTableRecord|100 AcDbRegAppTableRecord|2 ACAD|70 0"
           "|0 ENDTAB"
           "|0 TABLE|2 BLOCK_RECORD|5 1|330 0|100 AcDbSymbolTable|70 3"
           "|0 BLOCK_RECORD|5 20|330 1|100 AcDbSymbolTableRecord|100 AcDbBlockTableRecord|2 *Model_Space"
           "|0 BLOCK_RECORD|5 23|330 1|100 AcDbSymbolTableRecord|100 AcDbBlockTableRecord|2 *Paper_Space"
           "|0 BLOCK_RECORD|5 26|330 1|100 AcDbSymbolTableRecord|100 AcDbBlockTableRecord|2 DOOR"
           "|0 ENDTAB|0 ENDSEC"
           "|0 SECTION|2 BLOCKS"
           "|0 BLOCK|5 21|330 20|100 AcDbEntity|8 0|100 AcDbBlockBegin|2 *Model_Space|70 0|10 0.0|20 0.0|30 "
           "0.0"
           "|0 ENDBLK|5 22|330 20|100 AcDbEntity|8 0|100 AcDbBlockEnd"
           "|0 BLOCK|5 24|330 23|100 AcDbEntity|67 1|8 0|100 AcDbBlockBegin|2 *Paper_Space|70 0|10 0.0|20 "
           "0.0|30 0.0"
           "|0 ENDBLK|5 25|330 23|100 AcDbEntity|67 1|8 0|100 AcDbBlockEnd"
           "|0 BLOCK|5 27|330 26|100 AcDbEntity|8 0|100 AcDbBlockBegin|2 DOOR|70 0|10 0.0|20 0.0|30 0.0"
           "|0 LINE|5 28|330 26|100 AcDbEntity|8 0|100 AcDbLine|10 0.0|20 0.0|30 0.0|11 1.0|21 0.0|31 0.0"
           "|0 ENDBLK|5 29|330 26|100 AcDbEntity|8 0|100 AcDbBlockEnd|0 ENDSEC"
           "|0 SECTION|2 ENTITIES"
           "|0 CIRCLE|5 30|330 20|100 AcDbEntity|8 WALL|100 AcDbCircle|10 5.0|20 6.0|30 0.0|40 2.50"
           "|0 INSERT|5 31|102 {ACAD_XDICTIONARY|360 42|102 }|330 20|100 AcDbEntity|8 0|100 "
           "AcDbBlockReference"
           "|66 1|2 DOOR|10 1.0|20 1.0|30 0.0"
           "|0 ATTRIB|5 32|330 31|100 AcDbEntity|8 0|100 AcDbText|10 1.0|20 1.0|30 0.0|40 1.0|1 oak"
           "|0 SEQEND|5 33|330 31|100 AcDbEntity|8 0"
           "|0 TEXT|5 34|330 23|100 AcDbEntity|67 1|8 0|100 AcDbText|10 0.0|20 0.0|30 0.0|40 2.5|1 "
           "title|1001 ACAD"
           "|1070 7"
           "|0 ENDSEC"
           "|0 SECTION|2 OBJECTS"
           "|0 DICTIONARY|5 40|330 0|100 AcDbDictionary|281 1|3 ACAD_GROUP|350 41"
           "|0 DICTIONARY|5 41|102 {ACAD_REACTORS|330 40|102 }|330 40|100 AcDbDictionary|281 1"
           "|0 DICTIONARY|5 42|330 31|100 AcDbDictionary|281 1|3 NOTE|360 43"
           "|0 XRECORD|5 43|330 42|100 AcDbXrecord|280 1|1 kept|102 plain data|310 00FF10"
           "|0 ENDSEC|0 EOF";
}

QByteArray smallR12Drawing(bool handles)
{
    QByteArray groups = "0 SECTION|2 HEADER|9 $ACADVER|1 AC1009|9 $INSBASE|10 0.0|20 0.0|30 0.0|0 ENDSEC"
                        "|0 SECTION|2 TABLES"
                        "|0 TABLE|2 LAYER|70 2|0 LAYER|2 0|70 0|62 7|6 CONTINUOUS|0 LAYER|2 WALL|70 0|62 1|6 "
                        "CONTINUOUS|0 ENDTAB"
                        "|0 ENDSEC"
                        "|0 SECTION|2 BLOCKS"
                        "|0 BLOCK|8 0|2 DOOR|70 0|10 0.0|20 0.0|30 0.0|3 DOOR|1 "
                        "|0 LINE|5 A1|8 0|10 0.0|20 0.0|30 0.0|11 1.0|21 0.0|31 0.0|0 ENDBLK|8 0|0 ENDSEC"
                        "|0 SECTION|2 ENTITIES"
                        "|0 CIRCLE|5 A2|8 WALL|10 5.0|20 6.0|30 0.0|40 2.50"
                        "|0 POLYLINE|5 A3|8 0|66 1|10 0.0|20 0.0|30 0.0|0 VERTEX|5 A4|8 0|10 1.0|20 1.0|30 "
                        "0.0|0 SEQEND|5 A5|8 0"
                        "|0 TEXT|5 A6|8 0|10 0.0|20 0.0|30 0.0|40 2.5|1 title|67 1"
                        "|0 ENDSEC|0 EOF";
    if (!handles) {
        for (char digit = '1'; digit <= '6'; ++digit)
            groups.replace(QByteArray("|5 A") + digit, "");
    }
    return groups;
}

std::unique_ptr<AcDbDatabase> openDxf(const QByteArray &bytes)
{
    auto opened = readDxf(base::FileBytes::fromByteArray(bytes), QStringLiteral("test.dxf"));
    if (!opened) {
        ADD_FAILURE() << opened.error().text().toStdString();
        return std::make_unique<AcDbDatabase>();
    }
    return *std::move(opened);
}

QByteArray saveDxf(AcDbDatabase &database)
{
    auto saved = writeDxf(database);
    if (!saved) {
        ADD_FAILURE() << saved.error().text().toStdString();
        return {};
    }
    return *std::move(saved);
}

static QString named(const AcDbStub &stub)
{
    return QString::fromLatin1(acdbKindName(stub.kind)) + QLatin1Char(' ') +
           QString::number(stub.handle, 16).toUpper();
}

QString objectList(const AcDbDatabase &database, bool withSynthetic)
{
    QStringList names;
    for (std::uint32_t index = 1; index < database.stubCount(); ++index) {
        const AcDbStub &stub = *database.stub(index);
        if (!stub.has(AcDbStub::kErased) && (withSynthetic || !stub.has(AcDbStub::kNoFileForm)))
            names += named(stub);
    }
    return names.join(QStringLiteral(" | "));
}

QString blockList(const AcDbDatabase &database, AcDbObjectId blockRecord)
{
    QStringList names;
    if (const BlockContents *const contents = database.blockContents(blockRecord)) {
        for (const std::uint32_t index : contents->entities)
            names += named(*database.stub(index));
    }
    return names.join(QStringLiteral(" | "));
}

AcDbObjectId object(const AcDbDatabase &database, std::uint64_t handle)
{
    const AcDbObjectId id = database.getAcDbObjectId({handle});
    EXPECT_FALSE(id.isNull()) << "no object " << std::hex << handle;
    return id;
}

ResbufList groupsOf(const AcDbDatabase &database, std::uint64_t handle)
{
    const AcDbObjectId id = object(database, handle);
    return id.isNull() ? ResbufList() : database.fileGroups(*id.stub());
}

AcDbObjectId append(AcDbObjectId blockRecord, ResbufList groups)
{
    const AcDbKind kind = acdbKind(groups.front().text().toLatin1());
    auto *const entity = static_cast<AcDbEntity *>(acdbKindClass(kind, true)->create());
    entity->editGroups() = std::move(groups);
    AcDbObjectPointer<AcDbBlockTableRecord> record(blockRecord, AcDb::kForWrite);
    AcDbObjectId id;
    if (!record || record->appendAcDbEntity(id, entity) != Acad::eOk) {
        ADD_FAILURE() << "the entity was not taken";
        delete entity;
        return {};
    }
    entity->close();
    return id;
}

AcDbObjectId appendCircle(AcDbObjectId blockRecord)
{
    return append(blockRecord, {{0, QStringLiteral("CIRCLE")},
                                {100, QStringLiteral("AcDbEntity")},
                                {8, QStringLiteral("0")},
                                {420, std::int64_t(255)},
                                {100, QStringLiteral("AcDbCircle")},
                                {10, AcGePoint3d(1.5, 2.0, 0.0)},
                                {40, 0.25}});
}

void setGroup(AcDbDatabase &database, std::uint64_t handle, int code, resbuf::Value value)
{
    AcDbObjectPointer<AcDbObject> opened(object(database, handle), AcDb::kForWrite);
    ASSERT_TRUE(opened);
    opened->setGroup(code, std::move(value));
}

void erase(AcDbDatabase &database, std::uint64_t handle)
{
    AcDbObjectPointer<AcDbObject> opened(object(database, handle), AcDb::kForWrite);
    ASSERT_TRUE(opened);
    EXPECT_EQ(opened->erase(), Acad::eOk);
}

} // namespace tests
