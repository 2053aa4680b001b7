#include "host/aced/edsysvartable.h"

#include "host/aced/edsysvarvalues.h"

#include <array>
#include <unordered_map>

namespace
{

using Type = AcEdVarType;
using Storage = AcEdVarStorage;

constexpr double kEndless = std::numeric_limits<double>::infinity();
constexpr double kAboveZero = std::numeric_limits<double>::min();

constexpr AcEdVariable headerInteger(const char *name, double initial, double low, double high, int code = 70)
{
    AcEdVariable row{name, Type::integer, Storage::header, low, high, initial};
    row.code = code;
    row.needsDocument = true;
    return row;
}

/// Code 50: an angle, degrees in the file.
constexpr AcEdVariable headerReal(const char *name, double initial, double low = -kEndless, int code = 40)
{
    AcEdVariable row{name, Type::real, Storage::header, low, kEndless, initial};
    row.code = code;
    row.needsDocument = true;
    return row;
}

constexpr AcEdVariable headerText(const char *name, const char *initial, int code, AcEdVariable::Check check)
{
    AcEdVariable row{name, Type::text, Storage::header};
    row.text = initial;
    row.code = code;
    row.needsDocument = true;
    row.check = check;
    return row;
}

constexpr AcEdVariable settingsInteger(const char *name, double initial, double low, double high)
{
    return {name, Type::integer, Storage::settings, low, high, initial};
}

/// Red, green, blue as one number.
constexpr AcEdVariable settingsColor(const char *name, double initial)
{
    return {name, Type::longInteger, Storage::settings, 0, 0xFFFFFF, initial};
}

constexpr AcEdVariable sessionInteger(const char *name, double initial, double low, double high)
{
    return {name, Type::integer, Storage::session, low, high, initial};
}

constexpr AcEdVariable sessionText(const char *name, const char *initial)
{
    AcEdVariable row{name, Type::text, Storage::session};
    row.text = initial;
    return row;
}

constexpr AcEdVariable readOnly(AcEdVariable row)
{
    row.readOnly = true;
    return row;
}

/// Computed, from the program alone.
constexpr AcEdVariable computed(const char *name, Type type, AcEdVariable::Getter get)
{
    AcEdVariable row{name, type, Storage::computed};
    row.get = get;
    row.readOnly = true;
    return row;
}

/// Computed, from the current drawing.
constexpr AcEdVariable ofDrawing(const char *name, Type type, AcEdVariable::Getter get)
{
    AcEdVariable row = computed(name, type, get);
    row.needsDocument = true;
    return row;
}

constexpr AcEdVariable ofDrawing(const char *name, Type type, AcEdVariable::Getter get,
                                 AcEdVariable::Setter set)
{
    AcEdVariable row = ofDrawing(name, type, get);
    row.set = set;
    row.readOnly = false;
    return row;
}

// clang-format off
constexpr AcEdVariable kVariables[] = {
    // Spaces and views
    ofDrawing("TILEMODE",  Type::integer, sysvar::tileMode, sysvar::setTileMode),
    ofDrawing("CTAB",      Type::text,    sysvar::currentTab, sysvar::setCurrentTab),
    ofDrawing("CVPORT",    Type::integer, sysvar::currentViewport, sysvar::setCurrentViewport),
    ofDrawing("VIEWSIZE",  Type::real,    sysvar::viewSize),
    ofDrawing("VIEWCTR",   Type::point3d, sysvar::viewCentre),
    ofDrawing("VIEWTWIST", Type::real,    sysvar::viewTwist),
    ofDrawing("VIEWDIR",   Type::point3d, sysvar::viewDirection),
    ofDrawing("TARGET",    Type::point3d, sysvar::viewTarget),
    ofDrawing("SCREENSIZE", Type::point2d, sysvar::screenSize),
    ofDrawing("EXTMIN",    Type::point3d, sysvar::extentsMin),
    ofDrawing("EXTMAX",    Type::point3d, sysvar::extentsMax),
    ofDrawing("LIMMIN",    Type::point2d, sysvar::limitsMin, sysvar::setLimitsMin),
    ofDrawing("LIMMAX",    Type::point2d, sysvar::limitsMax, sysvar::setLimitsMax),
    headerInteger("LIMCHECK", 0, 0, 1),
    headerInteger("REGENMODE", 1, 0, 1),
    settingsColor("BACKGROUNDCOLOR", 0x000000),
    headerInteger("MAXACTVP", 64, 2, 64),

    // Coordinate systems
    ofDrawing("UCSORG",    Type::point3d, sysvar::ucsOrigin),
    ofDrawing("UCSXDIR",   Type::point3d, sysvar::ucsXDirection),
    ofDrawing("UCSYDIR",   Type::point3d, sysvar::ucsYDirection),
    ofDrawing("WORLDUCS",  Type::integer, sysvar::isWorldUcs),
    ofDrawing("LASTPOINT", Type::point3d, sysvar::lastPoint, sysvar::setLastPoint),
    headerReal("ELEVATION", 0),
    headerReal("THICKNESS", 0),

    // Units
    headerInteger("LUNITS", 2, 1, 5),
    headerInteger("LUPREC", 4, 0, 8),
    headerInteger("AUNITS", 0, 0, 4),
    headerInteger("AUPREC", 0, 0, 8),
    headerReal("ANGBASE", 0, -kEndless, 50),
    headerInteger("ANGDIR", 0, 0, 1),
    headerInteger("INSUNITS", 0, 0, 24),
    settingsInteger("INSUNITSDEFSOURCE", 4, 0, 24),
    settingsInteger("INSUNITSDEFTARGET", 4, 0, 24),
    headerInteger("MEASUREMENT", 1, 0, 1),

    // Current properties
    headerText("CLAYER",    "0", 8, sysvar::isUsableLayer),
    ofDrawing("CECOLOR",    Type::text, sysvar::currentColor, sysvar::setCurrentColor),
    headerText("CELTYPE",   "ByLayer", 6, sysvar::isLinetype),
    headerReal("CELTSCALE", 1, kAboveZero),
    headerInteger("CELWEIGHT", -1, -3, 211, 370),
    headerReal("LTSCALE", 1, kAboveZero),
    headerInteger("PSLTSCALE", 1, 0, 1),
    headerText("TEXTSTYLE", "Standard", 7, sysvar::isTextStyle),
    headerReal("TEXTSIZE", 2.5, kAboveZero),
    headerInteger("MIRRTEXT", 0, 0, 1),
    headerInteger("QTEXTMODE", 0, 0, 1),
    headerInteger("FILLMODE", 1, 0, 1),
    headerInteger("ATTMODE", 1, 0, 2),
    headerInteger("PDMODE", 0, 0, 100),
    headerReal("PDSIZE", 0),
    headerReal("PLINEWID", 0, 0),
    headerInteger("VISRETAIN", 1, 0, 1),
    headerInteger("LWDISPLAY", 0, 0, 1, 290),

    // The drawing and its file
    ofDrawing("DWGNAME",   Type::text,    sysvar::drawingName),
    ofDrawing("DWGPREFIX", Type::text,    sysvar::drawingFolder),
    ofDrawing("DWGTITLED", Type::integer, sysvar::isTitled),
    ofDrawing("DBMOD",     Type::integer, sysvar::isModified),
    readOnly(headerReal("TDCREATE", 0)),
    readOnly(headerReal("TDUPDATE", 0)),
    readOnly(headerReal("TDINDWG", 0)),
    readOnly(headerText("DWGCODEPAGE", "ANSI_936", 3, nullptr)),
    headerInteger("USERI1", 0, -32768, 32767), headerInteger("USERI2", 0, -32768, 32767),
    headerInteger("USERI3", 0, -32768, 32767), headerInteger("USERI4", 0, -32768, 32767),
    headerInteger("USERI5", 0, -32768, 32767),
    headerReal("USERR1", 0), headerReal("USERR2", 0), headerReal("USERR3", 0), headerReal("USERR4", 0),
    headerReal("USERR5", 0),
    sessionText("USERS1", ""), sessionText("USERS2", ""), sessionText("USERS3", ""), sessionText("USERS4", ""),
    sessionText("USERS5", ""),

    // Commands and prompts
    computed("CMDNAMES",  Type::text,    sysvar::commandNames),
    computed("CMDACTIVE", Type::integer, sysvar::commandActive),
    ofDrawing("UNDOCTL",  Type::integer, sysvar::undoState),
    sessionInteger("CMDECHO", 1, 0, 1),
    sessionInteger("HIGHLIGHT", 1, 0, 1),
    sessionInteger("EXPERT", 0, 0, 5),
    sessionInteger("ERRNO", 0, 0, 32767),
    sessionInteger("SNAPMODE", 0, 0, 1),
    sessionInteger("ATTREQ", 1, 0, 1),
    sessionInteger("CMDDIA", 1, 0, 1),
    headerInteger("ORTHOMODE", 0, 0, 1),
    settingsInteger("VTENABLE", 3, 0, 7),
    settingsInteger("OSMODE", 0, 0, 32767),
    settingsInteger("PICKFIRST", 1, 0, 1),
    settingsInteger("PICKADD", 2, 0, 2),
    settingsInteger("PICKBOX", 3, 0, 50),
    settingsInteger("APERTURE", 10, 1, 50),
    settingsInteger("GRIPS", 2, 0, 2),
    settingsInteger("GRIPSIZE", 5, 1, 255),
    settingsInteger("SELECTIONEFFECTCOLOR", 0, 0, 255),
    settingsInteger("FILEDIA", 1, 0, 1),
    settingsInteger("MENUBAR", 1, 0, 1),
    settingsInteger("SAVETIME", 10, 0, 600),
    settingsInteger("ISAVEPERCENT", 50, 0, 100),
    settingsInteger("BACKGROUNDPLOT", 2, 0, 3),
    settingsInteger("TRAYNOTIFY", 1, 0, 1),

    // The program and its surroundings
    computed("DATE",       Type::real, sysvar::julianDate),
    computed("CDATE",      Type::real, sysvar::calendarDate),
    computed("LOGINNAME",  Type::text, sysvar::loginName),
    computed("TEMPPREFIX", Type::text, sysvar::temporaryFolder),
    readOnly(sessionText("ACADVER", "20.0")),
    readOnly(sessionText("LOCALE", "CHS")),
    readOnly(sessionText("SYSCODEPAGE", "ANSI_936")),
    readOnly(sessionText("PLATFORM", "Linux")),
};
// clang-format on

std::unordered_map<QString, const AcEdVariable *> byName()
{
    std::unordered_map<QString, const AcEdVariable *> names;
    for (const AcEdVariable &row : kVariables)
        names.emplace(QString::fromLatin1(row.name), &row);
    return names;
}

AcEdVarType typeOf(const resbuf &group)
{
    switch (groupKind(group.restype)) {
    case GroupKind::real:
        return Type::real;
    case GroupKind::integer16:
    case GroupKind::boolean:
        return Type::integer;
    case GroupKind::integer32:
    case GroupKind::integer64:
        return Type::longInteger;
    case GroupKind::point:
        return Type::point3d;
    case GroupKind::text:
    case GroupKind::handle:
    case GroupKind::binary:
        break;
    }
    return Type::text;
}

} // namespace

std::span<const AcEdVariable> acedVariables()
{
    return kVariables;
}

const AcEdVariable *acedFindVariable(const QString &name)
{
    static const auto names = byName();
    const auto found = names.find(name.trimmed().toUpper());
    return found == names.end() ? nullptr : found->second;
}

std::optional<AcEdVariable> acedDimensionVariable(const AcDbDatabase &database, const QString &name)
{
    if (!name.startsWith(QLatin1String("DIM"), Qt::CaseInsensitive))
        return std::nullopt;
    const ResbufList *const groups = database.headerVariable('$' + name.toUpper().toLatin1());
    if (!groups || groups->empty())
        return std::nullopt;
    AcEdVariable row;
    row.type = typeOf(groups->front());
    row.storage = Storage::header;
    row.code = groups->front().restype;
    row.needsDocument = true;
    // Names and handles in it belong to the dimension style; numbers may be set.
    row.readOnly = row.type == Type::text;
    return row;
}
