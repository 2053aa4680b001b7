#include "host/formats/dwg/dwgreedsolomon.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

namespace dwg
{
namespace
{

constexpr unsigned kOrder = 255; ///< Of the multiplicative group.

/// The field of 256 elements by its logarithms.
class Field
{
public:
    explicit Field(unsigned polynomial)
    {
        unsigned value = 1;
        for (unsigned i = 0; i < kOrder; ++i) {
            m_power[i] = m_power[i + kOrder] = std::uint8_t(value);
            m_logarithm[value] = std::uint8_t(i);
            value <<= 1;
            if (value & 0x100)
                value ^= polynomial;
        }
    }
    std::uint8_t power(unsigned exponent) const { return m_power[exponent % kOrder]; }
    std::uint8_t multiply(std::uint8_t a, std::uint8_t b) const
    {
        return a && b ? m_power[m_logarithm[a] + m_logarithm[b]] : 0;
    }
    std::uint8_t divide(std::uint8_t a, std::uint8_t b) const
    {
        return a && b ? m_power[m_logarithm[a] + kOrder - m_logarithm[b]] : 0;
    }

private:
    std::array<std::uint8_t, 2 * kOrder> m_power{};
    std::array<std::uint8_t, 256> m_logarithm{};
};

using Word = std::array<std::uint8_t, kCodeWord>; ///< By power of x: parity first, then data.
using Polynomial = std::vector<std::uint8_t>;     ///< Lowest power first.

std::uint8_t valueAt(const Field &field, const Polynomial &polynomial, std::uint8_t x)
{
    std::uint8_t value = 0;
    for (auto coefficient = polynomial.rbegin(); coefficient != polynomial.rend(); ++coefficient)
        value = std::uint8_t(field.multiply(value, x) ^ *coefficient);
    return value;
}

Polynomial syndromes(const Field &field, const Word &word, std::size_t parity)
{
    Polynomial found(parity);
    for (std::size_t i = 0; i < parity; ++i) {
        const std::uint8_t root = field.power(unsigned(i + 1));
        std::uint8_t value = 0;
        for (auto byte = word.rbegin(); byte != word.rend(); ++byte)
            value = std::uint8_t(field.multiply(value, root) ^ *byte);
        found[i] = value;
    }
    return found;
}

/// Berlekamp and Massey: the polynomial whose roots are the inverses of the damaged places.
Polynomial errorLocator(const Field &field, const Polynomial &syndromes)
{
    Polynomial locator{1};
    Polynomial before{1};
    std::size_t length = 0;
    std::size_t shift = 1;
    std::uint8_t lastDiscrepancy = 1;
    for (std::size_t n = 0; n < syndromes.size(); ++n) {
        std::uint8_t discrepancy = syndromes[n];
        for (std::size_t i = 1; i <= length && i < locator.size(); ++i)
            discrepancy = std::uint8_t(discrepancy ^ field.multiply(locator[i], syndromes[n - i]));
        if (discrepancy == 0) {
            ++shift;
            continue;
        }
        const Polynomial kept = locator;
        const std::uint8_t factor = field.divide(discrepancy, lastDiscrepancy);
        locator.resize(std::max(locator.size(), before.size() + shift));
        for (std::size_t i = 0; i < before.size(); ++i)
            locator[i + shift] = std::uint8_t(locator[i + shift] ^ field.multiply(factor, before[i]));
        if (2 * length > n) {
            ++shift;
            continue;
        }
        length = n + 1 - length;
        before = kept;
        lastDiscrepancy = discrepancy;
        shift = 1;
    }
    locator.resize(length + 1);
    return locator;
}

/// Forney: the value of each error, at the places where the locator is zero. False when they do not add up.
bool mend(const Field &field, Word &word, const Polynomial &syndromes)
{
    const Polynomial locator = errorLocator(field, syndromes);
    const std::size_t errors = locator.size() - 1;
    if (errors == 0 || 2 * errors > syndromes.size())
        return false;
    Polynomial evaluator(syndromes.size());
    for (std::size_t i = 0; i < evaluator.size(); ++i) {
        for (std::size_t j = 0; j <= i && j < locator.size(); ++j)
            evaluator[i] = std::uint8_t(evaluator[i] ^ field.multiply(locator[j], syndromes[i - j]));
    }
    Polynomial derivative(errors);
    for (std::size_t i = 1; i <= errors; i += 2)
        derivative[i - 1] = locator[i];
    std::size_t mended = 0;
    for (unsigned place = 0; place < kCodeWord; ++place) {
        const std::uint8_t inverse = field.power(kOrder - place);
        if (valueAt(field, locator, inverse) != 0)
            continue;
        const std::uint8_t slope = valueAt(field, derivative, inverse);
        if (slope == 0)
            return false;
        word[place] = std::uint8_t(word[place] ^ field.divide(valueAt(field, evaluator, inverse), slope));
        ++mended;
    }
    return mended == errors;
}

/// The polynomial whose roots are the first powers, without its highest coefficient, which is one.
Polynomial generatorOf(const Field &field, std::size_t parity)
{
    Polynomial generator{1};
    for (std::size_t root = 1; root <= parity; ++root) {
        generator.insert(generator.begin(), 0);
        for (std::size_t i = 0; i + 1 < generator.size(); ++i)
            generator[i] =
                std::uint8_t(generator[i] ^ field.multiply(generator[i + 1], field.power(unsigned(root))));
    }
    generator.pop_back();
    return generator;
}

/// What is left of the data, the lowest power first, after division by the generator.
Polynomial parityOf(const Field &field, const Polynomial &generator, std::string_view data)
{
    Polynomial rest(generator.size());
    for (auto byte = data.rbegin(); byte != data.rend(); ++byte) {
        const std::uint8_t factor = std::uint8_t(std::uint8_t(*byte) ^ rest.back());
        for (std::size_t i = rest.size() - 1; i > 0; --i)
            rest[i] = std::uint8_t(rest[i - 1] ^ field.multiply(factor, generator[i]));
        rest[0] = field.multiply(factor, generator[0]);
    }
    return rest;
}

} // namespace

QByteArray encodeReedSolomon(std::string_view data, std::size_t words, const ReedSolomonCode &code,
                             WordOrder order)
{
    const Field field(code.fieldPolynomial);
    const Polynomial generator = generatorOf(field, kCodeWord - code.data);
    const std::size_t size = words * code.data;
    QByteArray plain(data.data(), qsizetype(std::min(data.size(), size)));
    plain.resize(qsizetype(size), '\0');
    const std::size_t coded = words * kCodeWord;
    QByteArray stored(qsizetype(coded), Qt::Uninitialized);
    char *const out = stored.data();
    for (std::size_t w = 0; w < words; ++w) {
        const std::string_view word(plain.constData() + w * code.data, code.data);
        const Polynomial parity = parityOf(field, generator, word);
        const auto place = [&](std::size_t i) {
            if (order == WordOrder::interleaved)
                return i * words + w;
            return i < code.data ? w * code.data + i : words * code.data + w * parity.size() + i - code.data;
        };
        for (std::size_t i = 0; i < kCodeWord; ++i)
            out[place(i)] = i < code.data ? word[i] : char(parity[i - code.data]);
    }
    return stored;
}

QByteArray dataOfWords(std::string_view stored, std::size_t words, const ReedSolomonCode &code)
{
    QByteArray data(qsizetype(words * code.data), Qt::Uninitialized);
    char *const bytes = data.data();
    for (std::size_t w = 0; w < words; ++w) {
        for (std::size_t i = 0; i < code.data; ++i)
            bytes[w * code.data + i] = stored[i * words + w];
    }
    return data;
}

Corrected decodeReedSolomon(std::string_view stored, std::size_t words, const ReedSolomonCode &code)
{
    const Field field(code.fieldPolynomial);
    const std::size_t parity = kCodeWord - code.data;
    Corrected result{QByteArray(qsizetype(words * code.data), '\0'), true};
    for (std::size_t w = 0; w < words; ++w) {
        Word word{};
        for (std::size_t i = 0; i < kCodeWord; ++i) {
            const std::size_t place = i < code.data ? parity + i : i - code.data;
            word[place] = std::uint8_t(stored[i * words + w]);
        }
        const Polynomial found = syndromes(field, word, parity);
        if (std::ranges::any_of(found, [](std::uint8_t value) { return value != 0; })) {
            result.clean = false;
            Word mended = word;
            if (mend(field, mended, found))
                word = mended;
        }
        std::copy(word.begin() + std::ptrdiff_t(parity), word.end(),
                  result.bytes.begin() + qsizetype(w * code.data));
    }
    return result;
}

} // namespace dwg
