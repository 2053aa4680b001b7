#include "host/acdb/errorstatus.h"

#include <algorithm>
#include <iterator>

struct StatusText {
    Acad::ErrorStatus status;
    const char *text;
};

// clang-format off
static constexpr StatusText kTexts[] = {
    {Acad::eOk, "eOk"},
    {Acad::eNotImplementedYet, "eNotImplementedYet"},
    {Acad::eNotApplicable, "eNotApplicable"},
    {Acad::eInvalidInput, "eInvalidInput"},
    {Acad::eNullObjectId, "eNullObjectId"},
    {Acad::eNullObjectPointer, "eNullObjectPointer"},
    {Acad::eNullHandle, "eNullHandle"},
    {Acad::eInvalidOwnerObject, "eInvalidOwnerObject"},
    {Acad::eDuplicateKey, "eDuplicateKey"},
    {Acad::eKeyNotFound, "eKeyNotFound"},
    {Acad::eWrongObjectType, "eWrongObjectType"},
    {Acad::eNotThatKindOfClass, "eNotThatKindOfClass"},
    {Acad::eWrongDatabase, "eWrongDatabase"},
    {Acad::eAlreadyInDb, "eAlreadyInDb"},
    {Acad::eNoDatabase, "eNoDatabase"},
    {Acad::eInvalidIndex, "eInvalidIndex"},
    {Acad::eWasErased, "eWasErased"},
    {Acad::ePermanentlyErased, "ePermanentlyErased"},
    {Acad::eNotOpenForRead, "eNotOpenForRead"},
    {Acad::eNotOpenForWrite, "eNotOpenForWrite"},
    {Acad::eWasOpenForRead, "eWasOpenForRead"},
    {Acad::eWasOpenForWrite, "eWasOpenForWrite"},
    {Acad::eWasOpenForNotify, "eWasOpenForNotify"},
    {Acad::eWasOpenForUndo, "eWasOpenForUndo"},
    {Acad::eAtMaxReaders, "eAtMaxReaders"},
    {Acad::eIsWriteProtected, "eIsWriteProtected"},
    {Acad::eOnLockedLayer, "eOnLockedLayer"},
    {Acad::eNotAllowedForThisProxy, "eNotAllowedForThisProxy"},
    {Acad::eEndOfFile, "eEndOfFile"},
    {Acad::eFilerError, "eFilerError"},
    {Acad::eBadDxfSequence, "eBadDxfSequence"},
    {Acad::eDwgObjectImproperlyRead, "eDwgObjectImproperlyRead"},
    {Acad::eOutOfRange, "eOutOfRange"},
    {Acad::eInvalidDxfCode, "eInvalidDxfCode"},
    {Acad::eInvalidResBuf, "eInvalidResBuf"},
    {Acad::eDegenerateGeometry, "eDegenerateGeometry"},
    {Acad::eInvalidExtents, "eInvalidExtents"},
    {Acad::eFileNotFound, "eFileNotFound"},
    {Acad::eFileAccessErr, "eFileAccessErr"},
    {Acad::eFileSystemErr, "eFileSystemErr"},
    {Acad::eNoDocument, "eNoDocument"},
    {Acad::eLockViolation, "eLockViolation"},
    {Acad::eUserBreak, "eUserBreak"},
    {Acad::eMakeMeProxy, "eMakeMeProxy"},
};
// clang-format on

QString acadErrorStatusText(Acad::ErrorStatus status)
{
    const auto *const found = std::ranges::find(kTexts, status, &StatusText::status);
    return found == std::end(kTexts) ? QString::number(int(status)) : QString::fromLatin1(found->text);
}
