// dxf_probe FILE UNTOUCHED CHANGED: opens a drawing, decodes every object, saves it untouched, then with a
// circle, a dictionary entry and a layer added, twice over. Prints the repairs; exit status 1 when anything
// is refused.
#include "dxf_support.h"

#include "host/acdb/dbdict.h"

#include <cstdio>

static bool saveTo(AcDbDatabase &database, const char *path)
{
    const auto saved = writeDxf(database, QString::fromLocal8Bit(path));
    if (!saved)
        std::printf("not saved: %s\n", qPrintable(saved.error().text()));
    return saved.ok();
}

static void change(AcDbDatabase &database)
{
    const AcDbObjectId circle = tests::appendCircle(database.modelSpaceId());
    AcDbObjectPointer<AcDbEntity> opened(circle, AcDb::kForWrite);
    if (opened)
        opened->createExtensionDictionary();
    opened.close();
    AcDbObjectId layer;
    AcDbSymbolTable layers(database, SymbolTable::layer);
    if (layers.addLike(QStringLiteral("0"), QStringLiteral("PROBE"), layer) == Acad::eOk)
        AcDbObjectPointer<AcDbObject>(layer.stub()->object).close();
    AcDbObjectPointer<AcDbDictionary> root(acdbEnsureNamedObjects(database), AcDb::kForWrite);
    AcDbObjectId record;
    if (root && root->setAt(QStringLiteral("PROBE"), new AcDbXrecord, record) == Acad::eOk)
        AcDbObjectPointer<AcDbObject>(record.stub()->object).close();
}

int main(int argc, char **argv)
{
    if (argc != 4)
        return 2;
    auto opened = readDxf(QString::fromLocal8Bit(argv[1]));
    if (!opened) {
        std::printf("refused: %s\n", qPrintable(opened.error().text()));
        return 1;
    }
    AcDbDatabase &database = **opened;
    for (const QString &repair : database.repairs())
        std::printf("repair: %s\n", qPrintable(repair));
    std::size_t groups = 0;
    for (std::uint32_t index = 1; index < database.stubCount(); ++index)
        groups += database.fileGroups(*database.stub(index)).size();
    std::printf("%u objects, %zu groups\n", database.stubCount() - 1, groups);
    bool good = saveTo(database, argv[2]);
    change(database);
    good = saveTo(database, argv[3]) && good;
    good = saveTo(database, argv[3]) && good;
    return good && !testing::Test::HasFailure() ? 0 : 1;
}
