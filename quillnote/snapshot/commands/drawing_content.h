// What entities show, as values that can be compared between two drawings: their data without handles and
// other names that a program may give anew when it saves.
#pragma once

#include "host/acdb/dbid.h"

#include <QByteArray>

#include <unordered_map>

class AcDbDatabase;

class DrawingContent
{
public:
    /// Equal for entities that look the same as far as their own data goes: kind, layer, colour, geometry,
    /// texts, attributes and vertices, and the entities of a block that they show, also of another drawing.
    /// Numbers count to ten digits.
    const QByteArray &of(AcDbObjectId entity);

private:
    QByteArray read(AcDbObjectId entity);
    QByteArray ofBlock(const AcDbDatabase &database, const QString &name);

    std::unordered_map<AcDbObjectId, QByteArray> m_known; ///< Entities and block records.
};
