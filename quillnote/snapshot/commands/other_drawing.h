// Another drawing that is open for a while, beside the current one.
#pragma once

#include "host/acap/docman.h"

/// Opened read-only; why it cannot be is said. A drawing that was open already stays so.
class OtherDrawing
{
public:
    explicit OtherDrawing(const QString &path);
    ~OtherDrawing();
    OtherDrawing(const OtherDrawing &) = delete;
    OtherDrawing &operator=(const OtherDrawing &) = delete;

    /// Null when it could not be opened.
    AcApDocument *document() const { return m_other; }
    AcDbDatabase *database() const { return m_other ? m_other->database() : nullptr; }

private:
    AcApDocument *m_current;
    AcApDocument *m_other = nullptr;
    bool m_wasOpen = false;
};
