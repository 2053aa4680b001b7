#include "host/base/format_number.h"

#include "host/base/assert.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <span>
#include <string>

namespace base
{

void NumberText::append(std::string_view text)
{
    QUILL_ASSERT(text.size() <= m_text.size() - m_size);
    std::memcpy(m_text.data() + m_size, text.data(), text.size());
    m_size += text.size();
}

static std::string_view written(std::span<const char> buffer, std::to_chars_result result)
{
    return {buffer.data(), static_cast<std::size_t>(result.ptr - buffer.data())};
}

NumberText formatReal(double value)
{
    NumberText text;
    if (!std::isfinite(value)) {
        text.append("0.0");
        return text;
    }
    std::array<char, 32> buffer;
    const std::string_view shortest =
        written(buffer, std::to_chars(buffer.data(), buffer.data() + buffer.size(), value));
    const std::size_t exponent = std::min(shortest.find('e'), shortest.size());
    const std::string_view mantissa = shortest.substr(0, exponent);
    text.append(mantissa);
    if (mantissa.find('.') == std::string_view::npos)
        text.append(".0");
    if (exponent != shortest.size()) {
        text.append("E");
        text.append(shortest.substr(exponent + 1));
    }
    return text;
}

NumberText formatPrintfG(double value)
{
    std::array<char, 32> buffer;
    const std::string_view general =
        written(buffer, std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                      std::chars_format::general, 6));
    NumberText text;
    const std::size_t exponent = general.find('e');
    if (exponent == std::string_view::npos) {
        text.append(general);
        return text;
    }
    const std::size_t digits = exponent + 2; // After "e" and the sign.
    text.append(general.substr(0, digits));
    if (general.size() - digits == 2)
        text.append("0");
    text.append(general.substr(digits));
    return text;
}

static bool isBlank(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

static std::string_view trimmed(std::string_view text)
{
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

/// from_chars() knows no "+"; behind one no second sign may follow.
static std::optional<std::string_view> withoutPlus(std::string_view text)
{
    if (!text.starts_with('+'))
        return text;
    text.remove_prefix(1);
    if (text.starts_with('-'))
        return std::nullopt;
    return text;
}

/// The library does not say whether a number was too large or too small for a double: a negative exponent
/// tells, or a fraction without whole part.
static bool isTiny(std::string_view text)
{
    const std::size_t exponent = text.find_first_of("eE");
    if (exponent != std::string_view::npos)
        return text.substr(exponent + 1).starts_with('-');
    return text.find_first_of("123456789") > text.find('.');
}

std::optional<double> parseReal(std::string_view text)
{
    const auto number = withoutPlus(trimmed(text));
    if (!number)
        return std::nullopt;
    double value = 0.0;
    const char *const end = number->data() + number->size();
    const auto [stop, error] = std::from_chars(number->data(), end, value);
    if (error == std::errc::invalid_argument)
        return std::nullopt;
    if (stop != end) {
        if (*stop != 'd' && *stop != 'D')
            return std::nullopt;
        std::string modern(*number);
        modern[static_cast<std::size_t>(stop - number->data())] = 'E';
        return parseReal(modern);
    }
    if (error == std::errc::result_out_of_range) {
        if (!isTiny(*number))
            return std::nullopt;
        return number->starts_with('-') ? -0.0 : 0.0;
    }
    if (!std::isfinite(value))
        return std::nullopt; // from_chars() reads "inf" and "nan".
    return value;
}

std::optional<std::int64_t> parseInteger(std::string_view text)
{
    const auto number = withoutPlus(trimmed(text));
    if (!number)
        return std::nullopt;
    std::int64_t value = 0;
    const char *const end = number->data() + number->size();
    const auto [stop, error] = std::from_chars(number->data(), end, value);
    if (error != std::errc() || stop != end)
        return std::nullopt;
    return value;
}

} // namespace base
