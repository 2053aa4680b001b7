#include "tests/quillnote/entity/group_lines.h"

#include <QList>

namespace tests
{

static AcGePoint3d pointOf(const QByteArray &value)
{
    const QList<QByteArray> numbers = value.split(' ');
    return {numbers.value(0).toDouble(), numbers.value(1).toDouble(), numbers.value(2).toDouble()};
}

static resbuf::Value valueOf(int code, const QByteArray &value)
{
    switch (groupKind(code)) {
    case GroupKind::text:
        return QString::fromUtf8(value).replace(QLatin1String("^J"), QLatin1String("\n"));
    case GroupKind::point:
        return pointOf(value);
    case GroupKind::real:
        return value.toDouble();
    case GroupKind::handle:
        return AcDbHandle{value.toULongLong(nullptr, 16)};
    case GroupKind::binary:
        return QByteArray::fromHex(value);
    default:
        return std::int64_t(value.toLongLong());
    }
}

ResbufList groupsFromLines(const QByteArray &lines)
{
    ResbufList groups;
    const QList<QByteArray> all = lines.split('\n');
    for (qsizetype i = 0; i + 1 < all.size(); i += 2) {
        bool isCode = false;
        const int code = all[i].toInt(&isCode);
        if (!isCode)
            break;
        groups.emplace_back(code, valueOf(code, all[i + 1]));
    }
    return groups;
}

} // namespace tests
