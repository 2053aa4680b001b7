// Packing a DWG file again: the file that was opened, with other objects and some other sections.
//
// Versions keep their way of packing. Sections that are not given stay as they were, except for what follows
// from the objects: places of objects, copies of the hand seed, counts, and the section that says which
// program saved the file.
#pragma once

#include "host/formats/dwg/dwgcontainer.h"

namespace dwg
{

struct PackedObject {
    std::uint64_t handle = 0;
    std::string_view record; ///< From its size to its checksum.
};

/// All objects as they stand in the file. Damaged ones are left out and told as a loss.
std::vector<PackedObject> storedObjects(Container &container);

struct FileContents {
    const Container &original;
    std::map<QByteArray, QByteArray> sections; ///< Those that changed, whole.
    std::vector<PackedObject> objects;         ///< All of them, by ascending handle.
    std::uint64_t handleSeed = 0;              ///< What the section of variables says.
};

/// Why a file of this kind cannot be packed again; empty when it can.
QString whyNotPacked(const Container &original);
/// The reason, and how the drawing is kept nevertheless.
QString withWayOut(const QString &reason);

/// The whole file. The error is a sentence without the file's name.
base::Result<QByteArray, QString> packFile(const FileContents &contents);

// Parts of packing --------------------------------------------------------------------------------

/// Where the objects of a section begin, and what stands there.
inline constexpr std::uint32_t kObjectsMark = 0x0DCA;

struct PlacedObjects {
    QByteArray bytes; ///< The mark and the records.
    QByteArray map;   ///< AcDb:Handles
};
/// `begin` is the place of the mark in what the map counts in.
PlacedObjects placeObjects(const std::vector<PackedObject> &objects, std::uint64_t begin);

/// The sections of a file in the making: changed ones, else those of the original.
class PackedSections
{
public:
    explicit PackedSections(const FileContents &contents);
    std::string_view find(const QByteArray &name) const;
    void set(const QByteArray &name, QByteArray bytes) { m_changed[name] = std::move(bytes); }

private:
    void settleAuxiliaryHeader(std::uint64_t seed);
    void settleObjectCount(std::size_t objects);
    void settleProgram();

    const Container &m_original;
    std::map<QByteArray, QByteArray> m_changed;
};

/// The preview holds places in the file.
QByteArray movedPreview(std::string_view preview, std::uint64_t from, std::uint64_t to);

/// The sections in the order of the file, which is not that of its map.
std::vector<std::size_t> fileOrder(const Container &original);

/// Sections that are found without the maps; places that the original left out stay so. `places` go with
/// the original's forms, 0 for those without a page.
void putPlaces(QByteArray &file, const Container &original, const std::vector<std::size_t> &places);

// One for each way of packing; called by packFile().
QByteArray packPlain(const FileContents &contents, PackedSections &sections);
QByteArray packPaged(const FileContents &contents, PackedSections &sections);
QByteArray packPaged21(const FileContents &contents, PackedSections &sections);

inline std::size_t roundedUp(std::size_t size, std::size_t unit)
{
    return (size + unit - 1) / unit * unit;
}

} // namespace dwg
