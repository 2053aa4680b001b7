#include "host/formats/dxf/dxfencoder.h"

#include "host/base/format_number.h"

#include <algorithm>

namespace dxf
{

template <class Number>
static void appendNumber(QByteArray &out, Number number)
{
    out.append(reinterpret_cast<const char *>(&number), sizeof number);
}

static void rightJustify(QByteArray &out, QByteArrayView text, qsizetype width)
{
    out.append(std::max<qsizetype>(width - text.size(), 0), ' ');
    out.append(text);
}

void Encoder::code(QByteArray &out, int code) const
{
    if (!isBinary()) {
        rightJustify(out, QByteArray::number(code), m_source.style().codeWidth);
        out.append(m_source.style().lineEnd);
        return;
    }
    if (m_source.shortCodes() && code < 255) {
        appendNumber(out, std::uint8_t(code));
        return;
    }
    if (m_source.shortCodes())
        out.append('\xff');
    appendNumber(out, std::int16_t(code));
}

void Encoder::line(QByteArray &out, QByteArrayView value) const
{
    out.append(value);
    out.append(m_source.style().lineEnd);
}

void Encoder::plainText(QByteArray &out, int groupCode, QByteArrayView value) const
{
    code(out, groupCode);
    if (!isBinary()) {
        line(out, value);
        return;
    }
    std::ranges::copy_if(value, std::back_inserter(out), [](char c) { return c != '\0'; });
    out.append('\0');
}

void Encoder::text(QByteArray &out, int groupCode, QStringView value) const
{
    const auto isPlain = [](QChar c) { return c >= u' ' && c <= u'~' && c != u'\\' && c != u'^'; };
    // Most new strings are layers and markers, and the encoding need not be found out for them.
    plainText(out, groupCode,
              std::ranges::all_of(value, isPlain) ? value.toLatin1()
                                                  : base::encodeDrawingText(value, m_source.writingCodec()));
}

void Encoder::handle(QByteArray &out, int groupCode, std::uint64_t value) const
{
    plainText(out, groupCode, QByteArray::number(qulonglong(value), 16).toUpper());
}

void Encoder::integer(QByteArray &out, int groupCode, std::int64_t value) const
{
    const GroupKind kind = groupKind(groupCode);
    code(out, groupCode);
    if (!isBinary()) {
        const qsizetype width = kind == GroupKind::integer64 ? 18 : kind == GroupKind::integer32 ? 9 : 6;
        rightJustify(out, QByteArray::number(qlonglong(value)), m_source.style().padsIntegers ? width : 0);
        out.append(m_source.style().lineEnd);
        return;
    }
    switch (kind) {
    case GroupKind::integer64:
        return appendNumber(out, value);
    case GroupKind::integer32:
        return appendNumber(out, std::int32_t(value));
    case GroupKind::boolean:
        return appendNumber(out, std::int8_t(value != 0));
    default:
        return appendNumber(out, std::int16_t(value));
    }
}

void Encoder::real(QByteArray &out, int groupCode, double value) const
{
    code(out, groupCode);
    if (isBinary())
        appendNumber(out, value);
    else
        line(out, base::formatReal(value));
}

void Encoder::chunks(QByteArray &out, int groupCode, QByteArrayView bytes) const
{
    constexpr qsizetype kLongest = 127;
    do {
        const QByteArrayView part = bytes.first(std::min(bytes.size(), kLongest));
        code(out, groupCode);
        if (isBinary()) {
            appendNumber(out, std::uint8_t(part.size()));
            out.append(part);
        } else {
            line(out, part.toByteArray().toHex().toUpper());
        }
        bytes = bytes.sliced(part.size());
    } while (!bytes.isEmpty());
}

void Encoder::copy(QByteArray &out, std::string_view source) const
{
    out.append(source.data(), qsizetype(source.size()));
    out.append(missingLineEnd(source));
}

QByteArray Encoder::missingLineEnd(std::string_view source) const
{
    if (isBinary() || source.ends_with(m_source.lineEnd()))
        return {};
    return source.ends_with('\r') ? QByteArray("\n") : m_source.style().lineEnd;
}

static double realOf(const resbuf &group)
{
    const auto *const integer = std::get_if<std::int64_t>(&group.resval);
    return integer ? double(*integer) : group.real();
}

static std::int64_t integerOf(const resbuf &group)
{
    const auto *const real = std::get_if<double>(&group.resval);
    return real ? std::int64_t(*real) : group.integer();
}

static QString textOf(const resbuf &group)
{
    if (const auto *const integer = std::get_if<std::int64_t>(&group.resval))
        return QString::number(*integer);
    if (const auto *const real = std::get_if<double>(&group.resval))
        return base::formatReal(*real).toString();
    if (std::holds_alternative<AcDbHandle>(group.resval) ||
        std::holds_alternative<AcDbObjectId>(group.resval))
        return QString::number(group.handle().value, 16).toUpper();
    return group.text();
}

void Encoder::append(QByteArray &out, const resbuf &group) const
{
    if (m_source.holds(group.source))
        return copy(out, group.source);
    const int c = group.restype;
    const bool isPlane = std::holds_alternative<AcGePoint2d>(group.resval);
    if (isPlane || std::holds_alternative<AcGePoint3d>(group.resval)) {
        const AcGePoint3d point = group.point();
        real(out, c, point.x);
        real(out, c + 10, point.y);
        if (!isPlane)
            real(out, c + 20, point.z);
        return;
    }
    const bool isText = std::holds_alternative<QString>(group.resval);
    switch (groupKind(c)) {
    case GroupKind::point:
    case GroupKind::real:
        return real(out, c, realOf(group));
    case GroupKind::integer16:
    case GroupKind::integer32:
    case GroupKind::integer64:
    case GroupKind::boolean:
        return integer(out, c, integerOf(group));
    case GroupKind::handle:
        return isText ? text(out, c, group.text()) : handle(out, c, group.handle().value);
    case GroupKind::binary:
        return chunks(out, c, group.bytes());
    case GroupKind::text:
        return text(out, c, textOf(group));
    }
}

void Encoder::append(QByteArray &out, const ResbufList &groups) const
{
    for (const resbuf &group : groups)
        append(out, group);
}

} // namespace dxf
