#include "quillnote/review/answer.h"

#include "quillnote/entity/mark_record.h"

#include "host/acdb/dbundo.h"
#include "host/aced/edinput.h"

std::optional<ReviewedMark> readReviewedMark(AcDbObjectId id)
{
    const AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForRead);
    if (!mark)
        return {};
    ReviewedMark shown;
    shown.summary = summaryOf(*mark);
    shown.feedback = ShownFeedback(mark->feedbackName, mark->feedbackContent);
    shown.passwordHash = mark->chPwMD5;
    return shown;
}

AnswerChange changeOf(const ReviewedMark &shown, const QString &typed, int checkedStatus)
{
    AnswerChange change;
    // What a field shows may differ from what is stored (line ends); only what a person changed is written.
    if (typed != shown.feedback.text)
        change.feedback = shown.feedback.stored(typed);
    if (change.feedback == shown.summary.feedback)
        change.feedback.reset();
    if (checkedStatus != shown.statusControl())
        change.status = statusOf(checkedStatus);
    return change;
}

QString whyNotAnswered(const AcApDocument &document, AcDbObjectId mark)
{
    if (document.isReadOnly())
        return QStringLiteral("%1 正在编辑此图，这里只能查看，不能回复。").arg(document.lockHolder().text());
    const AcDbObjectPointer<QuillnoteObj3> open(mark, AcDb::kForRead);
    if (!open)
        return QStringLiteral("该评图标签无法读取。");
    if (mark.database()->mayChange(*open) == Acad::eOnLockedLayer)
        return QStringLiteral("图层“%1”已锁定，不能回复。").arg(open->layer());
    return {};
}

static Acad::ErrorStatus write(AcDbObjectId id, const AnswerChange &change)
{
    AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForWrite);
    if (!mark)
        return mark.openStatus();
    if (change.feedback)
        mark->feedbackContent = *change.feedback;
    if (change.status)
        mark->feedbackType = *change.status;
    return Acad::eOk;
}

bool storeAnswer(AcApDocument &document, AcDbObjectId mark, const AnswerChange &change)
{
    const AcAxDocLock lock(&document);
    Acad::ErrorStatus status = lock.lockStatus();
    if (status == Acad::eOk) {
        const AcDbUndoGroup step(*document.database(), QStringLiteral("反馈保存"));
        status = write(mark, change);
    }
    if (status != Acad::eOk)
        acedRefuse(QStringLiteral("回复没有保存：%1").arg(acadErrorStatusText(status)));
    return status == Acad::eOk;
}
