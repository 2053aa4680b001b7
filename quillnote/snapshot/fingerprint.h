// The fingerprint of a target area: how many entities cross it and a checksum of their data. It tells later
// whether the area was changed; colours do not count.
#pragma once

#include "quillnote/entity/mark_outline.h"

#include "host/acdb/resbuf.h"
#include "host/acgi/query/region.h"

#include <QString>

#include <cstdint>
#include <functional>
#include <span>
#include <unordered_map>
#include <vector>

class AcDbFiledData;
class QuillnoteObj3;

struct TargetFingerprint {
    std::vector<AcDbObjectId> ids; ///< What crosses the target, in the order of the selection.
    QString note;                  ///< Empty.
    QString checksum;              ///< "SUM=12345"; empty when nothing crosses the target.

    bool isFound() const { return !ids.empty(); }
};

/// Of a target (world), along its own sides however it is seen, in the current space of the current drawing.
/// Review marks never count, nor does what cannot be seen.
TargetFingerprint computeTargetFingerprint(const MarkCorners &target);

/// Marks and what else the module adds to a drawing to speak about it.
bool isReviewMark(AcDbObjectId entity);

/// The target of a mark: the window that its fingerprint is of, in the mark's own space.
acgi::Window targetWindow(const QuillnoteObj3 &mark);

/// What crosses the window and is no review mark, the newest first, in any space of a drawing, current or
/// not.
std::vector<AcDbObjectId> targetEntities(AcDbDatabase &database, AcDbObjectId space,
                                         const acgi::Window &window);

/// Takes many fingerprints of a drawing that does not change meanwhile. An entity that several targets share
/// is read once.
class FingerprintTaker
{
public:
    explicit FingerprintTaker(AcDbDatabase &database) : m_database(database) {}
    /// Of targetEntities().
    TargetFingerprint take(AcDbObjectId space, const acgi::Window &window);
    /// Hears of a target, by its place among those asked about; false ends the taking.
    using Use = std::function<bool(std::size_t target, TargetFingerprint)>;
    /// take() of each, in an order of its own. A second thread reads the entities. False when `use` ended it.
    bool takeEach(AcDbObjectId space, std::span<const acgi::Window> targets, const Use &use);

private:
    struct Batch;

    Batch begin(std::size_t first, std::span<const acgi::Window> targets, const AcDbFiledData &filed);
    std::vector<std::uint32_t> sumUp(const Batch &batch, const AcDbFiledData &filed);

    AcDbDatabase &m_database;
    /// Of the data of each entity that is as in the file, wrapped. Only sumUp() looks.
    std::unordered_map<AcDbObjectId, std::uint32_t> m_sums;
};

/// The text of an entity's data list that the checksum counts: "(code,value)" of each group of 0 to 99 but
/// the colour.
QString fingerprintText(const ResbufList &data);
/// Code units added up, in 32 bits with sign.
std::int32_t fingerprintSum(const QString &text, std::int32_t sum = 0);
