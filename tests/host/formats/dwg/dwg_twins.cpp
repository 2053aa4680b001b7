// dwg_twins DWG DXF: reads the same drawing from both files and compares every object, group by group, by
// handle. Prints what differs, by kind and group, with one example each, then
//   "N objects, N alike, N differ, N not understood, N only in DWG, N only in DXF".
// The order of groups counts only among those of one number. real_dwg_test.py says which differences are
// known.
#include "host/formats/dwg/dwgreader.h"
#include "host/formats/dxf/dxfreader.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>

namespace
{

QString shown(const resbuf::Value &value)
{
    struct Shower {
        QString operator()(std::monostate) const { return {}; }
        QString operator()(const QString &text) const { return u'"' + text + u'"'; }
        QString operator()(std::int64_t number) const { return QString::number(number); }
        QString operator()(double number) const { return QString::number(number, 'g', 17); }
        QString operator()(const AcGePoint2d &p) const { return QStringLiteral("(%1 %2)").arg(p.x).arg(p.y); }
        QString operator()(const AcGePoint3d &p) const
        {
            return QStringLiteral("(%1 %2 %3)").arg(p.x).arg(p.y).arg(p.z);
        }
        QString operator()(AcDbHandle handle) const
        {
            return u'#' + QString::number(handle.value, 16).toUpper();
        }
        QString operator()(AcDbObjectId) const { return QStringLiteral("id"); }
        QString operator()(const QByteArray &bytes) const { return QString::fromLatin1(bytes.toHex()); }
    };
    return std::visit(Shower(), value);
}

/// DXF holds reals with 16 digits.
bool near(double a, double b)
{
    return a == b || std::abs(a - b) <= 1e-12 * std::max({std::abs(a), std::abs(b), 1e-3});
}

bool alike(const resbuf &a, const resbuf &b)
{
    if (a.resval == b.resval)
        return true;
    const auto isPoint = [](const resbuf &group) {
        return std::holds_alternative<AcGePoint2d>(group.resval) ||
               std::holds_alternative<AcGePoint3d>(group.resval);
    };
    if (isPoint(a) && isPoint(b))
        return near(a.point().x, b.point().x) && near(a.point().y, b.point().y) &&
               near(a.point().z, b.point().z);
    const bool areReal = std::holds_alternative<double>(a.resval) && std::holds_alternative<double>(b.resval);
    if (areReal)
        return near(a.real(), b.real());
    // What begins with a number, in whichever type a file stores it.
    return a.text().compare(b.text(), Qt::CaseInsensitive) == 0 && a.integer() == b.integer() &&
           a.resval.index() == b.resval.index() && a.restype == 6;
}

using ByCode = std::map<int, std::vector<resbuf>>;

ByCode byCode(const ResbufList &groups)
{
    ByCode sorted;
    bool isOther = false; // Blocks of other applications do not count.
    for (const resbuf &group : groups) {
        if (group.restype == 102 && groups.front().text() != u"XRECORD")
            isOther = group.text().startsWith(u'{') && !group.text().startsWith(u"{ACAD_");
        else if (!isOther)
            sorted[group.restype].push_back(group);
    }
    return sorted;
}

class Comparison
{
public:
    void compare(const QByteArray &kind, std::uint64_t handle, const ResbufList &dwg, const ResbufList &dxf)
    {
        const auto isBits = [](const resbuf &group) {
            return group.restype == 100 && group.text().startsWith(u"AcDbProxy");
        };
        if (kind != "ACAD_PROXY_ENTITY" && kind != "ACAD_PROXY_OBJECT" && std::ranges::any_of(dwg, isBits)) {
            ++m_raw;
            return;
        }
        const ByCode left = byCode(dwg);
        const ByCode right = byCode(dxf);
        bool isAlike = true;
        const auto note = [&](int code, const QString &text) {
            isAlike = false;
            auto &[count, example] = m_differences[{kind, code}];
            if (count++ == 0)
                example = QString::number(handle, 16).toUpper() + QStringLiteral(": ") + text;
        };
        for (const auto &[code, values] : left) {
            const auto other = right.find(code);
            if (other == right.end()) {
                note(code, QStringLiteral("only in DWG: ") + shown(values.front().resval));
                continue;
            }
            if (values.size() != other->second.size()) {
                note(code,
                     QStringLiteral("%1 in DWG, %2 in DXF").arg(values.size()).arg(other->second.size()));
                continue;
            }
            for (std::size_t i = 0; i < values.size(); ++i) {
                if (!alike(values[i], other->second[i])) {
                    note(code, shown(values[i].resval) + QStringLiteral(" in DWG, ") +
                                   shown(other->second[i].resval) + QStringLiteral(" in DXF"));
                    break;
                }
            }
        }
        for (const auto &[code, values] : right) {
            if (!left.contains(code))
                note(code, QStringLiteral("only in DXF: ") + shown(values.front().resval));
        }
        ++(isAlike ? m_alike : m_different);
    }
    void only(const char *where, const QByteArray &kind, std::uint64_t handle)
    {
        auto &[count, example] = m_only[{where, kind}];
        if (count++ == 0)
            example = QString::number(handle, 16).toUpper();
    }
    void print() const
    {
        for (const auto &[key, value] : m_differences)
            std::printf("%s %d: %d, %s\n", key.first.constData(), key.second, value.first,
                        qPrintable(value.second.left(300)));
        int onlyDwg = 0, onlyDxf = 0;
        for (const auto &[key, value] : m_only) {
            std::printf("only in %s: %d %s, %s\n", key.first.constData(), value.first, key.second.constData(),
                        qPrintable(value.second));
            (key.first == "DWG" ? onlyDwg : onlyDxf) += value.first;
        }
        std::printf("%d objects, %d alike, %d differ, %d not understood, %d only in DWG, %d only in DXF\n",
                    m_alike + m_different + m_raw + onlyDwg, m_alike, m_different, m_raw, onlyDwg, onlyDxf);
    }

private:
    std::map<std::pair<QByteArray, int>, std::pair<int, QString>> m_differences;
    std::map<std::pair<QByteArray, QByteArray>, std::pair<int, QString>> m_only;
    int m_alike = 0;
    int m_different = 0;
    int m_raw = 0; ///< Kinds without a table.
};

} // namespace

int main(int argc, char **argv)
{
    if (argc != 3)
        return 2;
    auto bytes = base::readFileBytes(QString::fromLocal8Bit(argv[1]));
    if (!bytes)
        return 2;
    const auto dwg = readDwg(*std::move(bytes), QString::fromLocal8Bit(argv[1]));
    const auto dxf = readDxf(QString::fromLocal8Bit(argv[2]));
    if (!dwg || !dxf) {
        std::printf("%s\n", qPrintable(dwg ? dxf.error().text() : dwg.error()));
        return 1;
    }
    for (const QString &repair : (*dwg)->repairs())
        std::printf("repair: %s\n", qPrintable(repair));
    Comparison comparison;
    for (std::uint32_t i = 1; i < (*dwg)->stubCount(); ++i) {
        const AcDbStub &stub = *(*dwg)->stub(i);
        const AcDbObjectId twin = (*dxf)->getAcDbObjectId({stub.handle});
        const QByteArray kind = acdbKindName(stub.kind);
        if (twin.isNull())
            comparison.only("DWG", kind, stub.handle);
        else
            comparison.compare(kind, stub.handle, (*dwg)->fileGroups(stub), (*dxf)->fileGroups(*twin.stub()));
    }
    for (std::uint32_t i = 1; i < (*dxf)->stubCount(); ++i) {
        const AcDbStub &stub = *(*dxf)->stub(i);
        if ((*dwg)->getAcDbObjectId({stub.handle}).isNull())
            comparison.only("DXF", acdbKindName(stub.kind), stub.handle);
    }
    comparison.print();
    return 0;
}
