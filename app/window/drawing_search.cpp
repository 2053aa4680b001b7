#include "app/window/drawing_search.h"

#include "host/acdb/dbents.h"
#include "host/acdb/dbsymtb.h"
#include "host/acgi/kinds/multileader.h"
#include "host/acgi/text/mtext_reader.h"

#include <algorithm>
#include <array>
#include <unordered_map>

namespace window
{

QString plainText(const QString &coded)
{
    QString text;
    for (const acgi::MTextItem &item : acgi::readMText(coded, {}).items) {
        using Kind = acgi::MTextItem::Kind;
        if (item.kind == Kind::run)
            text += item.text;
        else if (item.kind == Kind::stack)
            text += item.text + item.divider + item.lower;
        else
            text += u' ';
    }
    return text.trimmed();
}

/// Nothing for entities without a text of their own.
static QString textOf(AcDbObjectId id)
{
    if (AcDbObjectPointer<AcDbMText> multiline(id, AcDb::kForRead); multiline)
        return plainText(multiline->contents());
    if (AcDbObjectPointer<AcDbText> line(id, AcDb::kForRead); line)
        return line->textString();
    return {};
}

/// The texts of the picture of a dimension; without a picture, what was typed in place of the measure.
static QString dimensionText(AcDbObjectId id)
{
    const AcDbObjectPointer<AcDbEntity> dimension(id, AcDb::kForRead);
    if (!dimension)
        return {};
    const resbuf *const name = findGroup(dimension->groups(), 2);
    const BlockContents *const picture =
        name ? id.database()->blockContents(id.database()->tableRecord(SymbolTable::block, name->text()))
             : nullptr;
    QStringList texts;
    for (const std::uint32_t index : picture ? picture->entities : std::vector<std::uint32_t>())
        texts += textOf(AcDbObjectId(id.database()->stub(index)));
    texts.removeAll(QString());
    const resbuf *const typed = findGroup(dimension->groups(), 1);
    return !texts.isEmpty() ? texts.join(u' ') : typed ? plainText(typed->text()) : QString();
}

static QString multileaderText(AcDbObjectId id)
{
    const AcDbObjectPointer<AcDbEntity> leader(id, AcDb::kForRead);
    return leader ? plainText(acgi::Multileader(*leader).text.coded) : QString();
}

namespace
{

class Search
{
public:
    explicit Search(const QString &wanted) : m_wanted(wanted) {}

    void lookThrough(const AcDbDatabase &database, AcDbObjectId space)
    {
        const BlockContents *const contents = database.blockContents(space);
        m_space = space;
        for (const std::uint32_t index : contents ? contents->entities : std::vector<std::uint32_t>()) {
            const AcDbObjectId id(database.stub(index));
            if (id.isValid())
                look(id);
        }
    }
    std::vector<FoundText> found;

private:
    void look(AcDbObjectId id)
    {
        const AcDbKind kind = id.stub()->kind;
        if (kind == m_text || kind == m_mtext) {
            compare(textOf(id), id, id);
        } else if (kind == m_insert) {
            for (const AcDbObjectId owned : acdbSubEntities(id)) {
                if (owned.stub()->kind == m_attribute)
                    compare(textOf(owned), owned, id);
            }
        } else if (kind == m_multileader) {
            compare(multileaderText(id), id, id);
        } else if (std::ranges::find(m_dimensions, kind) != m_dimensions.end()) {
            compare(dimensionText(id), id, id);
        } else if (isCustom(kind)) {
            const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
            if (entity)
                compare(entity->subTexts().join(u' '), id, id);
        }
    }

    void compare(const QString &text, AcDbObjectId shown, AcDbObjectId picked)
    {
        if (text.contains(m_wanted, Qt::CaseInsensitive))
            found.push_back({m_space, picked, shown, text.simplified()});
    }

    /// Entities of native kinds need not be opened to know that they carry nothing.
    bool isCustom(AcDbKind kind)
    {
        const auto [known, isNew] = m_custom.try_emplace(kind, false);
        if (isNew)
            known->second = acdbKindClass(kind, true)->application() != nullptr;
        return known->second;
    }

    QString m_wanted;
    AcDbObjectId m_space;
    std::unordered_map<AcDbKind, bool> m_custom;
    const AcDbKind m_text = acdbKind("TEXT");
    const AcDbKind m_mtext = acdbKind("MTEXT");
    const AcDbKind m_insert = acdbKind("INSERT");
    const AcDbKind m_attribute = acdbKind("ATTRIB");
    const AcDbKind m_multileader = acdbKind("MULTILEADER");
    const std::array<AcDbKind, 3> m_dimensions{acdbKind("DIMENSION"), acdbKind("ARC_DIMENSION"),
                                               acdbKind("LARGE_RADIAL_DIMENSION")};
};

} // namespace

std::vector<FoundText> findTexts(const AcApDocument &document, const QString &wanted)
{
    if (wanted.isEmpty())
        return {};
    const AcDbDatabase &database = *document.database();
    std::vector<AcDbObjectId> spaces = acdbLayoutBlocks(database);
    std::stable_partition(spaces.begin(), spaces.end(),
                          [&](AcDbObjectId space) { return space == database.currentSpaceId(); });
    Search search(wanted);
    for (const AcDbObjectId space : spaces)
        search.lookThrough(database, space);
    return std::move(search.found);
}

} // namespace window
