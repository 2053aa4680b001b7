// Small DWG files made in a test, bit by bit.
//
//     tests::DwgFile file(DrawingVersion::r2013);
//     file.object(0x20, dwg::kInsert, [](tests::DwgObject &o) { o.entity(); o.data.bd(1.0); });
//     const QByteArray bytes = file.bytes();
//
// AC1015 keeps its sections as they are; AC1027 packs them into pages, without compressing anything; AC1021
// is packed by the program.
#pragma once

#include "host/acdb/dbsource.h"

#include <QByteArray>

#include <functional>
#include <map>
#include <vector>

namespace tests
{

class BitWriter
{
public:
    void b(bool value);
    void bits(unsigned value, int count);
    void rc(unsigned value) { bits(value, 8); }
    void rs(unsigned value);
    void rl(std::uint32_t value);
    void rd(double value);
    void bs(int value);
    void bl(int value);
    void bd(double value);
    void h(int code, std::uint64_t handle);
    void raw(const QByteArray &bytes);
    void append(const BitWriter &other);
    void padWithOnes();
    std::size_t size() const { return m_bits.size(); }
    QByteArray bytes() const; ///< Filled up to whole bytes.

private:
    std::vector<bool> m_bits;
};

/// An object in the making.
class DwgObject
{
public:
    explicit DwgObject(DrawingVersion version) : m_version(version) {}
    bool since(DrawingVersion version) const { return m_version >= version; }
    void text(const QString &value);
    void point3(double x, double y, double z);
    /// What every object but an entity begins with, and its owner.
    void common(std::uint64_t owner);
    /// What an entity of model space begins with, on a layer.
    void entity(std::uint64_t layer, int color = 256, const QByteArray &graphics = {});
    void recordHead(const QString &name);

    BitWriter data, texts, handles;
    QByteArray extended; ///< Extended data, from the application's handle on; see DwgFile.
    std::uint64_t application = 0;

private:
    DrawingVersion m_version;
};

/// One object's record.
QByteArray dwgRecord(DrawingVersion version, std::uint64_t handle, int type,
                     const std::function<void(DwgObject &)> &body);

class DwgFile
{
public:
    explicit DwgFile(DrawingVersion version) : m_version(version) {}

    void object(std::uint64_t handle, int type, const std::function<void(DwgObject &)> &body);
    /// Classes count from 500.
    void addClass(const QByteArray &dxfName, bool isEntity);
    /// All variables of the version, which are zero or empty.
    void addVariables() { m_hasVariables = true; }
    QByteArray bytes() const;

private:
    QByteArray objectMap(const std::map<std::uint64_t, std::size_t> &places) const;
    QByteArray classes() const;
    QByteArray header() const;
    QByteArray plain() const;
    QByteArray paged() const;
    QByteArray paged21() const;

    DrawingVersion m_version;
    bool m_hasVariables = false;
    std::map<std::uint64_t, QByteArray> m_records;
    std::vector<std::pair<QByteArray, bool>> m_classes;
};

/// A drawing with a layer that is off, a line, a text, a circle with extended data and a custom entity.
QByteArray smallDwg(DrawingVersion version, bool hasVariables = false);

} // namespace tests
