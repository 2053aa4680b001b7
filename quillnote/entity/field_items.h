// How values of each type stand in DWG streams, in DXF groups and in dumps.
#pragma once

#include "quillnote/entity/field_table.h"

#include "host/acdb/dbfiler.h"

#include <QJsonArray>
#include <QJsonValue>

#include <functional>
#include <type_traits>

namespace fields
{

/// The calls that file a value of type T. A new type of field gets its own specialisation.
template <class T>
struct Filing;

template <>
struct Filing<std::uint16_t> {
    static constexpr auto read = &AcDbDwgFiler::readUInt16;
    static constexpr auto write = &AcDbDwgFiler::writeUInt16;
    static constexpr auto writeGroup = &AcDbDxfFiler::writeUInt16;
    static std::uint16_t fromGroup(const resbuf &group)
    {
        return static_cast<std::uint16_t>(group.integer());
    }
};

template <>
struct Filing<std::int16_t> {
    static constexpr auto read = &AcDbDwgFiler::readInt16;
    static constexpr auto write = &AcDbDwgFiler::writeInt16;
    static constexpr auto writeGroup = &AcDbDxfFiler::writeInt16;
    static std::int16_t fromGroup(const resbuf &group) { return static_cast<std::int16_t>(group.integer()); }
};

template <>
struct Filing<bool> {
    static constexpr auto read = &AcDbDwgFiler::readBool;
    static constexpr auto write = &AcDbDwgFiler::writeBool;
    static constexpr auto writeGroup = &AcDbDxfFiler::writeBool;
    static bool fromGroup(const resbuf &group) { return group.integer() != 0; }
};

template <>
struct Filing<double> {
    static constexpr auto read = &AcDbDwgFiler::readDouble;
    static constexpr auto write = &AcDbDwgFiler::writeDouble;
    static constexpr auto writeGroup = &AcDbDxfFiler::writeDouble;
    static double fromGroup(const resbuf &group) { return group.real(); }
};

template <>
struct Filing<QString> {
    static constexpr auto read = &AcDbDwgFiler::readString;
    static constexpr auto write = &AcDbDwgFiler::writeString;
    static constexpr auto writeGroup = &AcDbDxfFiler::writeString;
    static QString fromGroup(const resbuf &group) { return group.text(); }
};

template <>
struct Filing<AcGePoint3d> {
    static constexpr auto read = &AcDbDwgFiler::readPoint3d;
    static constexpr auto write = &AcDbDwgFiler::writePoint3d;
    static constexpr auto writeGroup = &AcDbDxfFiler::writePoint3d;
    static AcGePoint3d fromGroup(const resbuf &group) { return group.point(); }
};

template <>
struct Filing<AcGeVector3d> {
    static constexpr auto read = &AcDbDwgFiler::readVector3d;
    static constexpr auto write = &AcDbDwgFiler::writeVector3d;
    static constexpr auto writeGroup = &AcDbDxfFiler::writeVector3d;
    static AcGeVector3d fromGroup(const resbuf &group) { return group.point().asVector(); }
};

/// Codes are filed as their numbers.
template <class T>
requires std::is_enum_v<T>
struct Filing<T> {
    using Number = std::underlying_type_t<T>;
    static Acad::ErrorStatus read(AcDbDwgFiler &filer, T &value)
    {
        auto number = Number();
        const Acad::ErrorStatus status = std::invoke(Filing<Number>::read, filer, number);
        value = T(number);
        return status;
    }
    static Acad::ErrorStatus write(AcDbDwgFiler &filer, T value)
    {
        return std::invoke(Filing<Number>::write, filer, Number(value));
    }
    static Acad::ErrorStatus writeGroup(AcDbDxfFiler &filer, int code, T value)
    {
        return std::invoke(Filing<Number>::writeGroup, filer, code, Number(value));
    }
    static T fromGroup(const resbuf &group) { return T(Filing<Number>::fromGroup(group)); }
};

/// Assigns only what the filer really had, so that a record keeps its value when reading fails.
template <class T>
Acad::ErrorStatus readItem(AcDbDwgFiler &filer, T &value)
{
    T taken{};
    const Acad::ErrorStatus status = std::invoke(Filing<T>::read, filer, taken);
    if (status == Acad::eOk)
        value = std::move(taken);
    return status;
}
/// A 32-bit size and the bytes.
Acad::ErrorStatus readItem(AcDbDwgFiler &filer, QByteArray &value);
/// A 32-bit count and hard pointers. Ids that were read before a failure are kept.
Acad::ErrorStatus readItem(AcDbDwgFiler &filer, std::vector<AcDbObjectId> &value);

template <class T>
Acad::ErrorStatus writeItem(AcDbDwgFiler &filer, const T &value)
{
    return std::invoke(Filing<T>::write, filer, value);
}
Acad::ErrorStatus writeItem(AcDbDwgFiler &filer, const QByteArray &value);
Acad::ErrorStatus writeItem(AcDbDwgFiler &filer, const std::vector<AcDbObjectId> &value);

/// A group that carries another type gives 0, false, an empty text or the origin.
template <class T>
void readGroup(const resbuf &group, T &value)
{
    value = Filing<T>::fromGroup(group);
}
template <class T>
Acad::ErrorStatus writeGroup(AcDbDxfFiler &filer, int code, const T &value)
{
    return std::invoke(Filing<T>::writeGroup, filer, code, value);
}

// Dumps. Points are arrays of three, ids their handles, bytes an object of size and SHA-256.
template <class T>
requires std::is_arithmetic_v<T> QJsonValue toJson(T value)
{
    return QJsonValue(std::conditional_t < std::is_integral_v<T> && !std::is_same_v<T, bool>, int,
                      T > (value));
}
template <class T>
requires std::is_enum_v<T> QJsonValue toJson(T value)
{
    return toJson(std::underlying_type_t<T>(value));
}
inline QJsonValue toJson(const QString &value)
{
    return value;
}
inline QJsonValue toJson(const AcGePoint3d &value)
{
    return QJsonArray{value.x, value.y, value.z};
}
inline QJsonValue toJson(const AcGeVector3d &value)
{
    return QJsonArray{value.x, value.y, value.z};
}
QJsonValue toJson(const QByteArray &value);
QJsonValue toJson(const std::vector<AcDbObjectId> &value);

/// Prints the line "!file@line: status" for a field that could not be filed, and returns the status.
Acad::ErrorStatus reportFailure(Acad::ErrorStatus status, const RowPlace &row);

} // namespace fields
