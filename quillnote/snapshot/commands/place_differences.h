// The places of marks in two drawings: what is there in one and not in the other.
#pragma once

#include "quillnote/snapshot/commands/drawing_content.h"
#include "quillnote/snapshot/fingerprint.h"

#include <vector>

struct PlaceDifference {
    std::size_t removed = 0;
    std::size_t added = 0;
    std::size_t changed = 0; ///< The same handle, another content.

    bool any() const { return removed + added + changed > 0; }
};

/// A mark, and the space in which its place lies in each of the two drawings; null where a drawing has no
/// layout of that name.
struct ComparedPlace {
    AcDbObjectId mark;
    AcDbObjectId oldSpace;
    AcDbObjectId newSpace;
    bool isOfOld = false; ///< The mark is in the old drawing only.
};

/// The marks of the new drawing, and those of the old one whose GUID none of them has.
std::vector<ComparedPlace> comparedPlaces(AcDbDatabase &oldDrawing, AcDbDatabase &newDrawing);

class PlaceComparer
{
public:
    PlaceComparer(AcDbDatabase &oldDrawing, AcDbDatabase &newDrawing);
    /// What can be seen in the place and is no mark.
    PlaceDifference compare(const ComparedPlace &place);

private:
    struct Side {
        explicit Side(AcDbDatabase &drawing) : database(drawing) {}
        std::vector<AcDbObjectId> at(AcDbObjectId space, const acgi::Window &window);
        AcDbDatabase &database;
        DrawingContent content;
    };
    Side m_old;
    Side m_new;
};
