// Two hot links that point at each other: joining them, finding one from the other, and the source that waits
// for its target.
#pragma once

#include "quillnote/aids/links/link_record.h"

#include "host/acap/docman.h"

#include <QString>

/// A link and the document that holds it.
struct LinkEnd {
    AcApDocument *document = nullptr;
    AcDbObjectId link;
};

/// A source whose target has not been drawn yet, for the whole process.
struct PendingLink {
    LinkEnd source;

    /// False when there is none, or when it was erased.
    bool isWaiting() const { return source.link.isValid(); }
    /// The drawing is about to go.
    void forget(const AcDbDatabase &database);
    void reset() { *this = {}; }
};
PendingLink &pendingLink();

/// The path that the other end keeps of a drawing; of one that was never saved its present name.
QString pathOfDrawing(const AcApDocument &document);

/// Makes a link in the current space of a drawing. Null when the drawing refuses it.
AcDbObjectId appendLink(AcApDocument &document, const MarkCorners &corners);
/// Lets both point at each other, the source as the one made first. Locks the documents. On a failure neither
/// has changed.
Acad::ErrorStatus joinLinks(const LinkEnd &source, const LinkEnd &target);

/// The drawing of a partner: at its path, else where references are looked for from the folder `own`, as
/// after a move of both drawings with their folder. Empty when there is none.
QString findPartnerDrawing(const QString &path, const QString &own);

struct FoundPartner {
    AcDbObjectId link;
    bool pointsBack = false; ///< Otherwise it belongs to another link: this one is a copy.
};
/// The partner of a link in the drawing that it should stand in: by its handle, else the one that points
/// back; null when neither is a link.
FoundPartner findPartner(const AcDbDatabase &where, const QuillLinkObj &link);
