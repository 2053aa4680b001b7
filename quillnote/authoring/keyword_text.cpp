#include "quillnote/authoring/keyword_text.h"

#include "host/acdb/dbapi.h"
#include "host/acdb/dbents.h"
#include "host/acdb/dbsymtb.h"
#include "host/acgi/text/mtext_reader.h"

namespace
{

constexpr int kMostEntities = 101;
constexpr int kMostOfBlock = 100;
constexpr int kMostAttributes = 100;
constexpr qsizetype kLongestText = 1000;   ///< Of one entity.
constexpr qsizetype kLongestWhole = 20000; ///< Each new text is compared with all of it.

QString plainText(const QString &coded)
{
    QString text;
    for (const acgi::MTextItem &item :
         acgi::readMText(coded.first(std::min(coded.size(), kLongestText)), {}).items)
        text += item.kind == acgi::MTextItem::Kind::run ? item.text : QStringLiteral(" ");
    return text.simplified();
}

/// "AcDbLine": the name of the kind's own class.
QString className(const AcDbEntity &entity)
{
    QString name = entity.isA()->name();
    if (name != u"AcDbEntity")
        return name;
    for (const resbuf &group : acdbEntGetX(entity.objectId())) {
        if (group.restype == 100)
            name = group.text();
    }
    return name;
}

class Keywords
{
public:
    void look(AcDbObjectId id, int &budget)
    {
        const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
        if (!entity)
            return;
        add(className(*entity));
        add(entity->layer());
        if (AcDbObjectPointer<AcDbMText> lines(id, AcDb::kForRead); lines)
            add(plainText(lines->contents()));
        else if (AcDbObjectPointer<AcDbText> line(id, AcDb::kForRead); line)
            add(line->textString());
        else if (AcDbObjectPointer<AcDbBlockReference> block(id, AcDb::kForRead); block)
            lookInto(id, *block, budget);
    }
    QString text;

private:
    void add(const QString &word)
    {
        const QString cut = word.first(std::min(word.size(), kLongestText));
        if (!cut.isEmpty() && text.size() < kLongestWhole && !text.contains(cut))
            text += u',' + cut;
    }

    void lookInto(AcDbObjectId id, const AcDbBlockReference &block, int &budget)
    {
        add(block.blockName());
        int attributes = 0;
        for (const AcDbObjectId owned : acdbSubEntities(id)) {
            if (++attributes > kMostAttributes)
                break;
            if (AcDbObjectPointer<AcDbAttribute> attribute(owned, AcDb::kForRead); attribute)
                add(attribute->textString());
        }
        const AcDbObjectId record = block.blockTableRecord();
        const AcDbDatabase *const database = id.database();
        const BlockContents *const contents =
            record.isNull() || !database ? nullptr : database->blockContents(record);
        if (!contents)
            return;
        // The rest of the budget bounds blocks in blocks, and blocks that contain themselves.
        for (const std::uint32_t index : contents->entities) {
            if (--budget < 0)
                return;
            look(AcDbObjectId(database->stub(index)), budget);
        }
    }
};

} // namespace

QString keywordText(const std::vector<AcDbObjectId> &entities)
{
    Keywords keywords;
    for (std::size_t i = 0; i < entities.size() && i < kMostEntities; ++i) {
        int budget = kMostOfBlock;
        keywords.look(entities[i], budget);
    }
    return keywords.text;
}
