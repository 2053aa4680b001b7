// Then and now side by side, with what differs coloured.
#pragma once

#include <QColor>
#include <QImage>

class AcDbDatabase;
class QuillnoteObj3;
struct ComparedPlace;

struct TwoPictures {
    QImage then;
    QImage now;
    /// Another look of now that would do as well; null when there is none.
    QImage nowOtherwise;
    QColor background;
    /// A line counts as the same when it is no further away than so many pixels.
    int tolerance = 0;
};

/// The picture that the mark keeps, and its place as it is now. Whether the kept picture shows marks, nobody
/// knows: where now is like it with marks or without, nothing differs. No images for a mark without a
/// readable picture.
TwoPictures storedAndNow(AcDbDatabase &database, const QuillnoteObj3 &mark);

/// A place in two drawings, without marks.
TwoPictures oldAndNew(AcDbDatabase &oldDrawing, AcDbDatabase &newDrawing, const ComparedPlace &place,
                      const QuillnoteObj3 &mark);

/// Left then, right now. What stays the same is pale; red is what is no longer there, green what is new. No
/// image when there is nothing to compare.
QImage sideBySide(const TwoPictures &pictures);
