// The kinds that may be encoded: those whose records, decoded and encoded again, had the same bits on all
// real drawings of a version. dwg_gate of the tests says which they are.
#include "host/formats/dwg/dwgencoder.h"
#include "host/formats/dwg/dwgkinds.h"

#include <algorithm>
#include <string_view>

namespace dwg
{
namespace
{

enum Versions : unsigned { k2000 = 1, k2004 = 2, k2007 = 4, k2010 = 8, k2013 = 16, k2018 = 32, kAll = 63 };

struct Proven {
    int type; ///< As the kind's row has it.
    std::string_view dxfName;
    unsigned versions;
};

// clang-format off
constexpr Proven kProven[] = {
    {0x01, "TEXT", kAll},
    {0x02, "ATTRIB", kAll},
    {0x03, "ATTDEF", kAll},
    {0x04, "BLOCK", kAll},
    {0x05, "ENDBLK", kAll},
    {0x06, "SEQEND", kAll},
    {0x07, "INSERT", kAll},
    {0x0A, "VERTEX", kAll}, // Like 0x0F.
    {0x0B, "VERTEX", kAll},
    {0x0C, "VERTEX", k2000},
    {0x0D, "VERTEX", kAll},
    {0x0E, "VERTEX", kAll},
    // Drawings at hand have it in AC1015 only; later, lists of vertices are those of 0x10, and an independent reader
    // finds the same vertices.
    {0x0F, "POLYLINE", kAll},
    {0x10, "POLYLINE", kAll},
    {0x11, "ARC", kAll},
    {0x12, "CIRCLE", kAll},
    {0x13, "LINE", kAll},
    {0x14, "DIMENSION", kAll},
    {0x15, "DIMENSION", kAll},
    {0x16, "DIMENSION", kAll},
    {0x17, "DIMENSION", k2000},
    {0x18, "DIMENSION", kAll},
    {0x19, "DIMENSION", k2000},
    {0x1A, "DIMENSION", k2000},
    {0x1B, "POINT", kAll},
    {0x1C, "3DFACE", kAll},
    {0x1D, "POLYLINE", kAll},
    {0x1E, "POLYLINE", k2000},
    {0x1F, "SOLID", kAll},
    {0x20, "TRACE", k2000},
    {0x22, "VIEWPORT", kAll},
    {0x23, "ELLIPSE", kAll},
    {0x24, "SPLINE", kAll},
    {0x28, "RAY", kAll},
    {0x29, "XLINE", kAll},
    {0x2A, "DICTIONARY", kAll},
    {0x2C, "MTEXT", kAll},
    {0x2D, "LEADER", k2000 | k2007},
    {0x2E, "TOLERANCE", kAll},
    {0x2F, "MLINE", kAll},
    {0x31, "BLOCK_RECORD", kAll},
    {0x33, "LAYER", kAll},
    {0x35, "STYLE", kAll},
    {0x39, "LTYPE", kAll},
    {0x3D, "VIEW", k2000},
    {0x41, "VPORT", kAll},
    {0x43, "APPID", kAll},
    {0x45, "DIMSTYLE", kAll},
    {0x48, "GROUP", kAll},
    {0x49, "MLINESTYLE", kAll},
    {0x4D, "LWPOLYLINE", kAll},
    {0x4E, "HATCH", kAll},
    {0x4F, "XRECORD", kAll},
    {0x50, "ACDBPLACEHOLDER", kAll},
    {0x52, "LAYOUT", kAll},
    {0, "ACDBDICTIONARYWDFLT", kAll},
    {0, "ARC_DIMENSION", kAll},
    {0, "DICTIONARYVAR", kAll},
    {0, "IMAGE", k2007},
    {0, "IMAGEDEF", k2007},
    {0, "IMAGEDEF_REACTOR", k2007},
    {0, "PLOTSETTINGS", k2013},
    {0, "RASTERVARIABLES", k2007},
    {0, "SCALE", kAll},
    {0, "SORTENTSTABLE", kAll},
    {0, "WIPEOUT", kAll},
    {0, "WIPEOUTVARIABLES", kAll},
};
// clang-format on

unsigned versionBit(DrawingVersion version)
{
    switch (version) {
    case DrawingVersion::r2000:
        return k2000;
    case DrawingVersion::r2004:
        return k2004;
    case DrawingVersion::r2007:
        return k2007;
    case DrawingVersion::r2010:
        return k2010;
    case DrawingVersion::r2013:
        return k2013;
    case DrawingVersion::r2018:
        return k2018;
    default:
        return 0;
    }
}

} // namespace

bool mayEncode(const Kind &kind, DrawingVersion version)
{
    const auto *const row = std::ranges::find_if(kProven, [&kind](const Proven &each) {
        return each.type == kind.type && each.dxfName == kind.dxfName;
    });
    return row != std::end(kProven) && row->versions & versionBit(version);
}

} // namespace dwg
