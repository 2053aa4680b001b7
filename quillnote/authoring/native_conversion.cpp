#include "quillnote/authoring/native_conversion.h"

#include "quillnote/authoring/collect_marks.h"
#include "quillnote/entity/mark_record.h"
#include "quillnote/entity/native_entities.h"

#include "host/acap/docman.h"
#include "host/acdb/dbsymtb.h"
#include "host/aced/edfrontend.h"

#include <QHash>

static constexpr char kBigFont[] = "gbcbig.shx";

// Text styles -------------------------------------------------------------------------------------

namespace
{

/// The styles that converted text is in.
class ConversionStyles
{
public:
    explicit ConversionStyles(AcDbDatabase &database)
        : m_database(database), m_current(database.headerText("$TEXTSTYLE", QStringLiteral("Standard")))
    {
    }

    /// A shape font has no Chinese characters of its own.
    void giveBigFontToCurrent()
    {
        const AcDbObjectId id = m_database.tableRecord(SymbolTable::textStyle, m_current);
        AcDbObjectPointer<AcDbObject> style(id, AcDb::kForWrite);
        if (!style)
            return;
        const resbuf *const font = findGroup(style->groups(), 3);
        const resbuf *const bigFont = findGroup(style->groups(), 4);
        const bool isShape = font && font->text().endsWith(u".shx", Qt::CaseInsensitive);
        if (isShape && !(bigFont && !bigFont->text().isEmpty()))
            style->setGroup(4, QString::fromLatin1(kBigFont), u"AcDbTextStyleTableRecord");
    }

    NativeTextStyles styles()
    {
        return {.current = m_current,
                .withFont = [this](const acgi::FontRequest &font) { return withFont(font); }};
    }

private:
    QString withFont(const acgi::FontRequest &font);

    AcDbDatabase &m_database;
    QString m_current;
    QHash<QString, QString> m_byFont;
};

QString ConversionStyles::withFont(const acgi::FontRequest &font)
{
    const QString file = font.fontFile.isEmpty() ? font.typeface + QStringLiteral(".ttf") : font.fontFile;
    QString &name = m_byFont[file];
    if (!name.isEmpty())
        return name;
    AcDbSymbolTable table(m_database, SymbolTable::textStyle);
    const QString wanted = QStringLiteral("QN_") + file.section(u'.', 0, 0).toUpper();
    AcDbObjectId added;
    const QString model = table.has(m_current) ? m_current : QStringLiteral("Standard");
    if (table.has(wanted) || table.addLike(model, wanted, added) != Acad::eOk)
        return name = table.has(wanted) ? wanted : model;
    AcDbObjectPointer<AcDbObject> style(added.stub()->object);
    constexpr QStringView kRecord = u"AcDbTextStyleTableRecord";
    style->setGroup(3, file, kRecord);
    style->setGroup(4, font.bigFontFile, kRecord);
    for (const auto &[code, value] : {std::pair(40, 0.0), std::pair(41, 1.0), std::pair(50, 0.0)})
        style->setGroup(code, value, kRecord);
    for (const int flags : {70, 71})
        style->setGroup(flags, std::int64_t(0), kRecord);
    return name = wanted;
}

/// Turns marks into block references.
class Converter
{
public:
    explicit Converter(AcDbDatabase &database)
        : m_database(database), m_blocks(database), m_styles(database), m_settings(markDrawingSettings()),
          m_view(currentMarkView(&database))
    {
        m_styles.giveBigFontToCurrent();
    }

    /// False when the drawing refuses new blocks.
    bool convert(const QuillnoteObj3 &mark);

private:
    MarkLayout layOut(const QuillnoteObj3 &mark) const;
    bool insert(const QuillnoteObj3 &mark, const QString &blockName);

    AcDbDatabase &m_database;
    AcDbNewBlocks m_blocks;
    ConversionStyles m_styles;
    MarkDrawingSettings m_settings;
    MarkView m_view;
};

// A mark that is smaller than the drawing unit has no outline; its conversion is for good, so it gets one.
MarkLayout Converter::layOut(const QuillnoteObj3 &mark) const
{
    constexpr double kUnitPixels = 15.0;
    constexpr double kUnits = 30.0; // In the diagonal of a target, as on plots.
    MarkView view = m_view;
    AcDbObjectPointer<AcDbBlockTableRecord> space(mark.blockId(), AcDb::kForRead);
    view.viewport.paperSpace = space && space->isPaperSpace();
    space.close();
    const double diagonal = targetCorners(mark).diagonal();
    if (diagonal > kGeTolerance && diagonal < kUnitPixels * view.viewport.countedPixelSize())
        view.viewport.height *= diagonal / kUnits / (kUnitPixels * view.viewport.countedPixelSize());
    return layOutMark(mark, m_settings, view);
}

bool Converter::convert(const QuillnoteObj3 &mark)
{
    NativeEntityBuilder builder(mark, m_database.version(), m_styles.styles());
    buildNativeEntities(layOut(mark), builder);
    const AcDbObjectId record = m_blocks.addAnonymous(mark.targetCorner1);
    if (record.isNull())
        return false;
    AcDbObjectPointer<AcDbBlockTableRecord> block(static_cast<AcDbBlockTableRecord *>(record.stub()->object));
    for (std::unique_ptr<AcDbEntity> &entity : builder.take()) {
        AcDbObjectId id;
        AcDbEntity *const added = entity.release();
        block->appendAcDbEntity(id, added);
        added->close();
    }
    return insert(mark, block->getName());
}

bool Converter::insert(const QuillnoteObj3 &mark, const QString &blockName)
{
    std::unique_ptr<AcDbEntity> reference = acdbNewEntity(
        "INSERT", {{100, QStringLiteral("AcDbBlockReference")}, {2, blockName}, {10, mark.targetCorner1}});
    for (const int code : {6, 8, 62, 420, 430, 440, 370, 48}) {
        if (const resbuf *const group = findGroup(mark.groups(), code))
            reference->setGroup(code, group->resval, u"AcDbEntity");
    }
    AcDbObjectPointer<AcDbBlockTableRecord> space(mark.blockId(), AcDb::kForWrite);
    if (!space)
        return false;
    AcDbObjectId id;
    AcDbEntity *const added = reference.release();
    space->appendAcDbEntity(id, added);
    added->close();
    return true;
}

} // namespace

// Marks -------------------------------------------------------------------------------------------

static bool eraseMark(AcDbObjectId id)
{
    AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForWrite);
    return mark && mark->erase() == Acad::eOk;
}

NativeConversion convertMarks(AcDbDatabase &database)
{
    NativeConversion result;
    const std::vector<AcDbObjectId> ids = collectMarks(database).ids;
    if (ids.empty())
        return result;
    Converter converter(database);
    for (const AcDbObjectId id : ids) {
        {
            const AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForRead);
            if (!mark)
                continue;
            if (mark->displayMode == DisplayMode::hidden) {
                ++result.hidden;
                continue;
            }
            if (!converter.convert(*mark))
                continue;
        }
        ++result.converted;
        result.notErased += eraseMark(id) ? 0 : 1;
    }
    return result;
}

void QN8_ToNativeEnt()
{
    AcApDocument *const document = curDoc();
    if (!document)
        return;
    const NativeConversion result = convertMarks(*document->database());
    acutPrintf(QStringLiteral("\n%1 个标签已转换为普通图元。").arg(result.converted));
    if (result.hidden > 0)
        acutPrintf(QStringLiteral("\n%1 个隐藏的标签未转换，保留原样。").arg(result.hidden));
    if (result.notErased > 0)
        acutPrintf(QStringLiteral("\n%1 个受保护的标签仍保留在转换结果旁。").arg(result.notErased));
}
