#include "host/formats/dxf/dxfobject.h"

#include <algorithm>
#include <set>

namespace dxf
{

int handleCode(AcDbKind kind)
{
    static const AcDbKind kDimensionStyle = acdbKind("DIMSTYLE");
    return kind == kDimensionStyle ? 105 : 5;
}

/// The kinds that R12 has: in its files they carry neither markers nor owners.
static bool isR12Kind(AcDbKind kind)
{
    static const std::set<AcDbKind> kKinds = [] {
        std::set<AcDbKind> kinds;
        for (const char *const name :
             {"LINE",      "POINT",    "CIRCLE", "ARC",    "TRACE",   "SOLID",  "TEXT",     "SHAPE",
              "INSERT",    "ATTDEF",   "ATTRIB", "3DLINE", "VERTEX",  "SEQEND", "POLYLINE", "3DFACE",
              "BLOCK",     "VIEWPORT", "ENDBLK", "VPORT",  "LTYPE",   "LAYER",  "STYLE",    "VIEW",
              "DIMENSION", "UCS",      "APPID",  "TABLE",  "DIMSTYLE"})
            kinds.insert(acdbKind(name));
        return kinds;
    }();
    return kKinds.contains(kind);
}

/// Codes that native objects of R12 do not have.
static bool isLaterThanR12(int code)
{
    return (code >= 90 && code <= 101) || code == 103 || code == 104 || (code >= 106 && code <= 139) ||
           (code >= 148 && code <= 169) || (code >= 240 && code < 999);
}

static void ensureHandle(ResbufList &groups, const AcDbStub &stub)
{
    const int code = handleCode(stub.kind);
    const auto bodyBegin =
        std::ranges::find_if(groups, [](const resbuf &g) { return g.restype == 100 || g.restype == 1001; });
    const auto place =
        std::find_if(groups.begin(), bodyBegin, [=](const resbuf &g) { return g.restype == code; });
    if (place == bodyBegin)
        groups.insert(groups.begin() + 1, resbuf(code, AcDbHandle{stub.handle}));
    else if (place->handle().value != stub.handle)
        place->assign(AcDbHandle{stub.handle});
}

void ObjectEncoder::leaveOutUnknown(ResbufList &groups, const AcDbStub &stub) const
{
    const bool r12Native = m_source.version() <= DrawingVersion::r12 && isR12Kind(stub.kind);
    const bool ownerInFile = stub.owner != 0 && !m_database.stub(stub.owner)->has(AcDbStub::kNoFileForm);
    bool marked = false;            // Behind the first subclass marker.
    ApplicationGroups applications; // Which any version keeps.
    std::erase_if(groups, [&](const resbuf &group) {
        const int code = group.restype;
        const bool bracket = applications.holds(group);
        const bool isOwner = code == 330 && !marked && !bracket;
        marked = marked || code == 100;
        if (code == 999 && m_source.holds(group.source) && m_source.withoutKept(group.source).isEmpty())
            return true; // Kept comments are written anew, elsewhere.
        if (m_source.holds(group.source) || (bracket && !marked))
            return false;
        return (isOwner && !ownerInFile && stub.has(AcDbStub::kEntity)) ||
               (r12Native && isLaterThanR12(code));
    });
}

std::string_view ObjectEncoder::unreadableTail(const AcDbStub &stub) const
{
    if (!stub.has(AcDbStub::kHasSource))
        return {};
    std::string_view tail = m_source.bytes(stub);
    m_source.visitGroups(tail, [&](const Group &group) {
        tail.remove_prefix(std::size_t(group.end - tail.data()));
        return true;
    });
    return tail;
}

QByteArray ObjectEncoder::encode(const AcDbStub &stub, std::optional<std::int64_t> recordCount) const
{
    ResbufList groups = m_database.fileGroups(stub);
    if (groups.empty())
        groups.emplace_back(0, QString::fromLatin1(acdbKindName(stub.kind)));
    ensureHandle(groups, stub);
    leaveOutUnknown(groups, stub);
    resbuf *const count = recordCount ? findGroup(groups, 70) : nullptr;
    if (count && count->integer() != *recordCount)
        count->assign(*recordCount);
    QByteArray out;
    m_encoder.append(out, groups);
    if (const std::string_view tail = unreadableTail(stub); !tail.empty()) {
        const QByteArray kept = m_source.withoutKept(tail);
        m_encoder.copy(out, {kept.constData(), std::size_t(kept.size())});
    }
    return out;
}

} // namespace dxf
