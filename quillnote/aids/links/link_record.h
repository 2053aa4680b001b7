// QuillLinkObj: a hot link, one of two areas that a double click jumps between. Each of the two is an entity
// of its own and names the other, its partner, in the same drawing or in another one.
//
// Fields are public, as those of the mark; the filed ones stand in the table of link_fields.h.
#pragma once

#include "quillnote/entity/mark_outline.h"

#include "host/acdb/dbentity.h"

#include <memory>

inline constexpr char kLinkDxfName[] = "QUILLLINK";
inline constexpr QStringView kLinkClassName = u"QuillLinkObj";

class QuillLinkObj : public AcDbEntity
{
public:
    static constexpr std::uint16_t kFormatVersion = 1;
    enum Role : std::uint16_t { source = 1, target = 2 };
    enum Kind : std::int16_t { sameDrawing = 0, otherDrawing = 3 };

    /// A new link in the second colour of new marks.
    QuillLinkObj();
    /// The same, without asking settings, for filers that are about to set every field.
    static std::unique_ptr<QuillLinkObj> forReading();

    /// The registered class; null while it is not registered.
    static AcRxClass *desc();
    AcRxClass *isA() const override;

    // Filed fields ----------------------------------------------------------------------------------
    std::uint16_t formatVersion = kFormatVersion; ///< Always the current one in memory.
    bool erasable = true;                         ///< False refuses every erase.
    std::int16_t displayMode = 1;                 ///< -1 hidden; shown otherwise.
    std::uint16_t linkNumber = 1;
    std::uint16_t reserved1 = 0;
    std::uint16_t linkRole = source; ///< The source was made first; it draws what joins the two.
    AcGeVector3d normal = AcGeVector3d::kZAxis;
    AcGeVector3d xDirection = AcGeVector3d::kXAxis; ///< To the right in the view that it was made in.
    /// 1 and 2 opposite, 4 from 1 along the view's x axis, 3 from 1 across it; the outline runs 1, 4, 2, 3.
    AcGePoint3d corner1;
    AcGePoint3d corner2{1.0, 1.0, 0.0};
    AcGePoint3d corner3;
    AcGePoint3d corner4;
    std::int16_t reserved2 = 0;
    std::uint16_t colorIndex = 5;
    std::int16_t linkKind = sameDrawing;
    AcDbObjectId partnerId;   ///< Null when the partner stands in another drawing.
    AcDbHandle partnerHandle; ///< In the partner's drawing.
    QString partnerPath;      ///< Of the partner's drawing, as it was when the link was made.
    QString partnerName;      ///< The same, to be shown.
    QString reserved3;

    MarkCorners corners() const { return {corner1, corner2, corner3, corner4}; }
    /// Needs write access.
    void setCorners(const MarkCorners &corners);
    AcGePoint3d centre() const { return corner1 + (corner2 - corner1) * 0.5; }

    // Entity ----------------------------------------------------------------------------------------
    /// eInvalidInput when the link is not erasable.
    Acad::ErrorStatus subErase(bool erasing) override;
    bool subIsHidden() const override { return displayMode == -1; }
    QString subHint() const override; ///< Where it leads.
    void subList() const override;
    Acad::ErrorStatus dwgInFields(AcDbDwgFiler *filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler *filer) const override;
    /// The groups hold the version only; everything else stands in the carrier beside the entity.
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler *filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler *filer) const override;
    /// True: links look the same in every view.
    bool subWorldDraw(AcGiWorldDraw *context) const override;
    /// Without the chains.
    void saveAs(AcGiWorldDraw *context) const override;
    Acad::ErrorStatus subGetGeomExtents(AcDbExtents &extents) const override;
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d &matrix) override;
    std::vector<AcGePoint3d> subGetGripPoints() const override;
    Acad::ErrorStatus subMoveGripPointsAt(std::span<const int> grips, const AcGeVector3d &offset) override;

private:
    struct PlainDefaults {
    };
    explicit QuillLinkObj(PlainDefaults);
};

/// Makes links known to the host, and unknown again; as registerMarkClass().
void registerLinkClass();
void unregisterLinkClass();
