// Kinds: DXF object names numbered for the process, and the run-time classes behind them.
#include "host/acdb/dbdatabase.h"
#include "host/acdb/dbdict.h"
#include "host/acdb/dbents.h"
#include "host/acdb/dbsymtb.h"
#include "host/acdb/kinds/entitykind.h"

#include "host/base/assert.h"

#include <QHash>

#include <limits>
#include <utility>

struct Kinds {
    static constexpr std::uint32_t kOurs = std::numeric_limits<std::uint32_t>::max();

    /// They never move: other threads read those of their drawings while this one adds more.
    Kinds() { names.reserve(std::size_t(std::numeric_limits<AcDbKind>::max()) + 1); }

    std::vector<QByteArray> names{QByteArray()};
    std::vector<std::uint32_t> users{kOurs}; ///< By kind: how many drawings name it; the program itself.
    QHash<QByteArray, AcDbKind> numbers;
    std::vector<AcDbKind> unused;     ///< Numbers whose last drawing has gone.
    std::vector<AcRxClass *> classes; ///< By kind; null: not looked up in this generation.
    unsigned generation = 0;          ///< Of the class dictionary.

    /// 0 when the name is new and all numbers but `reserve` are in use.
    AcDbKind numberOf(const QByteArray &name, std::size_t reserve)
    {
        if (const auto known = numbers.constFind(name); known != numbers.constEnd())
            return *known;
        if (unused.empty() && names.size() + reserve >= std::numeric_limits<AcDbKind>::max())
            return 0;
        if (unused.empty()) {
            unused.push_back(AcDbKind(names.size()));
            names.emplace_back();
            users.push_back(0);
        }
        const AcDbKind number = unused.back();
        unused.pop_back();
        names[number] = name;
        numbers.insert(name, number);
        return number;
    }
};

static Kinds &kinds()
{
    // Never destroyed: drawings that live until the program ends give their numbers back.
    static auto &all = *new Kinds;
    return all;
}

AcDbKind acdbKind(const QByteArray &dxfName)
{
    const AcDbKind number = kinds().numberOf(dxfName, 0);
    kinds().users[number] = Kinds::kOurs;
    return number;
}

AcDbKind acdbKnownKind(const QByteArray &dxfName)
{
    return kinds().numbers.value(dxfName, 0);
}

AcDbKind AcDbDrawingKinds::take(const QByteArray &dxfName)
{
    // The program finds numbers left when it asks after a drawing took all the others.
    constexpr std::size_t kForTheProgram = 4096;
    if (acdbKnownKind(dxfName) == 0 && acrxClassDictionary().atDxfName(dxfName))
        return acdbKind(dxfName);
    const AcDbKind number = kinds().numberOf(dxfName, kForTheProgram);
    if (kinds().users[number] != Kinds::kOurs && m_taken.insert(number).second)
        ++kinds().users[number];
    return number;
}

AcDbDrawingKinds::~AcDbDrawingKinds()
{
    Kinds &all = kinds();
    for (const AcDbKind number : m_taken) {
        if (all.users[number] == Kinds::kOurs || --all.users[number] > 0)
            continue;
        all.numbers.remove(std::exchange(all.names[number], {}));
        all.unused.push_back(number);
        if (number < all.classes.size())
            all.classes[number] = nullptr;
    }
}

const QByteArray &acdbKindName(AcDbKind kind)
{
    return kinds().names.data()[kind];
}

AcRxClass *acdbKindClass(AcDbKind kind, bool isEntity)
{
    std::vector<AcRxClass *> &known = kinds().classes;
    if (kinds().generation != acrxClassDictionary().generation()) {
        known.clear();
        kinds().generation = acrxClassDictionary().generation();
    }
    if (kind >= known.size())
        known.resize(kinds().names.size(), nullptr);
    if (!known[kind])
        known[kind] = acrxClassDictionary().atDxfName(acdbKindName(kind));
    if (known[kind])
        return known[kind];
    return isEntity ? AcDbEntity::desc() : AcDbObject::desc();
}

AcRxClass *AcDbObjectId::objectClass() const
{
    QUILL_ASSERT(m_stub != nullptr);
    return acdbKindClass(m_stub->kind, isEntity());
}

struct KindRow {
    const char *dxfName;
    const char *className;
};

// clang-format off
static constexpr KindRow kObjectKinds[] = {
    {"ACAD_PROXY_OBJECT", "AcDbProxyObject"}, {"ACDBPLACEHOLDER", "AcDbPlaceHolder"}, {"GROUP", "AcDbGroup"},
    {"IMAGEDEF", "AcDbRasterImageDef"}, {"LAYOUT", "AcDbLayout"}, {"MATERIAL", "AcDbMaterial"},
    {"MLEADERSTYLE", "AcDbMLeaderStyle"}, {"MLINESTYLE", "AcDbMlineStyle"}, {"PLOTSETTINGS", "AcDbPlotSettings"},
    {"SCALE", "AcDbScale"}, {"SORTENTSTABLE", "AcDbSortentsTable"}, {"TABLE", "AcDbSymbolTable"},
    {"TABLESTYLE", "AcDbTableStyle"}, {"VISUALSTYLE", "AcDbVisualStyle"},
};
static constexpr KindRow kRecordKinds[] = {
    {"APPID", "AcDbRegAppTableRecord"}, {"DIMSTYLE", "AcDbDimStyleTableRecord"},
    {"LTYPE", "AcDbLinetypeTableRecord"}, {"STYLE", "AcDbTextStyleTableRecord"}, {"UCS", "AcDbUCSTableRecord"},
    {"VIEW", "AcDbViewTableRecord"}, {"VPORT", "AcDbViewportTableRecord"},
};
// clang-format on

template <class T, std::size_t Count>
static void addKinds(const KindRow (&rows)[Count], AcRxClass *parent)
{
    for (const KindRow &row : rows)
        newAcRxClass(QString::fromLatin1(row.className), parent, row.dxfName, [] { return new T; });
}

template <class T>
static AcRxClass *addKind(const char *className, AcRxClass *parent, const char *dxfName)
{
    return newAcRxClass(QString::fromLatin1(className), parent, dxfName, [] { return new T; });
}

static void registerOnce()
{
    AcRxClass *const object =
        newAcRxClass(QStringLiteral("AcDbObject"), nullptr, {}, [] { return new AcDbObject; });
    AcRxClass *const entity =
        newAcRxClass(QStringLiteral("AcDbEntity"), object, {}, [] { return new AcDbEntity; });
    for (const EntityKind &kind : acdbEntityKinds()) {
        if (kind.className)
            addKind<AcDbEntity>(kind.className, entity, kind.dxfName);
    }
    addKinds<AcDbObject>(kObjectKinds, object);
    AcRxClass *const text = addKind<AcDbText>("AcDbText", entity, "TEXT");
    addKind<AcDbAttribute>("AcDbAttribute", text, "ATTRIB");
    addKind<AcDbMText>("AcDbMText", entity, "MTEXT");
    addKind<AcDbBlockReference>("AcDbBlockReference", entity, "INSERT");
    AcRxClass *const dictionary = addKind<AcDbDictionary>("AcDbDictionary", object, "DICTIONARY");
    addKind<AcDbDictionary>("AcDbDictionaryWithDefault", dictionary, "ACDBDICTIONARYWDFLT");
    addKind<AcDbXrecord>("AcDbXrecord", object, "XRECORD");
    AcRxClass *const record = newAcRxClass(QStringLiteral("AcDbSymbolTableRecord"), object, {},
                                           [] { return new AcDbSymbolTableRecord; });
    addKinds<AcDbSymbolTableRecord>(kRecordKinds, record);
    addKind<AcDbLayerTableRecord>("AcDbLayerTableRecord", record, "LAYER");
    addKind<AcDbBlockTableRecord>("AcDbBlockTableRecord", record, "BLOCK_RECORD");
}

void acdbRegisterClasses()
{
    static const bool done = (registerOnce(), true);
    (void)done;
}

static AcRxClass *hostClass(const char *name)
{
    acdbRegisterClasses();
    AcRxClass *const known = acrxClassDictionary().at(QString::fromLatin1(name));
    QUILL_ASSERT(known != nullptr);
    return known;
}

// The run-time classes of the host's own types, by the names registered above.
// clang-format off
AcRxClass *AcDbObject::desc() { static AcRxClass *const c = hostClass("AcDbObject"); return c; }
AcRxClass *AcDbEntity::desc() { static AcRxClass *const c = hostClass("AcDbEntity"); return c; }
AcRxClass *AcDbText::desc() { static AcRxClass *const c = hostClass("AcDbText"); return c; }
AcRxClass *AcDbAttribute::desc() { static AcRxClass *const c = hostClass("AcDbAttribute"); return c; }
AcRxClass *AcDbMText::desc() { static AcRxClass *const c = hostClass("AcDbMText"); return c; }
AcRxClass *AcDbBlockReference::desc() { static AcRxClass *const c = hostClass("AcDbBlockReference"); return c; }
AcRxClass *AcDbDictionary::desc() { static AcRxClass *const c = hostClass("AcDbDictionary"); return c; }
AcRxClass *AcDbXrecord::desc() { static AcRxClass *const c = hostClass("AcDbXrecord"); return c; }
AcRxClass *AcDbSymbolTableRecord::desc() { static AcRxClass *const c = hostClass("AcDbSymbolTableRecord"); return c; }
AcRxClass *AcDbLayerTableRecord::desc() { static AcRxClass *const c = hostClass("AcDbLayerTableRecord"); return c; }
AcRxClass *AcDbBlockTableRecord::desc() { static AcRxClass *const c = hostClass("AcDbBlockTableRecord"); return c; }
// clang-format on
