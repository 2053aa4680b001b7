// Opening and closing drawings for the console's verbs.
#pragma once

#include "host/acap/docman.h"

#include <QJsonObject>

namespace console
{

enum ExitStatus : int {
    kDone = 0,
    kFindings = 1, ///< The work is done and found something that the caller wants to know.
    kTrouble = 2,  ///< Bad input, a file that cannot be read or written, a question without an answer.
};

/// A drawing that is open and current for the life of a scope. Afterwards no drawing is open, whatever a
/// script opened meanwhile; nothing is saved.
class OpenDrawing
{
public:
    /// Opens the file, or a new drawing when `path` is empty, and runs what modules queue for a new drawing.
    /// A failure is printed.
    explicit OpenDrawing(const QString &path);
    ~OpenDrawing();
    OpenDrawing(const OpenDrawing &) = delete;
    OpenDrawing &operator=(const OpenDrawing &) = delete;

    /// Null when the file could not be opened, or when the drawing was closed since.
    AcApDocument *document() const;
    /// On standard error: a line when opening had to mend something ("info" lists what), and one for each
    /// object of a module, such as a mark, that cannot be read.
    void tellDamage() const;

private:
    AcApDocument *m_document = nullptr;
};

/// The same with --json: the number of "repairs" and the list "unreadable" ("QUILLNOTE3 2F"); nothing for a
/// sound drawing.
void addDamage(QJsonObject &object, const AcApDocument &document);

} // namespace console
