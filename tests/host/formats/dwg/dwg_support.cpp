#include "tests/host/formats/dwg/dwg_support.h"

#include "host/formats/dwg/dwgchecksums.h"
#include "host/formats/dwg/dwgobject.h"
#include "host/formats/dwg/dwgpacker.h"

#include <zlib.h>

#include <bit>
#include <cstring>

namespace tests
{

// Bits -------------------------------------------------------------------------------------------

void BitWriter::b(bool value)
{
    m_bits.push_back(value);
}

void BitWriter::bits(unsigned value, int count)
{
    for (int i = count - 1; i >= 0; --i)
        b(value >> i & 1);
}

void BitWriter::rs(unsigned value)
{
    rc(value & 0xFF);
    rc(value >> 8 & 0xFF);
}

void BitWriter::rl(std::uint32_t value)
{
    rs(value & 0xFFFF);
    rs(value >> 16);
}

void BitWriter::rd(double value)
{
    const auto whole = std::bit_cast<std::uint64_t>(value);
    rl(std::uint32_t(whole));
    rl(std::uint32_t(whole >> 32));
}

void BitWriter::bs(int value)
{
    bits(0, 2);
    rs(unsigned(value));
}

void BitWriter::bl(int value)
{
    bits(0, 2);
    rl(std::uint32_t(value));
}

void BitWriter::bd(double value)
{
    bits(0, 2);
    rd(value);
}

void BitWriter::h(int code, std::uint64_t handle)
{
    int count = 0;
    while (count < 8 && handle >> (8 * count))
        ++count;
    bits(unsigned(code), 4);
    bits(unsigned(count), 4);
    for (int i = count - 1; i >= 0; --i)
        rc(unsigned(handle >> (8 * i) & 0xFF));
}

void BitWriter::raw(const QByteArray &bytes)
{
    for (const char byte : bytes)
        rc(std::uint8_t(byte));
}

void BitWriter::append(const BitWriter &other)
{
    m_bits.insert(m_bits.end(), other.m_bits.begin(), other.m_bits.end());
}

void BitWriter::padWithOnes()
{
    while (m_bits.size() % 8 != 0)
        b(true);
}

QByteArray BitWriter::bytes() const
{
    QByteArray bytes(qsizetype((m_bits.size() + 7) / 8), '\0');
    for (std::size_t i = 0; i < m_bits.size(); ++i) {
        if (m_bits[i])
            bytes[qsizetype(i / 8)] = char(bytes[qsizetype(i / 8)] | 0x80 >> (i % 8));
    }
    return bytes;
}

// Objects ----------------------------------------------------------------------------------------

void DwgObject::text(const QString &value)
{
    if (!since(DrawingVersion::r2007)) {
        const QByteArray bytes = value.toLatin1();
        data.bs(int(bytes.size()) + 1);
        data.raw(bytes + '\0');
        return;
    }
    texts.bs(int(value.size()));
    for (const QChar unit : value)
        texts.rs(unit.unicode());
}

void DwgObject::point3(double x, double y, double z)
{
    data.bd(x);
    data.bd(y);
    data.bd(z);
}

void DwgObject::common(std::uint64_t owner)
{
    data.bl(0); // Reactors
    if (since(DrawingVersion::r2004))
        data.b(true); // No extension dictionary.
    if (since(DrawingVersion::r2013))
        data.b(false);
    handles.h(4, owner);
    if (!since(DrawingVersion::r2004))
        handles.h(3, 0);
}

void DwgObject::entity(std::uint64_t layer, int color, const QByteArray &graphics)
{
    data.b(!graphics.isEmpty());
    if (!graphics.isEmpty()) {
        if (since(DrawingVersion::r2010)) {
            data.bits(2, 3);
            data.rs(unsigned(graphics.size()));
        } else {
            data.rl(std::uint32_t(graphics.size()));
        }
        data.raw(graphics);
    }
    data.bits(2, 2); // Model space
    data.bl(0);
    if (since(DrawingVersion::r2004))
        data.b(true);
    if (since(DrawingVersion::r2013))
        data.b(false);
    if (!since(DrawingVersion::r2004))
        data.b(true); // No links
    data.bs(color);
    data.bd(1.0);
    data.bits(0, 2); // Linetype by layer
    if (since(DrawingVersion::r2007)) {
        data.bits(0, 2);
        data.rc(0);
    }
    data.bits(0, 2); // Plot style
    if (since(DrawingVersion::r2010))
        data.bits(0, 3);
    data.bs(0);
    data.rc(29);
    if (!since(DrawingVersion::r2004))
        handles.h(3, 0);
    handles.h(5, layer);
}

void DwgObject::recordHead(const QString &name)
{
    text(name);
    if (since(DrawingVersion::r2007)) {
        data.bs(0);
        return;
    }
    data.b(true);
    data.bs(0);
    data.b(false);
}

static QByteArray crcOf(const QByteArray &bytes)
{
    BitWriter crc;
    crc.rs(dwg::crc16({bytes.constData(), std::size_t(bytes.size())}));
    return crc.bytes();
}

QByteArray dwgRecord(DrawingVersion version, std::uint64_t handle, int type,
                     const std::function<void(DwgObject &)> &body)
{
    DwgObject made(version);
    made.data.h(0, handle);
    DwgObject content(version);
    body(content);
    if (!content.extended.isEmpty()) {
        made.data.bs(int(content.extended.size()));
        made.data.h(5, content.application);
        made.data.raw(content.extended);
    }
    made.data.bs(0);
    made.data.append(content.data);
    if (made.since(DrawingVersion::r2007)) {
        made.data.append(content.texts);
        if (content.texts.size() != 0)
            made.data.rs(unsigned(content.texts.size()));
        made.data.b(content.texts.size() != 0);
    }
    BitWriter whole;
    const bool isNew = made.since(DrawingVersion::r2010);
    if (isNew) {
        whole.bits(2, 2);
        whole.rs(unsigned(type));
    } else {
        constexpr std::size_t kSizeBits = 32;
        whole.bs(type);
        whole.rl(std::uint32_t(whole.size() + kSizeBits + made.data.size()));
    }
    whole.append(made.data);
    const std::size_t handlesBegin = whole.size();
    whole.append(content.handles);
    whole.padWithOnes();
    BitWriter head;
    head.rs(unsigned(whole.size() / 8));
    if (isNew) {
        const std::size_t handleBits = whole.size() - handlesBegin;
        head.rc(0x80 | (handleBits & 0x7F));
        head.rc(unsigned(handleBits >> 7));
    }
    QByteArray record = head.bytes() + whole.bytes();
    return record + crcOf(record);
}

void DwgFile::object(std::uint64_t handle, int type, const std::function<void(DwgObject &)> &body)
{
    m_records[handle] = dwgRecord(m_version, handle, type, body);
}

void DwgFile::addClass(const QByteArray &dxfName, bool isEntity)
{
    m_classes.emplace_back(dxfName, isEntity);
}

// Sections ---------------------------------------------------------------------------------------

static QByteArray modular(std::int64_t value, bool isSigned)
{
    std::uint64_t rest = std::uint64_t(value < 0 ? -value : value);
    QByteArray bytes;
    const unsigned last = isSigned ? 0x3F : 0x7F;
    for (; rest > last; rest >>= 7)
        bytes.append(char(0x80 | (rest & 0x7F)));
    bytes.append(char(rest | (value < 0 ? 0x40 : 0)));
    return bytes;
}

QByteArray DwgFile::objectMap(const std::map<std::uint64_t, std::size_t> &places) const
{
    QByteArray pairs;
    std::int64_t lastHandle = 0, lastPlace = 0;
    for (const auto &[handle, place] : places) {
        pairs += modular(std::int64_t(handle) - lastHandle, false);
        pairs += modular(std::int64_t(place) - lastPlace, true);
        lastHandle = std::int64_t(handle);
        lastPlace = std::int64_t(place);
    }
    QByteArray map;
    for (const QByteArray &chunk : {pairs, QByteArray()}) {
        const unsigned size = unsigned(chunk.size()) + 2;
        QByteArray bytes = QByteArray(1, char(size >> 8)) + char(size & 0xFF) + chunk;
        const unsigned crc = dwg::crc16({bytes.constData(), std::size_t(bytes.size())});
        map += bytes + char(crc >> 8) + char(crc & 0xFF);
    }
    return map;
}

static QByteArray framed(DrawingVersion version, const char *begin, const char *end, const QByteArray &data)
{
    BitWriter size;
    size.rl(std::uint32_t(data.size()));
    if (version == DrawingVersion::r2018)
        size.rl(0);
    const QByteArray summed = size.bytes() + data;
    return QByteArray::fromHex(begin) + summed + crcOf(summed) + QByteArray::fromHex(end);
}

QByteArray DwgFile::classes() const
{
    const bool isNew = m_version >= DrawingVersion::r2004;
    BitWriter data, texts;
    const auto text = [&](const QByteArray &value) {
        if (m_version < DrawingVersion::r2007) {
            data.bs(int(value.size()));
            data.raw(value);
            return;
        }
        texts.bs(int(value.size()));
        for (const char unit : value)
            texts.rs(std::uint8_t(unit));
    };
    if (isNew) {
        data.bs(dwg::kFirstClass + int(m_classes.size()) - 1);
        data.rc(0);
        data.rc(0);
        data.b(true);
    }
    for (std::size_t i = 0; i < m_classes.size(); ++i) {
        data.bs(dwg::kFirstClass + int(i));
        data.bs(0);
        text("test application");
        text("AcDb" + m_classes[i].first);
        text(m_classes[i].first);
        data.b(false);
        data.bs(m_classes[i].second ? dwg::kProxyEntity : dwg::kProxyObject);
        for (int field = 0; isNew && field < 5; ++field)
            data.bl(0);
    }
    BitWriter whole;
    if (m_version >= DrawingVersion::r2007) {
        constexpr std::size_t kSizeBits = 32;
        whole.rl(std::uint32_t(kSizeBits + data.size() + texts.size() + 17));
        whole.append(data);
        whole.append(texts);
        whole.rs(unsigned(texts.size()));
        whole.b(true);
    } else {
        whole.append(data);
    }
    return framed(m_version, "8DA1C4B8C4A9F8C5C0DCF45FE7CFB68A", "725E3B473B56073A3F230BA018304975",
                  whole.bytes());
}

/// Zeros say zero in every code; what the variables are is tested on real files.
QByteArray DwgFile::header() const
{
    BitWriter data;
    const bool hasTexts = m_version >= DrawingVersion::r2007 && m_hasVariables;
    if (hasTexts) {
        constexpr int kBytes = 4000, kTextBits = 1600;
        data.rl(32 + 8 * kBytes + 17);
        data.raw(QByteArray(kBytes, '\0'));
        data.rs(kTextBits);
        data.b(true);
    } else if (m_version >= DrawingVersion::r2007) {
        data.rl(33);
    }
    data.raw(QByteArray(m_hasVariables ? 6000 : 4, '\0'));
    return framed(m_version, "CF7B1F23FDDE38A95F7C68B84E6D335F", "3084E0DC0221C756A0839747B192CCA0",
                  data.bytes());
}

static void putNumber(QByteArray &bytes, qsizetype at, std::uint64_t value, int size)
{
    std::memcpy(bytes.data() + at, &value, std::size_t(size));
}

QByteArray DwgFile::plain() const
{
    constexpr int kSections = 3;
    constexpr qsizetype kHeader = 0x19 + kSections * 9 + 2 + 16;
    std::map<std::uint64_t, std::size_t> places;
    QByteArray objects;
    const QByteArray sections[] = {header(), classes()};
    const qsizetype begin = kHeader + sections[0].size() + sections[1].size();
    for (const auto &[handle, record] : m_records) {
        places[handle] = std::size_t(begin + objects.size());
        objects += record;
    }
    const QByteArray map = objectMap(places);
    QByteArray file(kHeader, '\0');
    file.replace(0, 6, "AC1015");
    putNumber(file, 0x13, 30, 2);
    putNumber(file, 0x15, kSections, 4);
    const qsizetype at[] = {kHeader, kHeader + sections[0].size(), begin + objects.size()};
    const qsizetype sizes[] = {sections[0].size(), sections[1].size(), map.size()};
    for (int i = 0; i < kSections; ++i) {
        file[0x19 + i * 9] = char(i);
        putNumber(file, 0x19 + i * 9 + 1, std::uint64_t(at[i]), 4);
        putNumber(file, 0x19 + i * 9 + 5, std::uint64_t(sizes[i]), 4);
    }
    const qsizetype crcAt = 0x19 + kSections * 9;
    file.replace(crcAt, 2, crcOf(file.left(crcAt)));
    return file + sections[0] + sections[1] + objects + map;
}

/// One run of literals and the end.
static QByteArray packed(const QByteArray &bytes)
{
    QByteArray out;
    qsizetype rest = bytes.size() - 3;
    if (rest <= 0xF) {
        out.append(char(rest));
    } else {
        out.append('\0');
        for (rest -= 0xF; rest > 0xFF; rest -= 0xFF)
            out.append('\0');
        out.append(char(rest));
    }
    return out + bytes + QByteArray("\x11\0\0", 3);
}

using dwg::viewOf;

static QByteArray systemPage(std::uint32_t type, const QByteArray &content)
{
    const QByteArray data = packed(content);
    QByteArray head(0x14, '\0');
    putNumber(head, 0, type, 4);
    putNumber(head, 4, std::uint64_t(content.size()), 4);
    putNumber(head, 8, std::uint64_t(data.size()), 4);
    putNumber(head, 0xC, 2, 4);
    putNumber(head, 0x10, dwg::pageChecksum(dwg::pageChecksum(0, viewOf(head)), viewOf(data)), 4);
    return head + data;
}

QByteArray DwgFile::paged() const
{
    std::map<std::uint64_t, std::size_t> places;
    QByteArray objects("\xCA\x0D\0\0", 4);
    for (const auto &[handle, record] : m_records) {
        places[handle] = std::size_t(objects.size());
        objects += record;
    }
    const std::pair<QByteArray, QByteArray> sections[] = {{"AcDb:Header", header()},
                                                          {"AcDb:Classes", classes()},
                                                          {"AcDb:Handles", objectMap(places)},
                                                          {"AcDb:AcDbObjects", objects}};
    constexpr qsizetype kFirstPage = 0x100;
    constexpr qsizetype kPageUnit = 0x800;
    QByteArray pages, pageMap, sectionMap(0x14, '\0');
    putNumber(sectionMap, 0, std::size(sections), 4);
    const auto padded = [](QByteArray page) { return page.append((32 - page.size() % 32) % 32, '\0'); };
    const auto addPage = [&](int number, const QByteArray &page) {
        QByteArray entry(8, '\0');
        putNumber(entry, 0, std::uint64_t(number), 4);
        putNumber(entry, 4, std::uint64_t(padded(page).size()), 4);
        pageMap += entry;
        pages += padded(page);
    };
    int number = 0;
    for (const auto &[name, content] : sections) {
        const qsizetype pageSize = (content.size() / kPageUnit + 1) * kPageUnit;
        const QByteArray data = packed(content + QByteArray(pageSize - content.size(), '\0'));
        QByteArray head(32, '\0');
        putNumber(head, 0, 0x4163043B, 4);
        putNumber(head, 8, std::uint64_t(data.size()), 4);
        putNumber(head, 0xC, std::uint64_t(pageSize), 4);
        const std::uint32_t dataSum = dwg::pageChecksum(0, viewOf(data));
        putNumber(head, 0x1C, dataSum, 4);
        putNumber(head, 0x18, dwg::pageChecksum(dataSum, viewOf(head)), 4);
        const std::uint32_t mask = 0x4164536B ^ std::uint32_t(kFirstPage + pages.size());
        for (int i = 0; i < 32; ++i)
            head[i] = char(head[i] ^ char(mask >> (8 * (i % 4))));
        addPage(++number, head + data);
        QByteArray description(0x60 + 16, '\0');
        putNumber(description, 0, std::uint64_t(content.size()), 8);
        putNumber(description, 8, 1, 4);
        putNumber(description, 0xC, std::uint64_t(pageSize), 4);
        putNumber(description, 0x14, 2, 4);
        description.replace(0x20, name.size(), name);
        putNumber(description, 0x60, std::uint64_t(number), 4);
        sectionMap += description;
    }
    const int sectionMapNumber = ++number;
    addPage(sectionMapNumber, systemPage(0x4163003B, sectionMap));
    const qsizetype pageMapAt = pages.size();
    pages += systemPage(0x41630E3B, pageMap);

    QByteArray head(0x6C, '\0');
    head.replace(0, 11, "AcFssFcAJMB");
    putNumber(head, 0x54, std::uint64_t(pageMapAt), 8);
    putNumber(head, 0x5C, std::uint64_t(sectionMapNumber), 4);
    putNumber(head, 0x68, crc32(0, reinterpret_cast<const Bytef *>(head.constData()), uInt(head.size())), 4);
    std::uint32_t seed = 1;
    for (char &byte : head) {
        seed = seed * 0x343FD + 0x269EC3;
        byte = char(byte ^ char(seed >> 16));
    }
    QByteArray file(kFirstPage, '\0');
    file.replace(0, 6, "AC" + QByteArray::number(int(m_version)));
    putNumber(file, 0x13, 30, 2);
    file.replace(0x80, head.size(), head);
    return file + pages + head;
}

/// The same sections behind Reed-Solomon words; what packs them is tried on real files.
QByteArray DwgFile::paged21() const
{
    const QByteArray other = paged();
    dwg::Container container;
    container.version = m_version;
    if (!dwg::openPaged(viewOf(other), container))
        return {};
    QByteArray begin(0x480, '\0');
    begin.replace(0, 0x80, other.left(0x80));
    container.file = viewOf(begin);
    container.objects = container.section("AcDb:AcDbObjects");
    for (dwg::SectionForm &form : container.forms) {
        QByteArray name;
        for (const char unit : form.name + '\0')
            name.append(unit).append('\0');
        form.description = QByteArray(0x40, '\0');
        putNumber(form.description, 0x08, 0xF800, 8);
        putNumber(form.description, 0x20, std::uint64_t(name.size()), 8);
        putNumber(form.description, 0x30, 4, 8);
        form.description += name;
    }
    constexpr int kHeaderSize = 0x110;
    container.head = QByteArray(0x20 + kHeaderSize, '\0');
    putNumber(container.head, 0x18, std::uint64_t(std::int64_t(-kHeaderSize)), 8);
    return *dwg::packFile({container, {}, dwg::storedObjects(container), 0});
}

QByteArray DwgFile::bytes() const
{
    if (m_version < DrawingVersion::r2004)
        return plain();
    return m_version == DrawingVersion::r2007 ? paged21() : paged();
}

// A drawing --------------------------------------------------------------------------------------

QByteArray smallDwg(DrawingVersion version, bool hasVariables)
{
    enum : std::uint64_t {
        blocks = 1,
        layers = 2,
        styles = 3,
        linetypes = 5,
        apps = 9,
        root = 0xC,
        layer0 = 0x10,
        hidden = 0x11,
        standard = 0x12,
        continuous = 0x14,
        app = 0x15,
        model = 0x1F,
        begin = 0x20,
        end = 0x21,
        line = 0x30,
        text = 0x31,
        circle = 0x32,
        custom = 0x33
    };
    DwgFile file(version);
    if (hasVariables)
        file.addVariables();
    file.addClass("TESTWALL", true);
    const auto control = [&file](std::uint64_t handle, int type, std::vector<std::uint64_t> records) {
        file.object(handle, type, [&](DwgObject &o) {
            o.common(0);
            o.data.bl(int(records.size()));
            for (const std::uint64_t record : records)
                o.handles.h(2, record);
        });
    };
    control(blocks, dwg::kBlockControl, {model});
    control(layers, 0x32, {layer0, hidden});
    control(styles, 0x34, {standard});
    control(linetypes, 0x38, {continuous});
    control(apps, 0x42, {app});
    file.object(root, dwg::kDictionary, [](DwgObject &o) {
        o.common(0);
        o.data.bl(0);
        o.data.bs(1);
        o.data.rc(0);
    });
    const auto layer = [&](std::uint64_t handle, const QString &name, int values, int color) {
        file.object(handle, 0x33, [&](DwgObject &o) {
            o.common(layers);
            o.recordHead(name);
            o.data.bs(values);
            o.data.bs(o.since(DrawingVersion::r2004) ? 0 : color);
            if (o.since(DrawingVersion::r2004)) {
                o.data.bl(int(0xC3000000u | unsigned(color)));
                o.data.rc(0);
            }
            o.handles.h(5, 0);
            o.handles.h(5, 0);
            if (o.since(DrawingVersion::r2007))
                o.handles.h(5, 0);
            o.handles.h(5, continuous);
            if (o.since(DrawingVersion::r2013))
                o.handles.h(5, 0);
        });
    };
    layer(layer0, QStringLiteral("0"), 0x3F0, 7);
    layer(hidden, QStringLiteral("H\u00e4user"), 0x3F0 | 2, 3);
    file.object(standard, 0x35, [](DwgObject &o) {
        o.common(styles);
        o.recordHead(QStringLiteral("Standard"));
        o.data.b(false);
        o.data.b(false);
        for (const double value : {0.0, 1.0, 0.0})
            o.data.bd(value);
        o.data.rc(0);
        o.data.bd(2.5);
        o.text(QStringLiteral("txt"));
        o.text({});
        o.handles.h(5, 0);
    });
    file.object(continuous, 0x39, [](DwgObject &o) {
        o.common(linetypes);
        o.recordHead(QStringLiteral("Continuous"));
        o.text(QStringLiteral("Solid line"));
        o.data.bd(0.0);
        o.data.rc('A');
        o.data.rc(0);
        if (!o.since(DrawingVersion::r2007))
            o.data.raw(QByteArray(256, '\0'));
        o.handles.h(5, 0);
    });
    file.object(app, 0x43, [](DwgObject &o) {
        o.common(apps);
        o.recordHead(QStringLiteral("TESTAPP"));
        o.data.rc(0);
        o.handles.h(5, 0);
    });
    file.object(model, dwg::kBlockHeader, [](DwgObject &o) {
        o.common(blocks);
        o.recordHead(QStringLiteral("*Model_Space"));
        for (int i = 0; i < 5; ++i)
            o.data.b(false);
        if (o.since(DrawingVersion::r2004))
            o.data.bl(4);
        o.point3(0.0, 0.0, 0.0);
        o.text({});
        o.data.rc(0);
        o.text({});
        o.data.bl(0);
        if (o.since(DrawingVersion::r2007)) {
            o.data.bs(4);
            o.data.b(true);
            o.data.rc(0);
        }
        o.handles.h(5, 0);
        o.handles.h(3, begin);
        if (o.since(DrawingVersion::r2004)) {
            for (const std::uint64_t each : {line, text, circle, custom})
                o.handles.h(3, each);
        } else {
            o.handles.h(4, line);
            o.handles.h(4, custom);
        }
        o.handles.h(3, end);
        o.handles.h(5, 0);
    });
    file.object(begin, dwg::kBlockBegin, [](DwgObject &o) {
        o.entity(layer0);
        o.text(QStringLiteral("*Model_Space"));
    });
    file.object(end, dwg::kBlockEnd, [](DwgObject &o) { o.entity(layer0); });
    file.object(line, 0x13, [](DwgObject &o) {
        o.entity(hidden, 1);
        o.data.b(true); // Flat
        for (const double value : {1.0, 5.0, 2.0, 6.5}) {
            if (value == 5.0 || value == 6.5)
                o.data.bits(3, 2);
            o.data.rd(value);
        }
        o.data.b(true);
        o.data.b(true);
    });
    file.object(text, dwg::kText, [](DwgObject &o) {
        o.entity(layer0);
        o.data.rc(0xFF);
        o.data.rd(3.0);
        o.data.rd(4.0);
        o.data.b(true);
        o.data.b(true);
        o.data.rd(2.5);
        o.text(QStringLiteral("90\\U+00B0 ^J"));
        o.handles.h(5, standard);
    });
    file.object(circle, 0x12, [](DwgObject &o) {
        o.application = app;
        o.extended = QByteArray("\x46\x07\x00", 3); // 1070
        o.entity(layer0);
        o.point3(7.0, 8.0, 9.0);
        o.data.bd(2.0);
        o.data.b(false);
        o.data.bd(0.5);
        o.data.b(true);
    });
    file.object(custom, dwg::kFirstClass, [](DwgObject &o) {
        o.entity(layer0, 256, QByteArray("\x08\0\0\0\0\0\0\0", 8));
        o.data.rc(0xA5);
        o.data.b(true);
        o.text(QStringLiteral("wall"));
        o.handles.h(5, standard);
    });
    return file.bytes();
}

} // namespace tests
