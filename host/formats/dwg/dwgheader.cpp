#include "host/formats/dwg/dwgheader.h"

#include "host/base/assert.h"
#include "host/base/host_text.h"
#include "host/formats/dwg/dwgencoder.h"
#include "host/formats/dwg/dwgsection.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace dwg
{
namespace
{

/// "CODE:NAME:group" in the order of the file, "@2004" and "@<2004" as in dwgkinds.h. Codes as there, and
/// D a date of days and milliseconds, HD a handle among the data, F the flags of AC1015.
/// A lone "CODE" is read and forgotten.
constexpr const char *kVariables =
    "BLL:REQUIREDVERSIONS:160@2013 BD BD BD BD T T T T BL BL BS@<2000 H@<2004 "
    "B:DIMASO:70 B:DIMSHO:70 B@<2000 B:PLINEGEN:70 B:ORTHOMODE:70 B:REGENMODE:70 B:FILLMODE:70 "
    "B:QTEXTMODE:70 "
    "B:PSLTSCALE:70 B:LIMCHECK:70 B@<2000 B@2004 B:USRTIMER:70 B:SKPOLY:70 B:ANGDIR:70 B:SPLFRAME:70 B@<2000 "
    "B@<2000 "
    "B:MIRRTEXT:70 B:WORLDVIEW:70 B@<2000 B:TILEMODE:70 B:PLIMCHECK:70 B:VISRETAIN:70 B@<2000 B:DISPSILH:70 "
    "B:PELLIPSE:70 BS:PROXYGRAPHICS:70 BS@<2000 BS:TREEDEPTH:70 BS:LUNITS:70 BS:LUPREC:70 BS:AUNITS:70 "
    "BS:AUPREC:70 "
    "BS@<2000 BS:ATTMODE:70 BS@<2000 BS:PDMODE:70 BS@<2000 BL@2004 BL@2004 BL@2004 "
    "BS:USERI1:70 BS:USERI2:70 BS:USERI3:70 BS:USERI4:70 BS:USERI5:70 BS:SPLINESEGS:70 BS:SURFU:70 "
    "BS:SURFV:70 "
    "BS:SURFTYPE:70 BS:SURFTAB1:70 BS:SURFTAB2:70 BS:SPLINETYPE:70 BS:SHADEDGE:70 BS:SHADEDIF:70 "
    "BS:UNITMODE:70 "
    "BS:MAXACTVP:70 BS:ISOLINES:70 BS:CMLJUST:70 BS:TEXTQLTY:70 "
    "BD:LTSCALE:40 BD:TEXTSIZE:40 BD:TRACEWID:40 BD:SKETCHINC:40 BD:FILLETRAD:40 BD:THICKNESS:40 "
    "A:ANGBASE:50 BD:PDSIZE:40 "
    "BD:PLINEWID:40 BD:USERR1:40 BD:USERR2:40 BD:USERR3:40 BD:USERR4:40 BD:USERR5:40 BD:CHAMFERA:40 "
    "BD:CHAMFERB:40 "
    "BD:CHAMFERC:40 BD:CHAMFERD:40 BD:FACETRES:40 BD:CMLSCALE:40 BD:CELTSCALE:40 T:MENU:1@<2007 "
    "D:TDCREATE:40 D:TDUPDATE:40 BL@2004 BL@2004 BL@2004 D:TDINDWG:40 D:TDUSRTIMER:40 CMC:CECOLOR:62 "
    "HD:HANDSEED:5 "
    "N:CLAYER:8 N:TEXTSTYLE:7 N:CELTYPE:6 H@2007 N:DIMSTYLE:2 N:CMLSTYLE:2 BD:PSVPSCALE:40@2000 "
    "3BD:PINSBASE:10 3BD:PEXTMIN:10 3BD:PEXTMAX:10 2RD:PLIMMIN:10 2RD:PLIMMAX:10 BD:PELEVATION:40 "
    "3BD:PUCSORG:10 "
    "3BD:PUCSXDIR:10 3BD:PUCSYDIR:10 N:PUCSNAME:2 N:PUCSORTHOREF:2@2000 BS:PUCSORTHOVIEW:70@2000 "
    "N:PUCSBASE:2@2000 "
    "3BD:PUCSORGTOP:10@2000 3BD:PUCSORGBOTTOM:10@2000 3BD:PUCSORGLEFT:10@2000 3BD:PUCSORGRIGHT:10@2000 "
    "3BD:PUCSORGFRONT:10@2000 3BD:PUCSORGBACK:10@2000 "
    "3BD:INSBASE:10 3BD:EXTMIN:10 3BD:EXTMAX:10 2RD:LIMMIN:10 2RD:LIMMAX:10 BD:ELEVATION:40 3BD:UCSORG:10 "
    "3BD:UCSXDIR:10 "
    "3BD:UCSYDIR:10 N:UCSNAME:2 N:UCSORTHOREF:2@2000 BS:UCSORTHOVIEW:70@2000 N:UCSBASE:2@2000 "
    "3BD:UCSORGTOP:10@2000 "
    "3BD:UCSORGBOTTOM:10@2000 3BD:UCSORGLEFT:10@2000 3BD:UCSORGRIGHT:10@2000 3BD:UCSORGFRONT:10@2000 "
    "3BD:UCSORGBACK:10@2000 T:DIMPOST:1@2000 T:DIMAPOST:1@2000 "
    "B:DIMTOL:70@<2000 B:DIMLIM:70@<2000 B:DIMTIH:70@<2000 B:DIMTOH:70@<2000 B:DIMSE1:70@<2000 "
    "B:DIMSE2:70@<2000 "
    "B:DIMALT:70@<2000 B:DIMTOFL:70@<2000 B:DIMSAH:70@<2000 B:DIMTIX:70@<2000 B:DIMSOXD:70@<2000 "
    "RC:DIMALTD:70@<2000 "
    "RC:DIMZIN:70@<2000 B:DIMSD1:70@<2000 B:DIMSD2:70@<2000 RC:DIMTOLJ:70@<2000 RC:DIMJUST:70@<2000 "
    "RC:DIMFIT:70@<2000 "
    "B:DIMUPT:70@<2000 RC:DIMTZIN:70@<2000 RC:DIMALTZ:70@<2000 RC:DIMALTTZ:70@<2000 RC:DIMTAD:70@<2000 "
    "BS:DIMUNIT:70@<2000 BS:DIMAUNIT:70@<2000 BS:DIMDEC:70@<2000 BS:DIMTDEC:70@<2000 BS:DIMALTU:70@<2000 "
    "BS:DIMALTTD:70@<2000 N:DIMTXSTY:7@<2000 "
    "BD:DIMSCALE:40 BD:DIMASZ:40 BD:DIMEXO:40 BD:DIMDLI:40 BD:DIMEXE:40 BD:DIMRND:40 BD:DIMDLE:40 "
    "BD:DIMTP:40 BD:DIMTM:40 "
    "BD:DIMFXL:40@2007 BD:DIMJOGANG:40@2007 BS:DIMTFILL:70@2007 CMC:DIMTFILLCLR:62@2007 "
    "B:DIMTOL:70@2000 B:DIMLIM:70@2000 B:DIMTIH:70@2000 B:DIMTOH:70@2000 B:DIMSE1:70@2000 B:DIMSE2:70@2000 "
    "BS:DIMTAD:70@2000 BS:DIMZIN:70@2000 BS:DIMAZIN:70@2000 BS:DIMARCSYM:70@2007 "
    "BD:DIMTXT:40 BD:DIMCEN:40 BD:DIMTSZ:40 BD:DIMALTF:40 BD:DIMLFAC:40 BD:DIMTVP:40 BD:DIMTFAC:40 "
    "BD:DIMGAP:40 "
    "T:DIMPOST:1@<2000 T:DIMAPOST:1@<2000 T:DIMBLK:1@<2000 T:DIMBLK1:1@<2000 T:DIMBLK2:1@<2000 "
    "BD:DIMALTRND:40@2000 B:DIMALT:70@2000 BS:DIMALTD:70@2000 B:DIMTOFL:70@2000 B:DIMSAH:70@2000 "
    "B:DIMTIX:70@2000 "
    "B:DIMSOXD:70@2000 CMC:DIMCLRD:70 CMC:DIMCLRE:70 CMC:DIMCLRT:70 "
    "BS:DIMADEC:70@2000 BS:DIMDEC:70@2000 BS:DIMTDEC:70@2000 BS:DIMALTU:70@2000 BS:DIMALTTD:70@2000 "
    "BS:DIMAUNIT:70@2000 "
    "BS:DIMFRAC:70@2000 BS:DIMLUNIT:70@2000 BS:DIMDSEP:70@2000 BS:DIMTMOVE:70@2000 BS:DIMJUST:70@2000 "
    "B:DIMSD1:70@2000 "
    "B:DIMSD2:70@2000 BS:DIMTOLJ:70@2000 BS:DIMTZIN:70@2000 BS:DIMALTZ:70@2000 BS:DIMALTTZ:70@2000 "
    "B:DIMUPT:70@2000 "
    "BS:DIMATFIT:70@2000 B:DIMFXLON:70@2007 B:DIMTXTDIRECTION:70@2010 BD:DIMALTMZF:40@2010 "
    "T:DIMALTMZS:1@2010 "
    "BD:DIMMZF:40@2010 T:DIMMZS:1@2010 N:DIMTXSTY:7@2000 N:DIMLDRBLK:1@2000 N:DIMBLK:1@2000 N:DIMBLK1:1@2000 "
    "N:DIMBLK2:1@2000 N:DIMLTYPE:6@2007 N:DIMLTEX1:6@2007 N:DIMLTEX2:6@2007 BS:DIMLWD:70@2000 "
    "BS:DIMLWE:70@2000 "
    "C C C C C C C C C C@<2004 H H R BS@2000 BS@2000 T:HYPERLINKBASE:1@2000 T:STYLESHEET:1@2000 H@2000 "
    "H@2000 H@2000 "
    "H@2004 H@2004 H@2007 H@2013 F@2000 T:FINGERPRINTGUID:2@2000 T:VERSIONGUID:2@2000 "
    "RC:SORTENTS:280@2004 RC:INDEXCTL:280@2004 RC:HIDETEXT:280@2004 RC:XCLIPFRAME:290@2004 "
    "RC:DIMASSOC:280@2004 "
    "RC:HALOGAP:280@2004 BS:OBSCOLOR:70@2004 BS:INTERSECTIONCOLOR:70@2004 RC:OBSLTYPE:280@2004 "
    "RC:INTERSECTIONDISPLAY:290@2004 T:PROJECTNAME:1@2004 P H H H H "
    "B:CAMERADISPLAY:290@2007 BL@2007 BL@2007 BD@2007 BD:STEPSPERSEC:40@2007 BD:STEPSIZE:40@2007 "
    "BD:3DDWFPREC:40@2007 "
    "BD:LENSLENGTH:40@2007 BD:CAMERAHEIGHT:40@2007 RC:SOLIDHIST:280@2007 RC:SHOWHIST:280@2007 "
    "BD:PSOLWIDTH:40@2007 "
    "BD:PSOLHEIGHT:40@2007 BD:LOFTANG1:40@2007 BD:LOFTANG2:40@2007 BD:LOFTMAG1:40@2007 BD:LOFTMAG2:40@2007 "
    "BS:LOFTPARAM:70@2007 RC:LOFTNORMALS:280@2007 BD:LATITUDE:40@2007 BD:LONGITUDE:40@2007 "
    "BD:NORTHDIRECTION:40@2007 "
    "BL:TIMEZONE:70@2007 RC:LIGHTGLYPHDISPLAY:280@2007 RC:TILEMODELIGHTSYNCH:280@2007 RC:DWFFRAME:280@2007 "
    "RC:DGNFRAME:280@2007 B@2007 CMC:INTERFERECOLOR:62@2007 H@2007 H@2007 H@2007 RC:CSHADOW:280@2007 BD@2007";

struct Row {
    QByteArray code, name;
    int group = 0;
    int since = 0, until = 0;
};

std::vector<Row> parseRows()
{
    static constexpr struct {
        const char *year;
        DrawingVersion version;
    } kYears[] = {{"2000", DrawingVersion::r2000},
                  {"2004", DrawingVersion::r2004},
                  {"2007", DrawingVersion::r2007},
                  {"2010", DrawingVersion::r2010},
                  {"2013", DrawingVersion::r2013}};
    std::vector<Row> rows;
    for (const QByteArray &word : QByteArray(kVariables).simplified().split(' ')) {
        const QList<QByteArray> halves = word.split('@');
        const QList<QByteArray> parts = halves[0].split(':');
        Row row{parts[0], parts.value(1), parts.value(2).toInt(), 0, 0};
        if (halves.size() > 1) {
            const bool isBefore = halves[1].startsWith('<');
            const QByteArray year = halves[1].mid(isBefore ? 1 : 0);
            const auto *const known =
                std::ranges::find_if(kYears, [&year](const auto &each) { return year == each.year; });
            QUILL_ASSERT(known != std::end(kYears));
            (isBefore ? row.until : row.since) = int(known->version);
        }
        rows.push_back(std::move(row));
    }
    return rows;
}

const std::vector<Row> &rows()
{
    static const std::vector<Row> kRows = parseRows();
    return kRows;
}

bool isIn(const Row &row, DrawingVersion version)
{
    return int(version) >= row.since && (row.until == 0 || int(version) < row.until);
}

/// Reads the section by its rows.
class HeaderReader
{
public:
    HeaderReader(const FileFacts &facts, SectionStreams &streams, Header &header)
        : m_facts(facts), m_in(streams), m_header(header)
    {
    }
    void read(const Row &row);
    bool good() const { return !m_in.data.failed() && !m_in.handles.failed() && !m_in.texts.failed(); }

private:
    void put(const Row &row, resbuf::Value value)
    {
        if (!row.name.isEmpty())
            m_header.variables.push_back({"$" + row.name, {resbuf(row.group, std::move(value))}});
    }
    std::uint64_t reference()
    {
        return (m_facts.hasTextStream() ? m_in.handles : m_in.data).handle(0).handle;
    }
    void color(const Row &row);
    void flags();

    const FileFacts &m_facts;
    SectionStreams &m_in;
    Header &m_header;
};

void HeaderReader::color(const Row &row)
{
    std::int64_t index = m_in.data.bitShort();
    if (m_facts.since(DrawingVersion::r2004)) {
        const std::uint32_t value = std::uint32_t(m_in.data.bitLong());
        const unsigned names = m_in.data.rawChar();
        for (const unsigned bit : {1u, 2u}) {
            if (names & bit)
                m_in.text(m_facts);
        }
        const unsigned kind = value >> 24;
        index = kind == 0xC0 ? 256 : kind == 0xC1 ? 0 : kind == 0xC3 ? std::int64_t(value & 0x1FF) : 7;
    }
    put(row, index);
}

/// Several variables in one number, and what follows it.
void HeaderReader::flags()
{
    const int flags = m_in.data.bitLong();
    const auto add = [this](const char *name, int group, std::int64_t value) {
        m_header.variables.push_back({name, {resbuf(group, value)}});
    };
    add("$CELWEIGHT", 370, lineweightOf(flags & 0x1F));
    add("$ENDCAPS", 280, (flags & 0x60) >> 5);
    add("$JOINSTYLE", 280, (flags & 0x180) >> 7);
    add("$LWDISPLAY", 290, !(flags & 0x200));
    add("$XEDIT", 290, !(flags & 0x400));
    add("$EXTNAMES", 290, (flags & 0x800) != 0);
    add("$PSTYLEMODE", 290, (flags & 0x2000) != 0);
    add("$OLESTARTUP", 290, (flags & 0x4000) != 0);
    add("$INSUNITS", 70, m_in.data.bitShort());
    const int plotStyle = m_in.data.bitShort();
    add("$CEPSNTYPE", 380, plotStyle);
    if (plotStyle == 3)
        m_header.variables.push_back({"$CEPSNID", {resbuf(390, AcDbHandle{reference()})}});
}

void HeaderReader::read(const Row &row)
{
    Bits &data = m_in.data;
    const QByteArray &code = row.code;
    if (code == "B")
        put(row, std::int64_t(data.bit()));
    else if (code == "RC")
        put(row, std::int64_t(data.rawChar()));
    else if (code == "BS")
        put(row, std::int64_t(data.bitShort()));
    else if (code == "BL")
        put(row, std::int64_t(data.bitLong()));
    else if (code == "BLL")
        put(row, std::int64_t(data.bitLongLong()));
    else if (code == "BD")
        put(row, data.bitDouble());
    else if (code == "A")
        put(row, data.bitDouble() * 57.29577951308232);
    else if (code == "3BD")
        put(row, data.point3());
    else if (code == "2RD")
        put(row, data.rawPoint2());
    else if (code == "T")
        put(row, m_in.text(m_facts));
    else if (code == "CMC")
        color(row);
    else if (code == "F")
        flags();
    else if (code == "D") {
        const double days = data.bitLong();
        constexpr double kDay = 86400000.0;
        put(row, days + data.bitLong() / kDay);
    } else if (code == "HD") {
        m_header.handleSeed = data.handle(0).handle;
        put(row, AcDbHandle{m_header.handleSeed});
    } else if (code == "N") {
        const std::uint64_t record = reference();
        m_header.names.emplace_back(m_header.variables.size(), record);
        put(row, QString());
    } else if (code == "C") {
        m_header.tables.push_back(reference());
    } else if (code == "P") {
        m_header.paperSpace = reference();
    } else if (code == "R") {
        m_header.namedObjects = reference();
    } else {
        QUILL_ASSERT(code == "H");
        reference();
    }
}

} // namespace

Header readHeader(const FileFacts &facts, Container &container)
{
    using namespace std::string_view_literals;
    constexpr std::string_view kBegin = "\xCF\x7B\x1F\x23\xFD\xDE\x38\xA9\x5F\x7C\x68\xB8\x4E\x6D\x33\x5F"sv;
    Header header;
    const std::string_view section = framedSection(container, "AcDb:Header", kBegin);
    header.variables.push_back({"$ACADVER", {resbuf(1, QStringLiteral("AC%1").arg(int(facts.version)))}});
    header.variables.push_back({"$ACADMAINTVER", {resbuf(70, std::int64_t(container.maintenance))}});
    header.variables.push_back(
        {"$DWGCODEPAGE",
         {resbuf(3, QString::fromLatin1(facts.codec.name().data(), qsizetype(facts.codec.name().size())))}});
    SectionStreams streams = sectionStreams(facts, section);
    HeaderReader reader(facts, streams, header);
    for (const Row &row : rows()) {
        if (!isIn(row, facts.version))
            continue;
        const std::size_t before = header.variables.size();
        reader.read(row);
        if (!reader.good()) {
            header.variables.resize(before);
            std::erase_if(header.names, [before](const auto &name) { return name.first >= before; });
            container.warnOfLoss(Host::tr("the drawing's variables behind %1 could not be read")
                                     .arg(QString::fromLatin1(header.variables.back().name)));
            break;
        }
    }
    header.isWhole = reader.good();
    const std::string_view drawn = container.section("AcDb:Template");
    if (drawn.size() >= 4) {
        const std::size_t length = numberAt<std::uint16_t>(drawn, 0);
        header.variables.push_back(
            {"$MEASUREMENT", {resbuf(70, std::int64_t(numberAt<std::uint16_t>(drawn, 2 + length)))}});
    }
    return header;
}

// Writing ----------------------------------------------------------------------------------------

namespace
{

/// Which table a variable's record stands in; empty when its name is no key.
std::optional<SymbolTable> tableOfVariable(const Row &row)
{
    if (row.name == "DIMSTYLE")
        return SymbolTable::dimStyle;
    if (row.group == 8)
        return SymbolTable::layer;
    if (row.group == 7)
        return SymbolTable::textStyle;
    if (row.group == 6)
        return SymbolTable::linetype;
    if (row.group == 1)
        return SymbolTable::block;
    return row.name.contains("UCS") ? std::optional(SymbolTable::ucs) : std::nullopt;
}

/// Writes variables over those of the old section.
class HeaderWriter
{
public:
    HeaderWriter(const FileFacts &facts, const Names &names, const HeaderChanges &changes,
                 SectionEditor &section)
        : m_facts(facts), m_names(names), m_changes(changes), m_section(section),
          m_reader(facts, section.in, m_read)
    {
    }
    void write(const Row &row);
    bool good() const { return m_reader.good(); }
    const QString &failure() const { return m_failure; }
    bool wasStored(const QByteArray &name) const { return m_stored.contains(name); }

private:
    const resbuf *changed(const QByteArray &name);
    void put(const Row &row, const resbuf &value);
    void putName(const Row &row, const QString &name);
    void putColor(std::int64_t index);
    void putFlags(const Header &was);

    const FileFacts &m_facts;
    const Names &m_names;
    const HeaderChanges &m_changes;
    SectionEditor &m_section;
    Header m_read;
    HeaderReader m_reader;
    QList<QByteArray> m_stored;
    QString m_failure;
};

const resbuf *HeaderWriter::changed(const QByteArray &name)
{
    const auto found = std::ranges::find(m_changes.variables, name, &HeaderVariable::name);
    if (found == m_changes.variables.end() || found->groups.empty())
        return nullptr;
    m_stored.append(name);
    return &found->groups.front();
}

void HeaderWriter::putName(const Row &row, const QString &name)
{
    const std::optional<SymbolTable> table = tableOfVariable(row);
    const std::uint64_t record = table && !name.isEmpty() ? m_names.handleOf(*table, name) : 0;
    if (record == 0 && !name.isEmpty())
        m_failure = Host::tr("the variable $%1 names \"%2\", which the drawing does not have")
                        .arg(QString::fromLatin1(row.name), name);
    m_section.replaceHandle(record);
}

void HeaderWriter::putColor(std::int64_t index)
{
    if (!m_facts.since(DrawingVersion::r2004))
        return m_section.data.bitShort(int(index));
    const std::uint32_t value = index == 256 ? 0xC0000000
                                : index == 0 ? 0xC1000000
                                             : 0xC3000000 | (std::uint32_t(index) & 0x1FF);
    m_section.data.bitShort(0);
    m_section.data.bitLong(std::int32_t(value));
    m_section.data.rawChar(0);
}

void HeaderWriter::put(const Row &row, const resbuf &value)
{
    BitWriter &data = m_section.data;
    const QByteArray &code = row.code;
    const std::int64_t number = value.integer();
    if (code == "B") {
        data.bit(number != 0);
    } else if (code == "RC") {
        data.rawChar(unsigned(number));
    } else if (code == "BS") {
        data.bitShort(int(number));
    } else if (code == "BL") {
        data.bitLong(std::int32_t(number));
    } else if (code == "BLL") {
        data.bitLongLong(std::uint64_t(number));
    } else if (code == "BD") {
        data.bitDouble(value.real());
    } else if (code == "A") {
        data.bitDouble(value.real() / 57.29577951308232);
    } else if (code == "3BD") {
        data.point3(value.point());
    } else if (code == "2RD") {
        data.rawPoint2({value.point().x, value.point().y});
    } else if (code == "T") {
        m_section.putText(value.text());
    } else if (code == "CMC") {
        putColor(number);
    } else {
        QUILL_ASSERT(code == "D");
        constexpr double kDay = 86400000.0;
        const double days = std::floor(value.real());
        data.bitLong(std::int32_t(days));
        data.bitLong(std::int32_t(std::min(std::round((value.real() - days) * kDay), kDay - 1.0)));
    }
}

/// Several variables in one number; `was` holds them as they were read.
void HeaderWriter::putFlags(const Header &was)
{
    bool isChanged = false;
    const auto value = [&](const char *name) {
        const auto old = std::ranges::find(was.variables, QByteArray(name), &HeaderVariable::name);
        const resbuf *const now = changed(name);
        isChanged = isChanged || now;
        return now ? *now : old == was.variables.end() ? resbuf() : old->groups.front();
    };
    const auto bit = [&](const char *name, unsigned flag, bool isInverted) {
        return (value(name).integer() != 0) != isInverted ? flag : 0u;
    };
    const auto weight = unsigned(lineweightIndex(int(value("$CELWEIGHT").integer())));
    const unsigned flags = weight | (unsigned(value("$ENDCAPS").integer()) & 3) << 5 |
                           (unsigned(value("$JOINSTYLE").integer()) & 3) << 7 |
                           bit("$LWDISPLAY", 0x200, true) | bit("$XEDIT", 0x400, true) |
                           bit("$EXTNAMES", 0x800, false) | bit("$PSTYLEMODE", 0x2000, false) |
                           bit("$OLESTARTUP", 0x4000, false);
    const int units = int(value("$INSUNITS").integer());
    const int plotStyle = int(value("$CEPSNTYPE").integer());
    const std::uint64_t plotStyleName = value("$CEPSNID").handle().value;
    if (!isChanged)
        return m_section.copy();
    constexpr unsigned kShown = 0x6FFF;
    m_section.skip();
    m_section.data.bitLong(
        std::int32_t((unsigned(was.variables.front().groups.front().integer()) & ~kShown) | flags));
    m_section.data.bitShort(units);
    m_section.data.bitShort(plotStyle);
    if (plotStyle == 3)
        m_section.putHandle(int(Reference::hardPointer), plotStyleName);
}

void HeaderWriter::write(const Row &row)
{
    m_read.variables.clear();
    if (row.code == "F") {
        Bits ahead = m_section.in.data;
        m_read.variables.push_back({"", {resbuf(0, std::int64_t(ahead.bitLong()))}});
        m_reader.read(row);
        return putFlags(m_read);
    }
    m_reader.read(row);
    if (row.code == "HD" && m_changes.handleSeed != 0) {
        m_section.skip();
        m_section.data.handle(0, m_changes.handleSeed);
        return;
    }
    const resbuf *const value = row.name.isEmpty() ? nullptr : changed("$" + row.name);
    if (!value || row.code == "HD")
        return m_section.copy();
    if (row.code == "N")
        return putName(row, value->text());
    m_section.skip();
    put(row, *value);
}

} // namespace

base::Result<EncodedHeader, QString> encodeHeader(const FileFacts &facts, const Container &container,
                                                  const Names &names, const HeaderChanges &changes)
{
    SectionEditor section(facts, container, container.section("AcDb:Header"));
    HeaderWriter writer(facts, names, changes, section);
    for (const Row &row : rows()) {
        if (isIn(row, facts.version) && section.good())
            writer.write(row);
    }
    if (!section.good() || !facts.since(DrawingVersion::r2000))
        return base::Failure{Host::tr("the drawing's variables are damaged and cannot be written again")};
    if (!writer.failure().isEmpty())
        return base::Failure{writer.failure()};
    EncodedHeader encoded{section.finish(), {}};
    for (const HeaderVariable &variable : changes.variables) {
        if (!writer.wasStored(variable.name))
            encoded.notStored.append(variable.name);
    }
    return encoded;
}

} // namespace dwg
