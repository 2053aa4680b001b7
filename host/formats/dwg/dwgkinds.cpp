#include "host/formats/dwg/dwgkinds.h"

#include "host/base/assert.h"
#include "host/formats/dwg/dwgspecials.h"

#include <QStringList>

#include <algorithm>
#include <unordered_map>

namespace dwg
{
namespace
{

struct Row {
    int type;
    const char *dxfName;
    const char *fields;
    const char *groups;
    DrawingVersion until = DrawingVersion::unknown;
};

#define PLOT_SETTINGS_FIELDS                                                                                 \
    "T:1 T:2 BS:70 BD:40 BD:41 BD:42 BD:43 BD:44 BD:45 T:4 BD:46 BD:47 BS:72 BS:73 BS:74 BD:48 BD:49 "       \
    "BD:140 BD:141 T:6@<2004 BD:142 BD:143 T:7 BS:75 BD:147 BD:148 BD:149 BS:76@2004 BS:77@2004 BS:78@2004 "
#define PLOT_SETTINGS_GROUPS                                                                                 \
    "AcDbPlotSettings 1 2 4 6 40 41 42 43 44 45 46 47 48 49 140 141 142 143 70 72 73 74 7 75 76 77 78 147 "  \
    "148 149 "
#define DIMENSION_GROUPS                                                                                     \
    "AcDbDimension 280 2 10 11 12=0 70 71 72=1 41=1 42 73 74 75 1= 51=0 53=0 54=0 210=z 3 "
#define TEXT_GROUPS "AcDbText 39=0 10 40 1 50=0 41=1 51=0 7=Standard 71=0 72=0 11 210=z "
#define OWNED " *partCount *parts"
#define RASTER_IMAGE_FIELDS "BL:90 3BD:10 3BD:11 3BD:12 2RD:13 BS:70 B:280 RC:281 RC:282 RC:283 *imageClip"
#define RASTER_IMAGE_GROUPS " 90 10 11 12 13 340 70 280 281 282 283 290 360 71 10091 14"

// clang-format off
constexpr Row kRows[] = {
    // Entities
    {kText, "TEXT", "*text N:7", TEXT_GROUPS "AcDbText 73=0"},
    {kAttrib, "ATTRIB", "*text *attribute N:7",
     TEXT_GROUPS "AcDbAttribute 10280 2 10070 10073=0 74=0 20280"},
    {kAttdef, "ATTDEF", "*text *attribute N:7",
     TEXT_GROUPS "AcDbAttributeDefinition 10280 3 2 10070 10073=0 74=0 20280"},
    {kBlockBegin, "BLOCK", "*blockName", "AcDbBlockBegin *"},
    {kBlockEnd, "ENDBLK", "", "AcDbBlockEnd"},
    {kSeqEnd, "SEQEND", "", ""},
    {kInsert, "INSERT", "3BD:10 *insertScale A:50 3BD:210 *hasParts *partCount N:2 *parts",
     "AcDbBlockReference 66=0 2 10 41=1 42=1 43=1 50=0 210=z"},
    {kMinsert, "INSERT", "3BD:10 *insertScale A:50 3BD:210 *hasParts *partCount BS:70 BS:71 BD:44 BD:45 N:2 *parts",
     "AcDbMInsertBlock 66=0 2 10 41=1 42=1 43=1 50=0 70=1 71=1 44=0 45=0 210=z"},
    {kVertex2d, "VERTEX", "*vertex2d", "AcDbVertex AcDb2dVertex 10 40 41 42=0 91=0 70=0 50=0"},
    {0x0B, "VERTEX", "RC:70 3BD:10", "AcDbVertex AcDb3dPolylineVertex 10 70"},
    {0x0C, "VERTEX", "RC:70 3BD:10", "AcDbVertex AcDbPolygonMeshVertex 10 70"},
    {kVertexPface, "VERTEX", "RC:70 3BD:10", "AcDbVertex AcDbPolyFaceMeshVertex 10 70"},
    {kVertexFace, "VERTEX", "*faceRecord", "AcDbFaceRecord 10 70 71=0 72=0 73=0 74=0"},
    {kPolyline2d, "POLYLINE", "*polyline2d" OWNED, "AcDb2dPolyline 66 10 39=0 70=0 40=0 41=0 75=0 210=z"},
    {kPolyline3d, "POLYLINE", "*polyline3d" OWNED, "AcDb3dPolyline 66 10 70 75=0"},
    {0x11, "ARC", "3BD:10 BD:40 BT:39 BE:210 A:50 A:51", "AcDbCircle 39=0 10 40 210=z AcDbArc 50 51"},
    {0x12, "CIRCLE", "3BD:10 BD:40 BT:39 BE:210", "AcDbCircle 39=0 10 40 210=z"},
    {0x13, "LINE", "*line BT:39 BE:210", "AcDbLine 39=0 10 11 210=z"},
    {kOrdinateDimension, "DIMENSION", "*dimension 3BD:10 3BD:13 3BD:14 *kindOfDimension *dimensionHandles",
     DIMENSION_GROUPS "AcDbOrdinateDimension 13 14"},
    {0x15, "DIMENSION", "*dimension 3BD:13 3BD:14 3BD:10 A:52 A:10050 *kindOfDimension *dimensionHandles",
     DIMENSION_GROUPS "AcDbAlignedDimension 13 14 10050=0 52=0 AcDbRotatedDimension"},
    {0x16, "DIMENSION", "*dimension 3BD:13 3BD:14 3BD:10 A:52 *kindOfDimension *dimensionHandles",
     DIMENSION_GROUPS "AcDbAlignedDimension 13 14 52=0"},
    {0x17, "DIMENSION", "*dimension 3BD:10 3BD:13 3BD:14 3BD:15 *kindOfDimension *dimensionHandles",
     DIMENSION_GROUPS "AcDb3PointAngularDimension 13 14 15"},
    {0x18, "DIMENSION", "*dimension *arcOfDimension 3BD:13 3BD:14 3BD:15 3BD:10 *kindOfDimension *dimensionHandles",
     DIMENSION_GROUPS "AcDb2LineAngularDimension 13 14 15 16"},
    {0x19, "DIMENSION", "*dimension 3BD:10 3BD:15 BD:40 *kindOfDimension *dimensionHandles",
     DIMENSION_GROUPS "AcDbRadialDimension 15 40"},
    {0x1A, "DIMENSION", "*dimension 3BD:15 3BD:10 BD:40 *kindOfDimension *dimensionHandles",
     DIMENSION_GROUPS "AcDbDiametricDimension 15 40"},
    {0x1B, "POINT", "3BD:10 BT:39 BE:210 A:50", "AcDbPoint 10 39=0 210=z 50=0"},
    {0x1C, "3DFACE", "*face", "AcDbFace 10 11 12 13 70=0"},
    {kPolylinePface, "POLYLINE", "*polyfaceMesh" OWNED, "AcDbPolyFaceMesh 66 10 70 71 72"},
    {kPolylineMesh, "POLYLINE", "*polygonMesh" OWNED, "AcDbPolygonMesh 66 10 70 71 72 73=0 74=0 75=0"},
    {0x1F, "SOLID", "BT:39 *solid BE:210", "AcDbTrace 10 11 12 13 39=0 210=z"},
    {0x20, "TRACE", "BT:39 *solid BE:210", "AcDbTrace 10 11 12 13 39=0 210=z"},
    {0x22, "VIEWPORT", "*viewport",
     "AcDbViewport 10 40 41 68 69 12 13 14 15 16 17 42 43 44 45 50 51 72 331 341 90 340 1 281 71 74 110 111 112 345 346 "
     "79 146 170 61 332 348 333 361 292 282 141 142 63 421 431"},
    {0x23, "ELLIPSE", "3BD:10 3BD:11 3BD:210 BD:40 BD:41 BD:42", "AcDbEllipse 10 11 210 40 41 42"},
    {0x24, "SPLINE", "*spline", "AcDbSpline 210 70 71 72 73 74 42 43 44 12=0 13=0 40 *"},
    // Later versions keep the geometry in binary form, the latest elsewhere in the file.
    {0x25, "REGION", "*acis", "AcDbModelerGeometry 70 *", DrawingVersion::r2004},
    {0x26, "3DSOLID", "*acis", "AcDbModelerGeometry 70 *", DrawingVersion::r2004},
    {0x27, "BODY", "*acis", "AcDbModelerGeometry 70 *", DrawingVersion::r2004},
    {0x28, "RAY", "3BD:10 3BD:11", "AcDbRay 10 11"},
    {0x29, "XLINE", "3BD:10 3BD:11", "AcDbXline 10 11"},
    {0x2C, "MTEXT", "3BD:10 3BD:210 3BD:11 BD:41 BD:46@2007 BD:40 BS:71 BS:72 BD:- BD:- *mtext",
     "AcDbMText 10 40 41 46 71 72 3 1 7=Standard 210=z 11=x 73 44 90 45 63 421 431 441 *"},
    {0x2D, "LEADER", "*leader",
     "AcDbLeader 3 71=1 72=0 73=3 74=1 75=0 40=0 41=0 76 10 77 340=0 210=z 211=x 212=0 213=0"},
    {0x2E, "TOLERANCE", "*toleranceHead 3BD:10 3BD:11 3BD:210 T:1 N:3", "AcDbFcf 3 10 1 210=z 11=x"},
    {0x2F, "MLINE", "*mline", "AcDbMline 2 340 40 70 71 72 73 10 210 *"},
    {0x4A, "OLE2FRAME", "*oleFrame", "AcDbOle2Frame 70 3 10 11 71 72 90 310 10001"},
    {kLwPolyline, "LWPOLYLINE", "*lwPolyline", "AcDbPolyline 90 70 43 38 39 * 210"},
    {kHatch, "HATCH", "*hatch", "AcDbHatch *"},
    {0, "ARC_DIMENSION",
     "*dimension 3BD:10 3BD:13 3BD:14 3BD:15 B:10070 BD:40 BD:10041 B:10071 3BD:16 3BD:17 *kindOfDimension *dimensionHandles",
     DIMENSION_GROUPS "AcDbArcDimension 13 14 15 10070 40 10041 10071 16 17"},
    {0, "LARGE_RADIAL_DIMENSION",
     "*dimension 3BD:10 3BD:13 BD:40 3BD:14 3BD:15 *kindOfDimension *dimensionHandles",
     DIMENSION_GROUPS "AcDbRadialDimensionLarge 13 14 15 40"},
    {0, "IMAGE", RASTER_IMAGE_FIELDS, "AcDbRasterImage" RASTER_IMAGE_GROUPS},
    {0, "WIPEOUT", RASTER_IMAGE_FIELDS, "AcDbWipeout" RASTER_IMAGE_GROUPS},
    {0, "MULTILEADER", "*multileader", "AcDbMLeader *"},

    // Symbol table records
    {kBlockHeader, "BLOCK_RECORD", "*blockRecord", "AcDbSymbolTableRecord AcDbBlockTableRecord 2 340 310 70 280 281"},
    {0x33, "LAYER", "*recordHead *layer",
     "AcDbSymbolTableRecord AcDbLayerTableRecord 2 70 62 420 430 6 290=1 370 390 347 348"},
    {0x35, "STYLE", "*recordHead *style BD:40 BD:41 A:50 RC:71 BD:42 T:3 T:4 H:-",
     "AcDbSymbolTableRecord AcDbTextStyleTableRecord 2 70 40 41 50 71 42 3 4"},
    {0x39, "LTYPE", "*recordHead *linetype", "AcDbSymbolTableRecord AcDbLinetypeTableRecord 2 70 3 72 73 40 *"},
    {0x3D, "VIEW", "*recordHead *view",
     "AcDbSymbolTableRecord AcDbViewTableRecord 2 70 40 10 41 11 12 42 43 44 50 71 281 72 110 111 112 79 146 345 346 332 334 348 361 73=0"},
    {0x3F, "UCS", "*recordHead 3BD:10 3BD:11 3BD:12 BD:146@2000 BS:79@2000 BS:71@2000 H:- H:346@2000 H:-@2000",
     "AcDbSymbolTableRecord AcDbUCSTableRecord 2 70 10 11 12 79 146 346=0"},
    {0x41, "VPORT", "*recordHead *viewportRecord *viewportHandles",
     "AcDbSymbolTableRecord AcDbViewportTableRecord 2 70 10 11 12 13 14 15 16 17 40 41 42 43 44 50 51 71 72 73 74 75 76 77 "
     "78 281 65 110 111 112 345 346 79 146 332 348 60 61 292 282 141 142 63 421 431 361"},
    {0x43, "APPID", "*recordHead RC:71 H:-", "AcDbSymbolTableRecord AcDbRegAppTableRecord 2 70 71=0"},
    {0x45, "DIMSTYLE",
     "*recordHead "
     "B:71@<2000 B:72@<2000 B:73@<2000 B:74@<2000 B:75@<2000 B:76@<2000 B:170@<2000 B:172@<2000 B:173@<2000 B:174@<2000 "
     "B:175@<2000 RC:171@<2000 RC:78@<2000 B:281@<2000 B:282@<2000 RC:283@<2000 RC:280@<2000 RC:287@<2000 B:288@<2000 "
     "RC:284@<2000 RC:285@<2000 RC:286@<2000 RC:77@<2000 BS:270@<2000 BS:275@<2000 BS:271@<2000 BS:272@<2000 "
     "BS:273@<2000 BS:274@<2000 "
     "T:3@2000 T:4@2000 BD:40 BD:41 BD:42 BD:43 BD:44 BD:45 BD:46 BD:47 BD:48 "
     "BD:49@2007 BD:50@2007 BS:69@2007 CMC:10070@2007 "
     "B:71@2000 B:72@2000 B:73@2000 B:74@2000 B:75@2000 B:76@2000 BS:77@2000 BS:78@2000 BS:79@2000 BS:90@2007 "
     "BD:140 BD:141 BD:142 BD:143 BD:144 BD:145 BD:146 BD:147 "
     "T:3@<2000 T:4@<2000 T:5@<2000 T:6@<2000 T:7@<2000 BS:176@<2000 BS:177@<2000 BS:178@<2000 "
     "BD:148@2000 B:170@2000 BS:171@2000 B:172@2000 B:173@2000 B:174@2000 B:175@2000 CMC:176@2000 CMC:177@2000 CMC:178@2000 "
     "BS:179@2000 BS:271@2000 BS:272@2000 BS:273@2000 BS:274@2000 BS:275@2000 BS:276@2000 BS:277@2000 BS:278@2000 "
     "BS:279@2000 BS:280@2000 B:281@2000 B:282@2000 BS:283@2000 BS:284@2000 BS:285@2000 BS:286@2000 B:288@2000 "
     "BS:289@2000 B:290@2007 B:294@2010 BD:-@2010 T:-@2010 BD:-@2010 T:-@2010 BS:371@2000 BS:372@2000 B:- "
     "H:- H:340 H:341@2000 H:342@2000 H:343@2000 H:344@2000 H:345@2007 H:346@2007 H:347@2007",
     "AcDbSymbolTableRecord AcDbDimStyleTableRecord 2 70 3= 4= 5= 6= 7= 40=1 41=0.18 42=0.0625 43=0.38 44=0.18 45=0 46=0 47=0 "
     "48=0 49=1 50=0.7853981633974483 69=0 10070=0 71=0 72=0 73=1 74=1 75=0 76=0 77=0 78=0 79=0 90=0 140=0.18 141=0.09 142=0 "
     "143=25.4 144=1 145=0 146=1 147=0.09 148=0 170=0 171=2 172=0 173=0 174=0 175=0 176=0 177=0 178=0 179=0 270=2 271=4 272=4 "
     "273=2 274=2 275=0 276=0 277=2 278=46 279=0 280=0 281=0 282=0 283=1 284=0 285=0 286=0 287=3 288=0 289=3 290=0 294=0 "
     "340 341=0 342=0 343=0 344=0 345=0 346=0 347=0 371=-2 372=-2"},

    // Other objects
    {kDictionary, "DICTIONARY", "*dictionary", "AcDbDictionary 280=0 281 *"},
    {kXrecord, "XRECORD", "*xrecord", "AcDbXrecord 10280 *"},
    {0x48, "GROUP", "*group", "AcDbGroup 300 70 71 340"},
    {0x49, "MLINESTYLE", "*mlineStyle", "AcDbMlineStyle 2 70 3 62 420 51 52 71 *62,420"},
    {0x50, "ACDBPLACEHOLDER", "", ""},
    {0x52, "LAYOUT",
     PLOT_SETTINGS_FIELDS
     "T:10001 BL:10071 BS:10070 3BD:10013 2RD:10010 2RD:10011 3BD:10012 3BD:10016 3BD:10017 BD:10146 BS:10076 3BD:10014 "
     "3BD:10015 *layoutViewports",
     PLOT_SETTINGS_GROUPS
     "AcDbLayout 10001 10070 10071 10010 10011 10012 10014 10015 10146 10013 10016 10017 10076 10330 10331 10345 10346"},
    {0, "PLOTSETTINGS", PLOT_SETTINGS_FIELDS "*plotView H:-@2007", PLOT_SETTINGS_GROUPS},
    {0, "ACDBDICTIONARYWDFLT", "*dictionary H:340",
     "AcDbDictionary 280=0 281 3 350 360 AcDbDictionaryWithDefault 340"},
    {0, "DICTIONARYVAR", "RC:280 T:1", "DictionaryVariables 280 1"},
    {0, "SCALE", "BS:70 T:300 BD:140 BD:141 B:290", "AcDbScale 70 300 140 141 290"},
    {0, "IMAGEDEF", "BL:90 2RD:10 T:1 B:280 RC:281 2RD:11", "AcDbRasterImageDef 90 1 10 11 280 281"},
    {0, "IMAGEDEF_REACTOR", "BL:90 *owner", "AcDbRasterImageDefReactor 90 10330"},
    {0, "RASTERVARIABLES", "BL:90 BS:70 BS:71 BS:72", "AcDbRasterVariables 90 70 71 72"},
    {0, "WIPEOUTVARIABLES", "BS:70", "AcDbWipeoutVariables 70"},
    {0, "SORTENTSTABLE", "*sortTable", "AcDbSortentsTable *"},
    {0, "SPATIAL_FILTER", "*spatialFilter", "AcDbFilter AcDbSpatialFilter 70 10 210 11 71 72 40 73 41"},
    {0, "IDBUFFER", "*idBuffer", "AcDbIdBuffer 330"},
    {0, "DBCOLOR", "*bookColor", "AcDbColor 62 420 430"},
    {0, "MLEADERSTYLE", "*multileaderStyle", "AcDbMLeaderStyle *"},
};
// clang-format on

/// Types that have a DXF name, but no table.
constexpr struct {
    int type;
    const char *dxfName;
} kNames[] = {
    {0x21, "SHAPE"},
    {0x2B, "OLEFRAME"},
    {0x30, "TABLE"},
    {0x32, "TABLE"},
    {0x34, "TABLE"},
    {0x38, "TABLE"},
    {0x3C, "TABLE"},
    {0x3E, "TABLE"},
    {0x40, "TABLE"},
    {0x42, "TABLE"},
    {0x44, "TABLE"},
    {0x4B, "DUMMY"},
    {0x4C, "LONG_TRANSACTION"},
    {0x51, "VBA_PROJECT"},
    {kProxyEntity, "ACAD_PROXY_ENTITY"},
    {kProxyObject, "ACAD_PROXY_OBJECT"},
};

int versionOf(std::string_view year)
{
    static const std::unordered_map<std::string_view, DrawingVersion> kYears{
        {"14", DrawingVersion::r14},     {"2000", DrawingVersion::r2000}, {"2004", DrawingVersion::r2004},
        {"2007", DrawingVersion::r2007}, {"2010", DrawingVersion::r2010}, {"2013", DrawingVersion::r2013},
        {"2018", DrawingVersion::r2018}};
    const auto found = kYears.find(year);
    QUILL_ASSERT(found != kYears.end());
    return int(found->second);
}

Field::Code codeOf(std::string_view name)
{
    using Code = Field::Code;
    static const std::unordered_map<std::string_view, Code> kCodes{
        {"B", Code::b},      {"BS", Code::bs},     {"BL", Code::bl},          {"RC", Code::rc},
        {"RS", Code::rs},    {"RL", Code::rl},     {"BLL", Code::bll},        {"BD", Code::bd},
        {"RD", Code::rd},    {"BT", Code::bt},     {"A", Code::angle},        {"T", Code::text},
        {"2BD", Code::p2bd}, {"3BD", Code::p3bd},  {"2RD", Code::p2rd},       {"3RD", Code::p3rd},
        {"BE", Code::be},    {"CMC", Code::color}, {"CMV", Code::colorValue}, {"H", Code::handle},
        {"N", Code::name}};
    const auto found = kCodes.find(name);
    QUILL_ASSERT(found != kCodes.end());
    return found->second;
}

/// "BS:70@2004", "T:-", "*text"
Field parseField(const QByteArray &word)
{
    Field field;
    if (word.startsWith('*')) {
        const SpecialRow *const special = findSpecial({word.constData() + 1, std::size_t(word.size() - 1)});
        QUILL_ASSERT(special);
        field.special = special->read;
        field.writeSpecial = special->write;
        return field;
    }
    const qsizetype colon = word.indexOf(':');
    const qsizetype range = word.indexOf('@');
    QUILL_ASSERT(colon > 0);
    field.code = codeOf({word.constData(), std::size_t(colon)});
    const QByteArray group = word.mid(colon + 1, range < 0 ? -1 : range - colon - 1);
    field.group = group == "-" ? 0 : group.toInt();
    if (range < 0)
        return field;
    const bool isBefore = word.at(range + 1) == '<';
    const qsizetype year = range + (isBefore ? 2 : 1);
    (isBefore ? field.until : field.since) =
        versionOf({word.constData() + year, std::size_t(word.size() - year)});
    return field;
}

/// "AcDbLine", "39=0", "*", "*62,420"
Group parseGroup(const QByteArray &word)
{
    Group group;
    if (word.startsWith('*')) {
        for (const QByteArray &code : word.mid(1).split(',')) {
            if (!code.isEmpty())
                group.also.push_back(code.toInt());
        }
        return group;
    }
    const qsizetype equals = word.indexOf('=');
    const QByteArray head = equals < 0 ? word : word.left(equals);
    bool isNumber = false;
    group.code = head.toInt(&isNumber);
    if (!isNumber) {
        group.marker = QString::fromLatin1(word);
        return group;
    }
    if (equals < 0)
        return group;
    group.hasDefault = true;
    const QByteArray value = word.mid(equals + 1);
    const int code = group.code % kSubclass;
    if (value == "z")
        group.absent = AcGePoint3d(0.0, 0.0, 1.0);
    else if (value == "x")
        group.absent = AcGePoint3d(1.0, 0.0, 0.0);
    else if (groupKind(code) == GroupKind::text)
        group.absent = QString::fromLatin1(value);
    else if (beginsPoint(code))
        group.absent = AcGePoint3d();
    else if (groupKind(code) == GroupKind::handle)
        group.absent = AcDbHandle{};
    else if (groupKind(code) == GroupKind::real)
        group.absent = value.toDouble();
    else
        group.absent = value.toLongLong();
    return group;
}

struct Tables {
    std::vector<Kind> kinds;
    std::unordered_map<int, const Kind *> byType;
    std::unordered_map<QByteArray, const Kind *> byName; ///< Of classes.

    Tables()
    {
        kinds.reserve(std::size(kRows));
        for (const Row &row : kRows) {
            Kind kind{row.type, row.dxfName, row.until, {}, {}};
            for (const QByteArray &word : QByteArray(row.fields).simplified().split(' ')) {
                if (!word.isEmpty())
                    kind.fields.push_back(parseField(word));
            }
            for (const QByteArray &word : QByteArray(row.groups).simplified().split(' ')) {
                if (!word.isEmpty())
                    kind.groups.push_back(parseGroup(word));
            }
            kinds.push_back(std::move(kind));
        }
        for (const Kind &kind : kinds) {
            if (kind.type != 0)
                byType.emplace(kind.type, &kind);
            byName.emplace(QByteArray(kind.dxfName), &kind);
        }
    }
};

const Tables &tables()
{
    static const Tables all;
    return all;
}

} // namespace

const Kind *kindOfType(int type)
{
    const auto found = tables().byType.find(type);
    return found == tables().byType.end() ? nullptr : found->second;
}

const Kind *kindOfClass(const QByteArray &dxfName)
{
    const auto found = tables().byName.find(dxfName);
    return found == tables().byName.end() ? nullptr : found->second;
}

const Kind *kindOfGroups(const QByteArray &dxfName, const ResbufList &groups)
{
    // Kinds that share a name ("POLYLINE") differ in their subclasses: the row that has the most of them.
    const Kind *best = nullptr;
    std::ptrdiff_t most = -1;
    for (const Kind &kind : tables().kinds) {
        const auto isThere = [&groups](const Group &group) {
            return std::ranges::find(groups, resbuf(100, group.marker)) != groups.end();
        };
        const auto isMarker = [](const Group &group) { return !group.marker.isEmpty(); };
        const auto markers = std::ranges::count_if(kind.groups, isMarker);
        const bool fits =
            dxfName == kind.dxfName && std::ranges::all_of(kind.groups, [&](const Group &group) {
                return !isMarker(group) || isThere(group);
            });
        if (fits && markers > most) {
            best = &kind;
            most = markers;
        }
    }
    return best;
}

const char *nameOfType(int type)
{
    if (const Kind *const kind = kindOfType(type))
        return kind->dxfName;
    const auto *const known =
        std::ranges::find_if(kNames, [type](const auto &row) { return row.type == type; });
    return known == std::end(kNames) ? nullptr : known->dxfName;
}

bool isEntityType(int type)
{
    return (type >= kText && type <= 0x2F && type != kDictionary && type != 9) || type == 0x4A ||
           type == kLwPolyline || type == kHatch || type == kProxyEntity;
}

} // namespace dwg
