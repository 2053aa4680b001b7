#include "host/formats/dxf/dxfmapper.h"

#include "host/base/host_text.h"
#include "host/formats/dxf/dxftables.h"

#include <algorithm>

namespace dxf
{

static QByteArray toByteArray(std::string_view text)
{
    return QByteArray(text.data(), qsizetype(text.size()));
}

template <class Scanner>
Mapper<Scanner>::Mapper(AcDbLoader &loader, DxfSource &source, RepairLog &log, Scanner scanner,
                        const base::Progress &progress)
    : m_loader(loader), m_source(source), m_log(log), m_scanner(scanner), m_begin(source.bytes().data()),
      m_blocks(loader, source, log), m_kinds(&loader.database()), m_progress(progress)
{
}

/// A value as repairs show it.
template <class Scanner>
QString Mapper<Scanner>::quoted(std::string_view value) const
{
    constexpr std::size_t kMostBytes = 200;
    constexpr qsizetype kShown = 40;
    return m_source.text(value.substr(0, kMostBytes)).left(kShown);
}

// Walking ----------------------------------------------------------------------------------------

/// Goes to the next group, over damage; false at the end of the file.
template <class Scanner>
bool Mapper<Scanner>::advance()
{
    for (;;) {
        const Step step = m_scanner.next(m_group);
        if (step != Step::group) {
            if (!recover(step))
                return false;
            continue;
        }
        if (m_group.code != 0)
            return true;
        m_kind = m_kinds.find(m_group.value);
        if (m_kind.role != Role::garbage)
            return true;
        if (!skipGarbageObject())
            return false;
    }
}

/// True when the scanner stands at a group again.
template <class Scanner>
bool Mapper<Scanner>::recover(Step step)
{
    const std::uint64_t at = offset(m_scanner.position());
    if (step == Step::damaged) {
        m_scanner.resynchronise();
        const bool found = m_scanner.position() != m_scanner.end();
        const QString text = !found
                                 ? Host::tr("a group code is missing here, nothing behind it could be read")
                             : m_source.form() == DrawingForm::dxfBinary
                                 ? Host::tr("a group code is missing here, reading went on at byte %1")
                                 : Host::tr("a group code is missing here, reading went on at line %1");
        m_log.add(at, found ? text.arg(m_log.place(offset(m_scanner.position()))) : text);
        if (found)
            return true;
    }
    if (step == Step::cut)
        m_log.add(at, Host::tr("the file ends inside a group"));
    m_contentEnd = at;
    m_done = true;
    return false;
}

template <class Scanner>
bool Mapper<Scanner>::skipGarbageObject()
{
    m_log.add(here(), Host::tr("\"%1\" is no kind of object").arg(quoted(m_group.value)));
    m_scanner.resynchronise();
    if (m_scanner.position() != m_scanner.end())
        return true;
    m_contentEnd = here();
    m_done = true;
    return false;
}

template <class Scanner>
void Mapper<Scanner>::toNextObject()
{
    while (advance() && m_group.code != 0) {
    }
}

template <class Scanner>
bool Mapper<Scanner>::atSectionEnd() const
{
    return m_done || m_kind.role == Role::endSection || m_kind.role == Role::section ||
           m_kind.role == Role::eof;
}

/// Takes the groups that identify an object, then goes to the next object as fast as it can.
template <class Scanner>
Head Mapper<Scanner>::readHead(bool wantName)
{
    Head head;
    const bool handleIn5 = m_kind.role != Role::dimensionStyle || m_source.version() > DrawingVersion::r12;
    if (wantName)
        readHeadGroups<true>(head, handleIn5);
    else
        readHeadGroups<false>(head, handleIn5);
    return head;
}

template <class Scanner>
template <bool WantName>
void Mapper<Scanner>::readHeadGroups(Head &head, bool handleIn5)
{
    bool marked = false;  // A subclass marker was seen: handle and owner stand before the first one.
    bool bracket = false; // Inside a "102 {" group, whose handles are not the object's own.
    bool extended = false;
    while (advance() && m_group.code != 0) {
        switch (m_group.code) {
        case 2:
            if (WantName && !extended && head.name.empty())
                head.name = m_group.value;
            break;
        case 5:
        case 105:
            if (!marked && !extended && (m_group.code == 105 || (handleIn5 && head.handle == 0)))
                head.handle = parseHandle(m_group.value);
            break;
        case 67:
            if (!extended)
                head.paperSpace = m_group.value != "0" && trimmed(m_group.value) != "0";
            break;
        case 100:
            marked = true;
            break;
        case 102:
            bracket = !marked && m_group.value.starts_with('{');
            break;
        case 330:
            if (!marked && !bracket && head.owner == 0)
                head.owner = parseHandle(m_group.value);
            break;
        case 1001:
            extended = true;
            break;
        default:
            continue;
        }
        if (extended || (marked && head.owner != 0 && (!WantName || !head.name.empty())))
            break;
    }
    if (m_done || m_group.code == 0)
        return;
    // Nothing more is wanted of this object.
    Step step = Step::group;
    while ((step = m_scanner.next(m_group)) == Step::group && m_group.code != 0) {
    }
    if (step == Step::group) {
        m_kind = m_kinds.find(m_group.value);
        if (m_kind.role != Role::garbage || !skipGarbageObject())
            return;
    } else if (!recover(step)) {
        return;
    }
    toNextObject();
}

template <class Scanner>
void Mapper<Scanner>::reportProgress()
{
    constexpr std::uint32_t kObjects = 4096;
    m_untilReport = kObjects;
    if (m_source.isKept(here()) || base::report(m_progress, double(here()) / double(m_source.bytes().size())))
        return;
    // As if the file ended here; nobody gets to see the result.
    m_stopped = true;
    m_contentEnd = here();
    m_done = true;
}

template <class Scanner>
AcDbStub *Mapper<Scanner>::addObject(Kind kind, const Head &head, std::uint64_t begin, std::uint16_t flags)
{
    if (m_untilReport-- == 0)
        reportProgress();
    const auto size = std::uint32_t(std::min<std::uint64_t>(here() - begin, UINT32_MAX));
    return m_loader.addObject(kind.number, head.handle, begin, size,
                              std::uint16_t(flags | AcDbStub::kHasSource));
}

/// An object where the format has no place for one: its bytes stay, but the drawing does not know it.
template <class Scanner>
void Mapper<Scanner>::skipStray(const QString &where)
{
    m_log.add(here(), Host::tr("%1 stands %2, it is kept but not used").arg(quoted(m_group.value), where));
    toNextObject();
}

// Sections ---------------------------------------------------------------------------------------

template <class Scanner>
bool Mapper<Scanner>::run()
{
    readSections();
    closeAtEof();
    const bool anySection = !m_source.layout().sections.empty();
    if (anySection) {
        readKept();
        if (m_rootDictionary)
            m_loader.setNamedObjects(m_rootDictionary);
        m_blocks.finish(m_source.version() >= DrawingVersion::r13 && m_source.layout().section("TABLES"));
    }
    return anySection;
}

template <class Scanner>
void Mapper<Scanner>::readSections()
{
    advance();
    while (!m_done) {
        if (m_group.code != 0) {
            if (m_group.code != 999)
                m_log.add(here(), Host::tr("a group stands outside of any object"));
            advance();
        } else if (m_kind.role == Role::section) {
            readSection();
        } else if (m_kind.role == Role::eof) {
            break;
        } else {
            skipStray(Host::tr("outside of any section"));
        }
    }
}

/// The sections that stand in comments.
template <class Scanner>
void Mapper<Scanner>::readKept()
{
    if constexpr (std::is_same_v<Scanner, TextScanner>) {
        if (!m_source.keepsInComments())
            return;
        m_source.setKept(findKept(m_source.bytes(), m_source.lineEnd(), m_source.style().lineEnd));
        if (m_source.kept().damage)
            m_log.add(*m_source.kept().damage, Host::tr("the objects kept in comments are damaged, "
                                                        "what could be read of them is used"));
        if (m_source.kept().text.isEmpty())
            return;
        m_scanner = TextScanner(m_source.keptText(), m_source.lineEnd());
        m_begin = m_source.keptText().data();
        m_beginOffset = m_source.keptBegin();
        m_done = false;
        readSections();
        m_source.endKeptAt(here());
    }
}

template <class Scanner>
void Mapper<Scanner>::closeAtEof()
{
    Layout &layout = m_source.editLayout();
    layout.eof = here();
    layout.hasEof = !m_done;
    if (m_done)
        m_log.add(here(), Host::tr("the file ends without EOF"));
}

template <class Scanner>
void Mapper<Scanner>::readSection()
{
    using Reader = void (Mapper::*)();
    static constexpr struct {
        std::string_view name;
        Reader read;
    } kReaders[] = {
        {"HEADER", &Mapper::readHeader},     {"CLASSES", &Mapper::readClasses},
        {"TABLES", &Mapper::readTables},     {"BLOCKS", &Mapper::readBlocks},
        {"ENTITIES", &Mapper::readEntities}, {"OBJECTS", &Mapper::readObjects},
    };
    Section section;
    section.begin = here();
    const bool named = advance() && m_group.code == 2;
    if (named)
        section.name = toByteArray(trimmed(m_group.value));
    else
        m_log.add(section.begin, Host::tr("a section has no name"));
    const auto *const known = std::ranges::find_if(kReaders, [&](const auto &row) {
        return row.name == std::string_view(section.name.data(), std::size_t(section.name.size()));
    });
    const bool belongsHere = !m_source.isKept(section.begin) || standsInComments(section.name);
    const bool isKnown = belongsHere && known != std::end(kReaders);
    if (named && section.name == "HEADER")
        advance();
    else if (named || (!m_done && m_group.code != 0))
        toNextObject();

    if (isKnown)
        (this->*known->read)();
    while (!atSectionEnd())
        toNextObject();
    section.end = here();
    section.closed = !m_done && m_kind.role == Role::endSection;
    if (section.closed)
        toNextObject();
    else
        m_log.add(section.end, Host::tr("the section %1 has no end")
                                   .arg(quoted({section.name.data(), std::size_t(section.name.size())})));
    m_source.editLayout().sections.push_back(std::move(section));
}

/// m_group is the first group behind the section's name.
template <class Scanner>
void Mapper<Scanner>::readHeader()
{
    std::vector<Variable> &variables = m_source.editLayout().variables;
    bool inVariable = false;
    for (; !m_done && m_group.code != 0; advance()) {
        if (m_group.code == 9) {
            variables.push_back({toByteArray(trimmed(m_group.value)), {here(), offset(m_group.end)}});
            inVariable = true;
        } else if (inVariable && m_group.code != 999) {
            variables.back().place.end = offset(m_group.end);
        }
    }
    addHeaderVariables();
}

template <class Scanner>
void Mapper<Scanner>::addHeaderVariables()
{
    const auto firstValue = [this](std::string_view name) {
        std::string_view found;
        for (const Variable &variable : m_source.layout().variables) {
            if (std::string_view(variable.name.data(), std::size_t(variable.name.size())) != name)
                continue;
            int groups = 0;
            m_source.visitGroups(m_source.bytes(variable.place), [&](const Group &group) {
                found = group.value;
                return ++groups < 2;
            });
            break;
        }
        return found;
    };
    m_source.setVersion(firstValue("$ACADVER"), firstValue("$DWGCODEPAGE"));
    for (const Variable &variable : m_source.layout().variables) {
        ResbufList groups = m_source.decode(m_source.bytes(variable.place));
        groups.erase(groups.begin());
        m_loader.addHeaderVariable(variable.name, std::move(groups));
    }
}

static DrawingClass classOf(const ResbufList &groups)
{
    const auto text = [&](int code) {
        const resbuf *const g = findGroup(groups, code);
        return g ? g->text() : QString();
    };
    const auto number = [&](int code) {
        const resbuf *const g = findGroup(groups, code);
        return g ? g->integer() : 0;
    };
    DrawingClass found;
    found.dxfName = text(1).toUtf8();
    found.className = text(2);
    found.application = text(3);
    found.proxyFlags = int(number(90));
    found.wasProxy = number(280) != 0;
    found.isEntity = number(281) != 0;
    found.fromSource = true;
    return found;
}

template <class Scanner>
void Mapper<Scanner>::readClasses()
{
    while (!atSectionEnd()) {
        if (m_kind.role != Role::classRecord) {
            skipStray(Host::tr("among the classes"));
            continue;
        }
        Place place{here(), 0};
        toNextObject();
        place.end = here();
        DrawingClass found = classOf(m_source.decode(m_source.bytes(place)));
        m_source.editLayout().classes.push_back({found.dxfName, place});
        m_loader.addClass(std::move(found));
    }
}

template <class Scanner>
void Mapper<Scanner>::readTables()
{
    while (!atSectionEnd()) {
        if (m_kind.role == Role::table)
            readTable();
        else
            addStrayRecord(Host::tr("outside of any table"));
    }
}

template <class Scanner>
void Mapper<Scanner>::readTable()
{
    Table table;
    const Kind kind = m_kind;
    table.head.begin = here();
    const Head head = readHead(true);
    table.head.end = here();
    table.name = toByteArray(trimmed(head.name));
    table.kind = tableByName(trimmed(head.name));
    if (head.handle != 0) {
        table.stub = addObject(kind, head, table.head.begin, 0);
        if (table.kind)
            m_loader.setTableHead(*table.kind, table.stub);
    }
    while (!atSectionEnd() && m_kind.role != Role::table && m_kind.role != Role::endTable)
        addTableRecord(table);
    table.end = here();
    table.closed = !m_done && m_kind.role == Role::endTable;
    if (table.closed)
        toNextObject();
    else
        m_log.add(table.end, Host::tr("the table %1 has no end").arg(quoted(head.name)));
    m_source.editLayout().tables.push_back(std::move(table));
}

template <class Scanner>
void Mapper<Scanner>::addTableRecord(const Table &table)
{
    const std::uint64_t begin = here();
    const Kind kind = m_kind;
    if (table.kind && acdbKindName(kind.number) != table.name) {
        addStrayRecord(
            Host::tr("in the table %1").arg(quoted({table.name.data(), std::size_t(table.name.size())})));
        return;
    }
    if (table.kind) {
        addRecord(*table.kind);
        return;
    }
    AcDbStub *const stub = addObject(kind, readHead(false), begin, 0);
    if (table.stub)
        m_loader.setOwner(stub, table.stub);
}

template <class Scanner>
void Mapper<Scanner>::addRecord(SymbolTable table)
{
    const std::uint64_t begin = here();
    const Kind kind = m_kind;
    const bool isBlock = table == SymbolTable::block;
    const Head head = readHead(isBlock);
    AcDbStub *const stub = addObject(kind, head, begin, 0);
    m_loader.addRecord(table, stub);
    if (isBlock)
        m_blocks.addRecord(stub, head.handle, head.name);
}

/// A record tells by its kind which table it belongs to. Without their block records the spaces would be
/// empty.
template <class Scanner>
void Mapper<Scanner>::addStrayRecord(const QString &where)
{
    const QByteArray kind = acdbKindName(m_kind.number);
    const auto table = tableByName({kind.data(), std::size_t(kind.size())});
    if (!table) {
        skipStray(where);
        return;
    }
    m_log.add(here(), Host::tr("%1 stands %2, it is used all the same").arg(quoted(m_group.value), where));
    addRecord(*table);
}

template <class Scanner>
void Mapper<Scanner>::readBlocks()
{
    while (!atSectionEnd()) {
        if (m_kind.role == Role::block)
            readBlock();
        else
            skipStray(Host::tr("outside of any block"));
    }
}

template <class Scanner>
void Mapper<Scanner>::readBlock()
{
    const std::uint64_t begin = here();
    const Kind kind = m_kind;
    const Head head = readHead(true);
    AcDbStub *const stub = addObject(kind, head, begin, AcDbStub::kEntity);
    m_blocks.beginBlock(stub, head.owner, head.name, begin);
    m_mainEntity = nullptr;
    while (!atSectionEnd() && m_kind.role != Role::block && m_kind.role != Role::endBlock)
        addEntity({here(), true});
    if (!m_done && m_kind.role == Role::endBlock) {
        const std::uint64_t endBegin = here();
        const Kind endKind = m_kind;
        const Head endHead = readHead(false);
        m_blocks.endBlock(addObject(endKind, endHead, endBegin, AcDbStub::kEntity));
        return;
    }
    m_log.add(here(), Host::tr("the block %1 has no end").arg(quoted(head.name)));
    m_source.editLayout().unendedBlocks.push_back({stub, here()});
}

template <class Scanner>
void Mapper<Scanner>::readEntities()
{
    m_mainEntity = nullptr;
    while (!atSectionEnd())
        addEntity({here(), false});
}

template <class Scanner>
void Mapper<Scanner>::addEntity(BlockCollector::Place place)
{
    const Kind kind = m_kind;
    const bool isSub = kind.role == Role::subEntity || kind.role == Role::sequenceEnd;
    const bool owned = isSub && m_mainEntity;
    const Head head = readHead(false);
    const int flags = AcDbStub::kEntity | (owned ? AcDbStub::kSubEntity : 0);
    AcDbStub *const stub = addObject(kind, head, place.offset, std::uint16_t(flags));
    if (owned) {
        m_loader.setOwner(stub, m_mainEntity);
        if (kind.role == Role::sequenceEnd)
            m_mainEntity = nullptr;
        return;
    }
    if (isSub)
        m_log.add(place.offset, Host::tr("a part of a polyline or insert stands alone"));
    m_mainEntity = kind.role == Role::mainEntity ? stub : nullptr;
    m_blocks.addEntity(stub, head.owner, head.paperSpace, place);
}

template <class Scanner>
void Mapper<Scanner>::readObjects()
{
    while (!atSectionEnd()) {
        const std::uint64_t begin = here();
        const Kind kind = m_kind;
        const Head head = readHead(false);
        AcDbStub *const stub = addObject(kind, head, begin, 0);
        if (head.owner != 0)
            m_loader.setOwnerHandle(stub, head.owner);
        if (kind.role == Role::dictionary && (!m_rootDictionary || (head.owner == 0 && !m_rootHasNoOwner))) {
            m_rootDictionary = stub;
            m_rootHasNoOwner = head.owner == 0;
        }
    }
}

template class Mapper<TextScanner>;
template class Mapper<BinaryScanner>;

} // namespace dxf
