// The Reed-Solomon codes of AC1021: words of 255 bytes whose parity finds and mends damaged bytes.
#pragma once

#include <QByteArray>

#include <string_view>

namespace dwg
{

inline constexpr std::size_t kCodeWord = 255;

struct ReedSolomonCode {
    std::size_t data; ///< Bytes of data in a word; half of the others can be mended.
    unsigned fieldPolynomial;
};
inline constexpr ReedSolomonCode kSystemPages{239, 0x169};
inline constexpr ReedSolomonCode kDataPages{251, 0x11D};

struct Corrected {
    QByteArray bytes;   ///< The data of all words, one behind the other.
    bool clean = false; ///< Every word was as it was written.
};

/// Takes interleaved words apart without a look at the parity.
QByteArray dataOfWords(std::string_view stored, std::size_t words, const ReedSolomonCode &code);

/// Takes interleaved words apart and mends them. Words with more damage than the code can mend stay as they
/// are. `stored` holds words * 255 bytes.
Corrected decodeReedSolomon(std::string_view stored, std::size_t words, const ReedSolomonCode &code);

/// Code words of the data, which is filled up with zeros to `words` times what a word holds: interleaved, or
/// the data of all words and then their parity.
enum class WordOrder { interleaved, parityBehind };
QByteArray encodeReedSolomon(std::string_view data, std::size_t words, const ReedSolomonCode &code,
                             WordOrder order);

} // namespace dwg
