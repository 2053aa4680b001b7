// The designer's answer to a mark: reading it, whether it may be given, storing it.
#pragma once

#include "quillnote/review/review_rules.h"

#include "host/acap/docman.h"

/// A mark as the palette shows it.
struct ReviewedMark {
    MarkSummary summary; ///< Of the moment at which it was shown.
    ShownFeedback feedback;
    QString passwordHash;

    int statusControl() const { return ::statusControl(summary.feedbackType); }
};
/// No value for what cannot be read or is no mark.
std::optional<ReviewedMark> readReviewedMark(AcDbObjectId id);

/// What an answer changes; nothing where the designer left things as they were.
struct AnswerChange {
    std::optional<QString> feedback;
    std::optional<std::int16_t> status;
    bool isEmpty() const { return !feedback && !status; }
    friend bool operator==(const AnswerChange &, const AnswerChange &) = default;
};
/// From what stands in the field and the radio button that is checked.
AnswerChange changeOf(const ReviewedMark &shown, const QString &typed, int checkedStatus);

/// Why the mark cannot be answered: somebody else has the drawing, its layer is locked. Empty when it can.
QString whyNotAnswered(const AcApDocument &document, AcDbObjectId mark);
/// Under a lock of the document, as one step of undo. Prints why nothing was stored; false then.
bool storeAnswer(AcApDocument &document, AcDbObjectId mark, const AnswerChange &change);
