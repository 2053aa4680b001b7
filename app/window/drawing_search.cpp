#include "app/window/drawing_search.h"

#include "host/acdb/dbents.h"
#include "host/acdb/dbsymtb.h"
#include "host/acgi/gimtextreader.h"

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

namespace
{

class Search
{
public:
    explicit Search(const QString &wanted) : m_wanted(wanted) {}

    void look(AcDbObjectId id)
    {
        const AcDbKind kind = id.stub()->kind;
        if (kind == m_text || kind == m_mtext) {
            lookAt(id, id);
        } else if (kind == m_insert) {
            for (const AcDbObjectId owned : acdbSubEntities(id)) {
                if (owned.stub()->kind == m_attribute)
                    lookAt(owned, id);
            }
        }
    }
    std::vector<FoundText> found;

private:
    void lookAt(AcDbObjectId shown, AcDbObjectId picked)
    {
        const QString text = textOf(shown);
        if (text.contains(m_wanted, Qt::CaseInsensitive))
            found.push_back({picked, shown, text});
    }

    QString m_wanted;
    const AcDbKind m_text = acdbKind("TEXT");
    const AcDbKind m_mtext = acdbKind("MTEXT");
    const AcDbKind m_insert = acdbKind("INSERT");
    const AcDbKind m_attribute = acdbKind("ATTRIB");
};

} // namespace

std::vector<FoundText> findTexts(const AcApDocument &document, const QString &wanted)
{
    Search search(wanted);
    const BlockContents *const space =
        document.database()->blockContents(document.database()->currentSpaceId());
    if (wanted.isEmpty() || !space)
        return {};
    for (const std::uint32_t index : space->entities) {
        const AcDbObjectId id(document.database()->stub(index));
        if (id.isValid())
            search.look(id);
    }
    return std::move(search.found);
}

} // namespace window
