#include "quillnote/snapshot/commands/drawing_content.h"

#include "host/acdb/dbapi.h"
#include "host/acdb/dbsymtb.h"
#include "host/acdb/dbxref.h"

#include <QCryptographicHash>

static constexpr int kName = 2;
static constexpr int kLayoutName = 410;

/// Handles, owners and references are given anew by programs that write a drawing anew; the name of the
/// layout goes with the place.
static bool isContent(int code)
{
    return code >= 0 && code < 1000 && code != 5 && code != 102 && code != kLayoutName &&
           !(code >= 320 && code <= 369) && !(code >= 390 && code <= 399) && !(code >= 480 && code <= 481);
}

/// Graphics for programs that do not know the kind of entity; each program draws them anew when it saves.
static bool isProxyGraphics(int code)
{
    return code == 92 || code == 160 || code == 310;
}

static void appendNumber(QByteArray &content, double value)
{
    content += QByteArray::number(value == 0.0 ? 0.0 : value, 'g', 10);
    content += ' ';
}

static void appendValue(QByteArray &content, const resbuf &group)
{
    if (const auto *const text = std::get_if<QString>(&group.resval))
        content += text->toUtf8();
    else if (std::holds_alternative<double>(group.resval))
        appendNumber(content, group.real());
    else if (std::holds_alternative<std::int64_t>(group.resval))
        content += QByteArray::number(group.integer());
    else if (const auto *const bytes = std::get_if<QByteArray>(&group.resval))
        content += *bytes;
    else if (std::holds_alternative<AcGePoint2d>(group.resval) ||
             std::holds_alternative<AcGePoint3d>(group.resval))
        for (const double value : {group.point().x, group.point().y, group.point().z})
            appendNumber(content, value);
}

static void appendGroup(QByteArray &content, const resbuf &group)
{
    content += QByteArray::number(group.restype);
    content += '=';
    appendValue(content, group);
    content += '\n';
}

static bool showsBlock(const QByteArray &kind)
{
    return kind == "INSERT" || kind == "DIMENSION" || kind == "ACAD_TABLE";
}

const QByteArray &DrawingContent::of(AcDbObjectId entity)
{
    if (const auto known = m_known.find(entity); known != m_known.end())
        return known->second;
    QByteArray content = read(entity);
    return m_known.insert_or_assign(entity, std::move(content)).first->second;
}

QByteArray DrawingContent::read(AcDbObjectId entity)
{
    QByteArray content;
    const QByteArray kind = acdbKindName(entity.stub()->kind);
    const bool withBlock = showsBlock(kind);
    bool isOfEveryEntity = false;
    for (const resbuf &group : acdbEntGetX(entity)) {
        if (group.restype == 100)
            isOfEveryEntity = group.text() == u"AcDbEntity" && kind != "ACAD_PROXY_ENTITY";
        if (!isContent(group.restype) || (isOfEveryEntity && isProxyGraphics(group.restype)))
            continue;
        if (withBlock && group.restype == kName) {
            const QString name = group.text();
            // Names of anonymous blocks only count.
            content += "block " + (name.startsWith(u'*') ? QByteArray() : name.toUtf8()) +
                       ofBlock(*entity.database(), name) + '\n';
        } else {
            appendGroup(content, group);
        }
    }
    for (const AcDbObjectId part : acdbSubEntities(entity))
        content += read(part);
    return content;
}

/// A digest of the block's entities. Blocks that contain themselves end at the second round.
QByteArray DrawingContent::ofBlock(const AcDbDatabase &database, const QString &name)
{
    const AcDbObjectId record = acdbShownBlock(database.tableRecord(SymbolTable::block, name));
    const BlockContents *const contents =
        record.isValid() ? record.database()->blockContents(record) : nullptr;
    if (!contents)
        return {};
    const auto [place, isNew] = m_known.try_emplace(record);
    if (!isNew)
        return place->second;
    QCryptographicHash digest(QCryptographicHash::Sha1);
    for (const std::uint32_t index : contents->entities) {
        if (const AcDbObjectId id(record.database()->stub(index)); id.isValid())
            digest.addData(of(id));
    }
    return m_known[record] = digest.result().toHex();
}
