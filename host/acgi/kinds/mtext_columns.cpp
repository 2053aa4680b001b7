#include "host/acgi/kinds/mtext_columns.h"

#include "host/acdb/dbapi.h"
#include "host/acdb/dbdatabase.h"
#include "host/acdb/dbreactor.h"

#include <cstring>
#include <unordered_map>
#include <vector>

namespace acgi
{

namespace
{

/// What the first of several columns says of them.
struct ColumnData {
    std::optional<double> width;
    std::vector<AcDbHandle> others;
};

constexpr std::string_view kOthers = "ACAD_MTEXT_COLUMNS_BEGIN";

/// The columns of one drawing, by the text that fills each but the first; kept up by changes. Columns of
/// texts that were erased stay: what is left of them is as wide as it was.
class LinkedColumns : public AcDbDatabaseReactor
{
public:
    explicit LinkedColumns(AcDbDatabase &database);
    ~LinkedColumns() override { m_database.removeReactor(this); }
    LinkedColumns(const LinkedColumns &) = delete;
    LinkedColumns &operator=(const LinkedColumns &) = delete;
    static LinkedColumns &of(AcDbDatabase &database);

    std::optional<double> width(AcDbHandle text) const
    {
        const auto found = m_widths.find(text.value);
        return found == m_widths.end() ? std::nullopt : std::optional(found->second);
    }

    void objectAppended(const AcDbDatabase *, const AcDbObject *object) override { note(*object); }
    void objectReAppended(const AcDbDatabase *, const AcDbObject *object) override { note(*object); }
    void objectModified(const AcDbDatabase *, const AcDbObject *object) override { note(*object); }

private:
    void note(const AcDbObject &object);

    AcDbDatabase &m_database;
    std::unordered_map<std::uint64_t, double> m_widths;
};

AcDbKind mtextKind()
{
    static const AcDbKind kind = acdbKind("MTEXT");
    return kind;
}

} // namespace

static ColumnData readColumnData(const AcDbEntity &mtext)
{
    enum class Part { none, info, others };
    enum Key { kType = 75, kWidth = 48 }; // Each value stands behind the code that it has in newer files.
    ColumnData data;
    Part part = Part::none;
    std::int64_t key = 0;
    std::int64_t type = 0;
    double width = 0.0;
    for (const resbuf &group : mtext.xData(QStringLiteral("ACAD"))) {
        if (group.restype == 1000) {
            const QString text = group.text();
            part = text == u"ACAD_MTEXT_COLUMN_INFO_BEGIN" ? Part::info
                   : text == QLatin1String(kOthers.data()) ? Part::others
                                                           : Part::none;
            key = 0;
        } else if (part == Part::others && group.restype == 1005) {
            data.others.push_back(group.handle());
        } else if (part == Part::info && key == 0 && group.restype == 1070) {
            key = group.integer();
        } else if (part == Part::info) {
            if (key == kType && group.restype == 1070)
                type = group.integer();
            else if (key == kWidth && group.restype == 1040)
                width = group.real();
            key = 0;
        }
    }
    if (type != 0 && width > 0.0)
        data.width = width;
    return data;
}

/// Whether reading every text of the drawing could find columns at all; most drawings have none.
static bool mayHaveLinkedColumns(const AcDbDatabase &database)
{
    const DrawingSource *const source = database.source();
    if (!source || source->version() >= DrawingVersion::r2018)
        return false;
    const std::string_view bytes = source->bytes();
    return source->form() == DrawingForm::dwg ||
           memmem(bytes.data(), bytes.size(), kOthers.data(), kOthers.size()) != nullptr;
}

LinkedColumns::LinkedColumns(AcDbDatabase &database) : m_database(database)
{
    database.addReactor(this);
    if (!mayHaveLinkedColumns(database))
        return;
    for (std::uint32_t i = 1; i < database.stubCount(); ++i) {
        AcDbStub *const stub = database.stub(i);
        if (stub->kind != mtextKind())
            continue;
        if (const AcDbObjectPointer<AcDbEntity> text(AcDbObjectId(stub), AcDb::kForRead); text)
            note(*text);
    }
}

LinkedColumns &LinkedColumns::of(AcDbDatabase &database)
{
    return database.attachments().get<LinkedColumns>(database);
}

void LinkedColumns::note(const AcDbObject &object)
{
    const AcDbStub *const stub = object.objectId().stub();
    const auto *const mtext = dynamic_cast<const AcDbEntity *>(&object);
    if (!stub || stub->kind != mtextKind() || !mtext)
        return;
    const ColumnData data = readColumnData(*mtext);
    if (!data.width)
        return;
    for (const AcDbHandle other : data.others)
        m_widths[other.value] = *data.width;
}

std::optional<double> columnWidthOf(const AcDbEntity &mtext)
{
    if (const ColumnData data = readColumnData(mtext); data.width)
        return data.width;
    AcDbDatabase *const database = mtext.database();
    const AcDbObjectId id = mtext.objectId();
    return database && !id.isNull() ? LinkedColumns::of(*database).width(id.handle()) : std::nullopt;
}

} // namespace acgi
