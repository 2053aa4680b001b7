// Numbers as text, the same under every locale.
#pragma once

#include <QByteArray>
#include <QString>

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace base
{

/// A formatted number. Needs no memory of its own; converts to the string types that take it.
class NumberText
{
public:
    operator std::string_view() const { return {m_text.data(), m_size}; }
    operator QByteArrayView() const { return {m_text.data(), static_cast<qsizetype>(m_size)}; }
    std::string_view view() const { return *this; }
    QByteArray toByteArray() const { return QByteArrayView(*this).toByteArray(); }
    QString toString() const { return QString::fromLatin1(QByteArrayView(*this)); }

    void append(std::string_view text);

private:
    std::array<char, 40> m_text{};
    std::size_t m_size = 0;
};

/// The shortest text that reads back as the same number, always with a decimal point: "0.0", "-1.5",
/// "1.0E+20". Drawing files have no text for infinity and not-a-number; these give "0.0".
NumberText formatReal(double value);

/// "%g": six significant digits, an exponent of sign and three digits: "0.1", "1e-007", "1.5e+010".
NumberText formatPrintfG(double value);

/// A whole field: blanks around the number, a leading "+" and the exponent letters E, e, D, d are
/// accepted. Refuses an empty field, anything after the number, words such as "nan", and numbers
/// too large for a double. Numbers too small for one give 0.
std::optional<double> parseReal(std::string_view text);

/// A whole field with blanks around it and an optional sign; refuses what 64 bits cannot hold.
std::optional<std::int64_t> parseInteger(std::string_view text);

} // namespace base
