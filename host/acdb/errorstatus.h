// Status codes of database operations, with the numbers that filed messages print.
#pragma once

#include <QString>

namespace Acad
{
enum ErrorStatus : int {
    eOk = 0,
    eNotImplementedYet = 1,
    eNotApplicable = 2,
    eInvalidInput = 3,
    eNullObjectId = 20,
    eNullObjectPointer = 21,
    eNullHandle = 22,
    eInvalidOwnerObject = 23,
    eDuplicateKey = 24,
    eKeyNotFound = 25,
    eWrongObjectType = 26,
    eNotThatKindOfClass = 27,
    eWrongDatabase = 28,
    eAlreadyInDb = 29,
    eNoDatabase = 30,
    eInvalidIndex = 31,
    eWasErased = 33,
    ePermanentlyErased = 34,
    eNotOpenForRead = 40,
    eNotOpenForWrite = 41,
    eWasOpenForRead = 42,
    eWasOpenForWrite = 43,
    eWasOpenForNotify = 44,
    eWasOpenForUndo = 45,
    eAtMaxReaders = 46,
    eIsWriteProtected = 47,
    eOnLockedLayer = 48,
    eNotAllowedForThisProxy = 49,
    eEndOfFile = 50,
    eFilerError = 51,
    eBadDxfSequence = 52,
    eDwgObjectImproperlyRead = 53,
    eOutOfRange = 54,
    eInvalidDxfCode = 55,
    eInvalidResBuf = 56,
    eDegenerateGeometry = 60,
    eInvalidExtents = 61,
    eFileNotFound = 70,
    eFileAccessErr = 71,
    eFileSystemErr = 72,
    eNoDocument = 80,
    eLockViolation = 81,
    eUserBreak = 90,
    eMakeMeProxy = 301,
};
} // namespace Acad

/// The host's text for a status, for messages: "eOk", "eBadDxfSequence" ...
QString acadErrorStatusText(Acad::ErrorStatus status);
