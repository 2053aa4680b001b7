// The carrier: DXF files do not hold every field of a custom entity, so the entity's DWG-filed bytes
// stand beside it, in an xrecord of binary chunks below its extension dictionary.
//
// Layout: docs/formats/dwg-carrier.md.
#pragma once

#include "host/acdb/dbobject.h"

/// The carrier's key in an extension dictionary.
inline constexpr QStringView kDwgCarrierKey = u"DWG_FIELDS";

/// Which custom objects are written from memory.
enum class AcDbCarried {
    changed, ///< The file keeps the others as they are.
    all,     ///< The file is of another format than the one that the drawing came from.
};

/// Puts the carriers of all custom objects that will be written from memory into the drawing, for as long as
/// it is being saved; afterwards the drawing is as it was. Makes no undo steps and notifies nobody. Saving
/// again uses the same handles.
class AcDbDwgCarriers
{
public:
    explicit AcDbDwgCarriers(AcDbDatabase &database, AcDbCarried which = AcDbCarried::changed);
    ~AcDbDwgCarriers();
    AcDbDwgCarriers(const AcDbDwgCarriers &) = delete;
    AcDbDwgCarriers &operator=(const AcDbDwgCarriers &) = delete;

    /// The carriers stay in the drawing as ordinary objects: the class that could make them again is leaving.
    void leave();

private:
    std::unique_ptr<class CarrierKeeper> m_keeper;
};

/// The bytes kept for a custom object; empty when it has none or they are damaged.
QByteArray acdbCarriedFields(const AcDbDatabase &database, const ResbufList &groups);
