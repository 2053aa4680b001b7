// The carrier: DXF files do not hold every field of a custom entity, so the entity's DWG-filed bytes
// stand beside it, in an xrecord of binary chunks below its extension dictionary.
//
// Layout: docs/formats/dwg-carrier.md.
#pragma once

#include "host/acdb/dbobject.h"

/// Stores the carrier of every custom object that will be written from memory. Part of saving as DXF; makes
/// no undo steps and notifies nobody.
void acdbPrepareDxfSave(AcDbDatabase &database);

/// The bytes kept for a custom object; empty when it has none or they are damaged.
QByteArray acdbCarriedFields(const AcDbDatabase &database, const ResbufList &groups);
