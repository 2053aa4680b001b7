#include "host/formats/dxf/dxfsource.h"

#include "host/base/encoding_vote.h"
#include "host/base/format_number.h"

#include <algorithm>
#include <charconv>

using dxf::Group;

DxfSource::DxfSource(base::FileBytes bytes) : m_bytes(std::move(bytes))
{
    const std::string_view all = m_bytes.view();
    m_binary = all.starts_with(dxf::kBinarySentinel);
    if (m_binary) {
        m_contentBegin = dxf::kBinarySentinel.size();
        m_shortCodes = dxf::hasShortCodes(all.substr(m_contentBegin));
        return;
    }
    m_contentBegin = all.starts_with("\xef\xbb\xbf") ? 3 : 0;
    m_lineEnd = dxf::TextScanner::lineEndOf(all);
}

bool DxfSource::holds(std::string_view part) const
{
    const std::less_equal<const char *> notAfter;
    const auto isPartOf = [&](std::string_view whole) {
        return notAfter(whole.data(), part.data()) &&
               notAfter(part.data() + part.size(), whole.data() + whole.size());
    };
    return !part.empty() && (isPartOf(bytes()) || isPartOf(keptText()));
}

std::uint64_t DxfSource::offsetOf(const char *at) const
{
    const std::string_view text = keptText();
    const std::less_equal<const char *> notAfter;
    if (!text.empty() && notAfter(text.data(), at) && notAfter(at, text.data() + text.size()))
        return keptBegin() + std::uint64_t(at - text.data());
    return std::uint64_t(at - m_bytes.data());
}

QByteArray DxfSource::withoutKept(std::string_view part) const
{
    QByteArray rest;
    const std::uint64_t begin = offsetOf(part.data());
    const std::uint64_t end = begin + part.size();
    std::uint64_t at = begin;
    auto comment = std::ranges::lower_bound(m_kept.comments, begin, {}, &dxf::Place::begin);
    for (; comment != m_kept.comments.end() && comment->begin < end; ++comment) {
        rest.append(part.data() + (at - begin), qsizetype(comment->begin - at));
        at = std::min(comment->end, end);
    }
    return rest.append(part.data() + (at - begin), qsizetype(end - at));
}

static DrawingVersion versionOf(std::string_view text)
{
    constexpr DrawingVersion kVersions[] = {
        DrawingVersion::r2018, DrawingVersion::r2013, DrawingVersion::r2010, DrawingVersion::r2007,
        DrawingVersion::r2004, DrawingVersion::r2000, DrawingVersion::r14,   DrawingVersion::r13,
    };
    text = dxf::trimmed(text);
    const std::int64_t number = text.starts_with("AC") ? base::parseInteger(text.substr(2)).value_or(0) : 0;
    const auto known = std::ranges::find_if(kVersions, [=](DrawingVersion v) { return number >= int(v); });
    return known == std::end(kVersions) ? DrawingVersion::r12 : *known;
}

void DxfSource::setVersion(std::string_view version, std::string_view codePage)
{
    m_version = versionOf(version);
    if (m_version >= DrawingVersion::r2007)
        m_named = m_utf8;
    else if (const std::string_view name = dxf::trimmed(codePage); !name.empty())
        m_named = base::TextCodec(name);
    m_encoding = Encoding::undecided;
}

bool DxfSource::isUtf8InFact() const
{
    if (m_named.isUtf8())
        return true;
    base::EncodingVote vote(m_named);
    if (!m_binary) {
        vote.lines(bytes());
        return vote.isUtf8();
    }
    visitGroups(bytes().substr(m_contentBegin), [&](const Group &group) {
        if (groupKind(group.code) == GroupKind::text)
            vote.string(group.value);
        return true;
    });
    return vote.isUtf8();
}

const base::TextCodec &DxfSource::codec() const
{
    Encoding encoding = m_encoding.load();
    if (encoding == Encoding::undecided) {
        encoding = isUtf8InFact() ? Encoding::utf8 : Encoding::named; // Two threads find the same.
        m_encoding = encoding;
    }
    return encoding == Encoding::utf8 ? m_utf8 : m_named;
}

base::TextCodec DxfSource::writingCodec() const
{
    return codec() == m_named ? m_named : base::TextCodec("ASCII");
}

/// Of the first lines; the first one alone may be the damaged one.
static bool mostLinesEndWithPair(std::string_view part)
{
    constexpr int kLines = 32;
    int pairs = 0;
    int lines = 0;
    for (std::size_t end = part.find('\n'); end != std::string_view::npos && lines < kLines;
         end = part.find('\n', end + 1), ++lines)
        pairs += end > 0 && part[end - 1] == '\r';
    return 2 * pairs >= lines;
}

void DxfSource::learnStyle(std::string_view part)
{
    if (m_binary)
        return;
    const bool isPair = m_lineEnd == '\n' && mostLinesEndWithPair(part);
    m_style.lineEnd = isPair ? QByteArray("\r\n") : QByteArray(1, m_lineEnd);
    bool first = true;
    visitGroups(part, [&](const Group &group) {
        if (first && group.code < 100) {
            const std::string_view code(group.begin, std::size_t(group.value.data() - group.begin));
            m_style.codeWidth = int(code.find_first_of("\r\n"));
            first = false;
        }
        if (groupKind(group.code) != GroupKind::integer16)
            return true;
        m_style.padsIntegers = group.value.starts_with("    ");
        return false;
    });
}

ResbufList DxfSource::read(const AcDbStub &stub) const
{
    static const AcDbKind kDimensionStyle = acdbKind("DIMSTYLE");
    return decode(bytes(stub), stub.kind == kDimensionStyle);
}

ResbufList DxfSource::readSome(const AcDbStub &stub, std::span<const int> codes) const
{
    ResbufList list;
    visitGroups(bytes(stub), [&](const Group &group) {
        if (std::ranges::find(codes, group.code) == codes.end())
            return true;
        const GroupKind kind = groupKind(group.code);
        list.emplace_back(group.code, m_binary ? binaryValue(group, kind) : value(group, kind)).source = {
            group.begin, std::size_t(group.end - group.begin)};
        return true;
    });
    return list;
}

ResbufList DxfSource::decode(std::string_view part, bool dimensionStyle) const
{
    constexpr std::size_t kUsualGroupSize = 14;
    const std::size_t expected = part.size() / kUsualGroupSize + 1;
    if (m_binary)
        return decodeWith(dxf::BinaryScanner(part, m_shortCodes), dimensionStyle, expected);
    return decodeWith(dxf::TextScanner(part, m_lineEnd), dimensionStyle, expected);
}

static double realOf(std::string_view text)
{
    const std::string_view field = dxf::trimmed(text);
    double value = 0.0;
    const auto [rest, error] = std::from_chars(field.data(), field.data() + field.size(), value);
    if (error == std::errc() && rest == field.data() + field.size() && std::isfinite(value))
        return value;
    return base::parseReal(field).value_or(0.0); // Signs and exponents that from_chars() does not know.
}

static double binaryReal(std::string_view bytes)
{
    double value = 0.0;
    std::memcpy(&value, bytes.data(), std::min(bytes.size(), sizeof value));
    return std::isfinite(value) ? value : 0.0;
}

/// Puts y (and z) behind x into one point, as far as they stand there.
template <class Scanner>
static resbuf::Value pointValue(Scanner &scanner, Group &group, double x, double (*real)(std::string_view))
{
    const int code = group.code;
    Group next;
    Scanner ahead = scanner;
    if (ahead.next(next) != dxf::Step::group || next.code != code + 10)
        return x;
    const double y = real(next.value);
    group.end = next.end;
    scanner = ahead;
    if (ahead.next(next) != dxf::Step::group || next.code != code + 20)
        return AcGePoint2d(x, y);
    group.end = next.end;
    scanner = ahead;
    return AcGePoint3d(x, y, real(next.value));
}

/// The group of this code among the coordinates from here on, before the next point of code `x`; false when
/// there is none.
template <class Scanner>
static bool findCoordinate(Scanner ahead, int x, int code, Group &found)
{
    const auto isCoordinate = [](int c) {
        return beginsPoint(c) || beginsPoint(c - 10) || beginsPoint(c - 20);
    };
    while (ahead.next(found) == dxf::Step::group && isCoordinate(found.code) && found.code != x) {
        if (found.code == code)
            return true;
    }
    return false;
}

/// For an x that no y follows at once. Some writers put the coordinates of several points in the order of
/// their codes: 10, 11, 20, 21, 30, 31. In a run of coordinates y and z belong to the x before them whose
/// code fits. `taken` gets the places of those that went into the point.
template <class Scanner>
static resbuf::Value scatteredValue(const Scanner &scanner, const Group &group, double x,
                                    double (*real)(std::string_view), std::vector<const char *> &taken)
{
    Group y;
    if (!findCoordinate(scanner, group.code, group.code + 10, y))
        return x;
    taken.push_back(y.begin);
    Group z;
    if (!findCoordinate(scanner, group.code, group.code + 20, z))
        return AcGePoint2d(x, real(y.value));
    taken.push_back(z.begin);
    return AcGePoint3d(x, real(y.value), real(z.value));
}

template <class Scanner>
ResbufList DxfSource::decodeWith(Scanner scanner, bool dimensionStyle, std::size_t expectedGroups) const
{
    constexpr bool kBinary = std::is_same_v<Scanner, dxf::BinaryScanner>;
    ResbufList list;
    list.reserve(expectedGroups);
    std::vector<const char *> taken; // Coordinates that went into a point before their place.
    Group group;
    while (scanner.next(group) == dxf::Step::group) {
        if (!taken.empty() && std::erase(taken, group.begin) != 0)
            continue;
        const GroupKind kind = dimensionStyle && group.code == 5 ? GroupKind::text : groupKind(group.code);
        resbuf &added = list.emplace_back();
        added.restype = group.code;
        if (kind == GroupKind::point) {
            constexpr auto kReal = kBinary ? binaryReal : realOf;
            added.resval = pointValue(scanner, group, kReal(group.value), kReal);
            if (const double *const x = std::get_if<double>(&added.resval)) {
                added.resval = scatteredValue(scanner, group, *x, kReal, taken);
                if (!std::holds_alternative<double>(added.resval))
                    continue; // The point has no bytes of its own that could be written back.
            }
        } else {
            added.resval = kBinary ? binaryValue(group, kind) : value(group, kind);
        }
        added.source = {group.begin, std::size_t(group.end - group.begin)};
    }
    return list;
}

static std::int64_t integerOf(std::string_view text)
{
    const std::string_view field = dxf::trimmed(text);
    std::int64_t value = 0;
    const auto [rest, error] = std::from_chars(field.data(), field.data() + field.size(), value);
    if (error == std::errc() && rest == field.data() + field.size())
        return value;
    if (const auto signedValue = base::parseInteger(field))
        return *signedValue;
    const double real = realOf(field); // Some writers put "1.0" where an integer belongs.
    return std::abs(real) < 9e18 ? std::int64_t(real) : 0;
}

static QByteArray bytesOfHex(std::string_view text)
{
    const std::string_view field = dxf::trimmed(text);
    const auto isHex = [](unsigned char c) { return std::isxdigit(c) != 0; };
    if (field.size() % 2 != 0 || !std::ranges::all_of(field, isHex))
        return {};
    return QByteArray::fromHex(QByteArray::fromRawData(field.data(), qsizetype(field.size())));
}

QString DxfSource::text(std::string_view bytes) const
{
    const auto isPlain = [](char c) { return static_cast<signed char>(c) >= 0 && c != '\\' && c != '^'; };
    if (std::ranges::all_of(bytes, isPlain))
        return QString::fromLatin1(bytes.data(), qsizetype(bytes.size()));
    return base::decodeDrawingText(bytes, codec());
}

resbuf::Value DxfSource::value(const Group &group, GroupKind kind) const
{
    switch (kind) {
    case GroupKind::text:
        return text(group.value);
    case GroupKind::point:
    case GroupKind::real:
        return realOf(group.value);
    case GroupKind::integer16:
    case GroupKind::integer32:
    case GroupKind::integer64:
    case GroupKind::boolean:
        return integerOf(group.value);
    case GroupKind::handle:
        return AcDbHandle{dxf::parseHandle(group.value)};
    case GroupKind::binary:
        return bytesOfHex(group.value);
    }
    return {};
}

template <class Number>
static std::int64_t binaryInteger(std::string_view bytes)
{
    Number number{};
    std::memcpy(&number, bytes.data(), std::min(bytes.size(), sizeof number));
    return number;
}

resbuf::Value DxfSource::binaryValue(const Group &group, GroupKind kind) const
{
    switch (kind) {
    case GroupKind::text:
        return text(group.value);
    case GroupKind::point:
    case GroupKind::real:
        return binaryReal(group.value);
    case GroupKind::integer16:
        return binaryInteger<std::int16_t>(group.value);
    case GroupKind::integer32:
        return binaryInteger<std::int32_t>(group.value);
    case GroupKind::integer64:
        return binaryInteger<std::int64_t>(group.value);
    case GroupKind::boolean:
        return binaryInteger<std::uint8_t>(group.value);
    case GroupKind::handle:
        return AcDbHandle{dxf::parseHandle(group.value)};
    case GroupKind::binary:
        return QByteArray(group.value.data(), qsizetype(group.value.size()));
    }
    return {};
}
