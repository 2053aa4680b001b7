// One object of a DWG file: its three streams of data, texts and handles, and what all objects have.
#pragma once

#include "host/acdb/resbuf.h"
#include "host/base/text_codec.h"
#include "host/formats/dwg/dwgbits.h"

#include <QString>

#include <optional>
#include <vector>

namespace dwg
{

/// Types with a number of their own; those of classes begin at kFirstClass.
enum Type : int {
    kText = 1,
    kAttrib = 2,
    kAttdef = 3,
    kBlockBegin = 4,
    kBlockEnd = 5,
    kSeqEnd = 6,
    kInsert = 7,
    kMinsert = 8,
    kVertex2d = 0x0A,
    kVertexPface = 0x0D,
    kVertexFace = 0x0E,
    kPolyline2d = 0x0F,
    kPolyline3d = 0x10,
    kOrdinateDimension = 0x14, ///< The first of them.
    kPolylinePface = 0x1D,
    kPolylineMesh = 0x1E,
    kDictionary = 0x2A,
    kBlockControl = 0x30,
    kBlockHeader = 0x31,
    kMlineStyle = 0x49,
    kLwPolyline = 0x4D,
    kHatch = 0x4E,
    kXrecord = 0x4F,
    kProxyEntity = 498,
    kProxyObject = 499,
    kFirstClass = 500,
};

/// What reading an object needs to know of its file.
struct FileFacts {
    DrawingVersion version = DrawingVersion::r2000;
    base::TextCodec codec;

    bool since(DrawingVersion first) const { return version >= first; }
    bool hasTextStream() const { return version >= DrawingVersion::r2007; }
};

/// A text in a code page, with what that lacks in escapes.
QString decodeText(std::string_view bytes, const base::TextCodec &codec);

/// Lineweights are stored as their place among the 24 that there are; 29 by layer, 30 by block, 31 default.
/// In hundredths of a millimetre, -1, -2, -3.
int lineweightOf(int index);
/// 31 for a weight that is none of them.
int lineweightIndex(int weight);

/// A colour of an object's own data (CMC).
struct Color {
    int index = 256;
    std::optional<std::uint32_t> rgb;
    QString name, book;

    friend bool operator==(const Color &, const Color &) = default;
};

/// In which form a record stores things that are shown in another one. What has not changed is stored again
/// as it was, in the order in which it was read.
template <class Shown, class Stored>
class KeptForms
{
public:
    void add(Shown shown, Stored stored) { m_forms.emplace_back(std::move(shown), std::move(stored)); }
    /// The next form of what shows as `shown`; null when the record has none.
    const Stored *find(const Shown &shown)
    {
        for (std::size_t i = 0; i < m_forms.size(); ++i) {
            const std::size_t at = (m_next + i) % m_forms.size();
            if (m_forms[at].first == shown) {
                m_next = at + 1;
                return &m_forms[at].second;
            }
        }
        return nullptr;
    }
    bool isEmpty() const { return m_forms.empty(); }

private:
    std::vector<std::pair<Shown, Stored>> m_forms;
    std::size_t m_next = 0;
};

/// What groups do not show of a record, and encoding the object again needs.
struct Kept {
    struct StoredColor {
        int index = 0;
        std::int32_t value = 0;
        unsigned names = 0; ///< 1 a name follows, 2 a colour book.
    };
    KeptForms<QString, QByteArray> texts; ///< With their NUL, where they have one.
    KeptForms<QString, std::uint64_t> names;
    KeptForms<double, double> angles; ///< Degrees and radians.
    KeptForms<Color, StoredColor> colors;
    std::vector<std::pair<int, resbuf::Value>> hidden; ///< By a number that the kind gives.
    std::optional<std::uint16_t> extendedPage;         ///< Of the last text in extended data.
    ResbufList withheld;                               ///< Groups that say nothing, and so are not shown.
};

/// What all objects have in front of their own data, and what of the handle stream belongs to it.
struct Common {
    // Places in the object's data; raw.
    std::size_t extendedBegin = 0; ///< In bits.
    std::size_t graphicsBegin = 0; ///< In bits.
    std::size_t graphicsSize = 0;  ///< In bytes; 0 for none.

    int entityMode = 0; ///< 0 the owner is stored, 1 paper space, 2 model space.
    bool noLinks = true;
    bool hasBinaryData = false; ///< Kept in the file's data storage.

    int color = 256;
    unsigned colorWord = 256; ///< As stored: the index below flags.
    std::optional<std::uint32_t> trueColor;
    std::optional<std::uint32_t> transparency;
    double linetypeScale = 1.0;
    int linetypeFlags = 0; ///< 0 by layer, 1 by block, 2 continuous, 3 by handle.
    int plotStyleFlags = 0;
    int materialFlags = 0;
    int shadowFlags = 0;
    int visibility = 0;  ///< 1 invisible.
    int lineweight = 29; ///< Index: 29 by layer, 30 by block, 31 default.

    HandleRef owner;
    std::vector<std::uint64_t> reactors;
    std::uint64_t dictionary = 0;
    std::uint64_t previous = 0;
    std::uint64_t next = 0;
    std::uint64_t bookColor = 0;
    std::uint64_t layer = 0;
    std::uint64_t linetype = 0;
    std::uint64_t material = 0;
    std::uint64_t plotStyle = 0;
    std::uint64_t visualStyles[3] = {};
};

/// Reads one record. The streams advance as their parts are read; when any of them fails the object is
/// damaged from there on.
class ObjectReader
{
public:
    /// `record` begins with the object's size. good() is false for what is no object.
    ObjectReader(const FileFacts &facts, std::string_view record);

    bool good() const { return m_good && !data.failed() && !handles.failed() && !texts.failed(); }
    const FileFacts &facts() const { return m_facts; }
    DrawingVersion version() const { return m_facts.version; }
    int type() const { return m_type; }
    std::uint64_t handle() const { return m_handle; }
    /// Of the record, with its size and its checksum; 0 for none.
    std::size_t size() const { return m_size; }
    bool checksumFits() const;

    /// Reads what all have; leaves the streams where the object's own parts begin.
    Common readCommon(bool isEntity);

    QString text(); ///< TV or TU
    HandleRef reference() { return handles.handle(m_handle); }
    Color color(); ///< CMC

    /// The data from a place on, whatever became of `data` in the meantime.
    Bits dataFrom(std::size_t bit) const;

    Bits data;
    Bits texts; ///< Those of AC1021 and later.
    Bits handles;
    /// Where the data end and the texts or handles begin, in bits.
    std::size_t dataEnd() const { return m_dataEnd; }
    std::size_t textsBegin() const { return m_textsBegin; }
    std::size_t textsEnd() const { return m_textsEnd; }
    std::size_t handlesBegin() const { return m_handlesBegin; }
    std::size_t handlesEnd() const { return m_handlesEnd; }

    Kept *kept = nullptr; ///< Gets what the record will be encoded from, when there is one.

private:
    void findStreams(std::size_t handlesBegin);
    void readEntityFlags(Common &common);
    void readEntityColor(Common &common);
    void readCommonHandles(Common &common, bool isEntity, std::int32_t reactors, bool hasDictionary);

    const FileFacts &m_facts;
    std::string_view m_record;
    std::string_view m_body; ///< From the type on.
    bool m_good = false;
    int m_type = 0;
    std::uint64_t m_handle = 0;
    std::size_t m_size = 0;
    std::size_t m_dataEnd = 0;
    std::size_t m_textsBegin = 0;
    std::size_t m_textsEnd = 0;
    std::size_t m_handlesBegin = 0;
    std::size_t m_handlesEnd = 0;
    bool m_hasBookColor = false;
};

} // namespace dwg
