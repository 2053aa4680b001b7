// QuillnoteObj3: the review mark, a custom entity that lives in the drawing. Everything the program
// knows of a review stands in these records; there is no other database.
//
// Fields are public: code that has the mark open for read reads them, code that has it open for write
// changes them. The filed fields stand in the table of mark_fields.h, which files, dumps and compares.
#pragma once

#include "quillnote/entity/field_table.h"
#include "quillnote/entity/mark_styles.h"

#include "host/acdb/dbentity.h"

#include <memory>
#include <optional>

struct MarkLayout;

class QuillnoteObj3 : public AcDbEntity
{
public:
    static constexpr std::uint16_t kFormatVersion = 7;
    static constexpr std::size_t kSlots = fields::kSlots; ///< Vertices and leaders.
    static constexpr int kPasswordHashLength = 32;

    /// A new mark: first colours from the settings, created now.
    QuillnoteObj3();
    /// The same, without asking settings and clock, for filers that are about to set every field.
    static std::unique_ptr<QuillnoteObj3> forReading();

    /// The registered class; null while it is not registered.
    static AcRxClass *desc();
    AcRxClass *isA() const override;

    // Filed fields ----------------------------------------------------------------------------------
    std::uint16_t formatVersion = kFormatVersion; ///< Always the current one in memory.
    bool erasable = true;                         ///< False refuses every erase.
    DisplayMode displayMode = DisplayMode::full;
    std::uint16_t markNumber = 1;
    std::uint16_t subNumber = 0; ///< 0 is none.
    QString suggestionContent;   ///< The reviewer's opinion.
    QString feedbackContent;     ///< The designer's answer.
    /// Two opposite corners of the target; 3 and 4 follow from them (mark_geometry.h).
    AcGePoint3d targetCorner1;
    AcGePoint3d targetCorner2{1.0, 1.0, 0.0};
    std::int16_t feedbackType = 0; ///< Handling status: mark_values.h.
    TargetStyle targetStyle = TargetStyle::thinWaves;
    std::uint16_t reservedShort = 8;
    std::uint16_t color1 = 2; ///< Colour indexes.
    std::uint16_t color2 = 5;
    AcGeVector3d normal = AcGeVector3d::kZAxis;
    AcGeVector3d xDirection = AcGeVector3d::kXAxis; ///< Of the target and the text, length 1.
    AcGePoint3d targetCorner3;
    AcGePoint3d targetCorner4;
    AcGePoint3d textBoxCorner1; ///< Of a leader mark; in the order of the target's corners.
    AcGePoint3d textBoxCorner2;
    AcGePoint3d textBoxCorner3;
    AcGePoint3d textBoxCorner4;
    FrameStyle flagStyle = FrameStyle::waveLine; ///< Of the text box.
    LeaderMode leaderMode = LeaderMode::flag;
    std::int16_t reservedShort2 = 0;
    bool cornersValid = false; ///< Corners 3 and 4 are computed.
    AcGePoint3d flagPoint;
    std::int16_t vertexCount = 0; ///< Entries of `vertices` in use.
    fields::PointArray vertices{};
    double reservedDouble = 0.0;
    QString bigCategory;
    QString smallCategory;
    std::int16_t weight = 5; ///< 1 to 10
    QString suggestionName;
    QString feedbackName;
    QString chPwMD5;           ///< At most 32 hexadecimal digits; empty: no password. Ignore letter case.
    double createTime = 0.0;   ///< Julian dates, as the system variable DATE.
    double feedbackTime = 0.0; ///< 0 is none.
    QString GUID;
    QByteArray sketchData; ///< Freehand strokes.
    double textHeight = 0.0;
    fields::PointArray leaderEnds{};
    fields::FlagArray leaderUsed{};
    std::int16_t editVersion = 1; ///< 0 to 255
    std::int16_t reservedShortA = 0;
    std::int16_t reservedShortB = 0;
    double reservedDoubleA = 0.0;
    double reservedDoubleB = 0.0;
    double reservedDoubleC = 0.0;
    AcGePoint3d reservedPointA;
    AcGePoint3d reservedPointB;
    AcGePoint3d reservedPointC;
    bool autoTextHeight = false; ///< The text height follows the target.
    bool reservedBoolA = false;
    bool reservedBoolB = false;
    std::vector<AcDbObjectId> snapEntityIds; ///< What the target held when its snapshot was taken.
    QString snapNote;
    QString snapChecksum;
    QByteArray snapImage; ///< PNG of the target.
    QByteArray fullImage; ///< PNG of the whole view.

    // The sizes are filed before the bytes they count.
    std::uint32_t sketchSize() const { return static_cast<std::uint32_t>(sketchData.size()); }
    std::uint32_t snapEntityCount() const { return static_cast<std::uint32_t>(snapEntityIds.size()); }

    /// Polygon and spline marks carry their vertices, when there are two at least.
    bool hasFiledVertices() const { return vertexCount >= 2 && hasVertices(targetStyle); }

    // Run-time members: not filed, as new in every mark that is opened. Those that a drawing pass leaves
    // behind are mutable, because drawing happens while the mark is open for read ---------------------
    mutable std::vector<AcGePoint3d>
        outlineCache;                  ///< Middles of the wave arcs of the last pass, at most 256.
    mutable double outlineChord = 1.0; ///< Chord of the last wave arc.
    mutable bool gripEditing = false;  ///< A grip is being dragged.
    mutable bool plotting = false;
    mutable AcGePoint3d textAnchor;
    mutable std::optional<AcGePoint3d> textEndPoint; ///< Set once the text was laid out.
    mutable AcDbExtents cachedExtents;               ///< Of the drawn sketch.

    // Entity ----------------------------------------------------------------------------------------
    Acad::ErrorStatus subClose() override;
    bool subIsHidden() const override;
    QStringList subTexts() const override; ///< Opinion and answer.
    QString subHint() const override;      ///< Number, reviewer, opinion, status and answer.
    /// eInvalidInput when the mark is not erasable, or its password is neither unlocked nor given.
    Acad::ErrorStatus subErase(bool erasing) override;
    Acad::ErrorStatus dwgInFields(AcDbDwgFiler *filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler *filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler *filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler *filer) const override;
    void subList() const override;
    /// True, and so all that is asked, only for proxy graphics.
    bool subWorldDraw(AcGiWorldDraw *context) const override;
    void subViewportDraw(AcGiViewportDraw *context) const override;
    void saveAs(AcGiWorldDraw *context) const override;
    Acad::ErrorStatus subGetGeomExtents(AcDbExtents &extents) const override;
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d &matrix) override;
    /// Leaves the text out until the next pass: it would hide the grips. See mark_grips.h.
    std::vector<AcGePoint3d> subGetGripPoints() const override;
    /// eInvalidInput without grips, and when a password is asked for and not given; copies do not ask.
    Acad::ErrorStatus subMoveGripPointsAt(std::span<const int> grips, const AcGeVector3d &offset) override;

private:
    /// What a drawing pass leaves in the run-time members.
    void leaveTraces(const MarkLayout &layout) const;
    /// Finds the end of the text and the extents of the sketch, once for each writing.
    void measure() const;
    mutable bool m_isMeasured = false;

    struct PlainDefaults {
    };
    explicit QuillnoteObj3(PlainDefaults);
};

/// Gives what was read from a record of a version before 7 the fields that such records did not have; the
/// text box of an old leader mark lies where its target was.
void upgradeOldMark(QuillnoteObj3 &mark);
