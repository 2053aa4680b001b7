// The 160 bytes that mark data files begin with, whatever records follow: what kind of file it is, and which
// change of which drawing it tells when it travels between people. docs/formats/mark-data-file.md describes
// the bytes. The courier knows files by their headers alone.
#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

enum class MarkDataKind { marks3, marks4, marks7, erased };

/// A file counts to 65535, but readers take no more than this.
inline constexpr std::size_t kMostDataRecords = 9999;
inline constexpr std::size_t kMarkDataHeaderSize = 160;

inline constexpr qsizetype kIdentitySize = 16; ///< Of a drawing, and of a mark.
inline constexpr qsizetype kDigestSize = 12;   ///< Of what a mark says.

/// What a file that travels says besides its records. Zeros stand for what is not known.
struct SharedChange {
    QByteArray drawing;       ///< kIdentitySize bytes; empty in a file that does not travel.
    QByteArray mark;          ///< kIdentitySize bytes, made of its GUID; empty in a file of several.
    QByteArray before, after; ///< kDigestSize bytes: what the mark said; all ones when it was erased.
    /// In a file that a program sends: the file's place among its own. In one that it is to import: the last
    /// of its own files that whoever made this one had seen.
    std::uint64_t serial = 0;
    bool asCopies = false; ///< Its marks are to stand beside those that took their place.

    friend bool operator==(const SharedChange &, const SharedChange &) = default;
};

struct MarkDataHeader {
    MarkDataKind kind = MarkDataKind::marks7;
    QString fingerprint;
    std::uint16_t markCount = 0; ///< As the file says, whatever it says.
    std::uint16_t tickCount = 0;
    bool checksumHolds = false;
    std::optional<SharedChange> shared;
};

/// None for bytes that are no mark data file.
std::optional<MarkDataHeader> readMarkDataHeader(QByteArrayView file);

/// Makes a file of its records: puts the header before them.
QByteArray withMarkDataHeader(const MarkDataHeader &header, QByteArrayView records);
/// One file with the records of several of the same kind.
QByteArray joinMarkData(MarkDataHeader header, const std::vector<QByteArray> &files);

/// Sixteen bytes that stand for a text: the same everywhere.
QByteArray identityOf(const QString &text);
/// What marks "say" that are not known, or erased.
QByteArray unknownDigest();
QByteArray erasedDigest();
