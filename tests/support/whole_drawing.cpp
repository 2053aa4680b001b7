#include "tests/support/whole_drawing.h"

#include "host/acdb/dbfiler.h"
#include "host/acdb/dbobject.h"

#include <map>
#include <set>

namespace tests
{

static QByteArray filedFields(AcDbStub &stub)
{
    const AcDbObjectPointer<AcDbObject> object(AcDbObjectId(&stub), AcDb::kForRead);
    if (!object || !object->isCustom())
        return {};
    AcDbMemoryFiler filer(AcDb::kUndoFiler, stub.database);
    object->dwgOutFields(&filer);
    return filer.stream();
}

std::vector<WholeObject> wholeDrawing(const AcDbDatabase &database)
{
    std::vector<WholeObject> all;
    for (std::uint32_t i = 1; i < database.stubCount(); ++i) {
        AcDbStub &stub = *database.stub(i);
        if (!stub.has(AcDbStub::kErased))
            all.push_back({stub.handle, database.fileGroups(stub), filedFields(stub)});
    }
    for (const QByteArray &name : database.headerNames()) {
        if (const ResbufList *const groups = database.headerVariable(name))
            all.push_back({0, *groups, name});
    }
    return all;
}

QStringList wholeDifference(const std::vector<WholeObject> &a, const std::vector<WholeObject> &b)
{
    const auto byName = [](const std::vector<WholeObject> &all) {
        std::map<std::pair<std::uint64_t, QByteArray>, const WholeObject *> named;
        for (const WholeObject &object : all)
            named[{object.handle, object.handle == 0 ? object.filed : QByteArray()}] = &object;
        return named;
    };
    const auto left = byName(a);
    const auto right = byName(b);
    QStringList names;
    const auto name = [](const auto &key) {
        return key.first == 0 ? QString::fromLatin1(key.second) : QString::number(key.first, 16);
    };
    for (const auto &[key, object] : left) {
        const auto other = right.find(key);
        if (other == right.end())
            names += QStringLiteral("-") + name(key);
        else if (!(*object == *other->second))
            names += name(key);
    }
    for (const auto &[key, object] : right) {
        if (!left.contains(key))
            names += QStringLiteral("+") + name(key);
    }
    return names;
}

} // namespace tests
