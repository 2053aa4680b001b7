// Synchronisation: while it is on, every change of a mark becomes a file in the synchronisation folder, which
// the others who have a copy of the drawing read with -QN3_DataFileIn. Moving the files is the courier's
// business (helpers/courier); what it does with them is told in decision 0090.
//
// A drawing knows its copies by an identity, which it keeps together with what it last exchanged of each
// mark. So what was changed while synchronisation was off is found, and goes out, when it is switched on.
#pragma once

#include "quillnote/exchange/header/data_header.h"

#include <QByteArray>
#include <QHashFunctions>
#include <QString>

#include <map>
#include <unordered_map>

class AcDbDatabase;
class QuillnoteObj3;

/// What was last sent or received of a mark.
struct ExchangedMark {
    QByteArray digest = unknownDigest();
    std::uint64_t sent = 0; ///< SharedChange::serial of the last own file; 0 in this run: none.
};

struct SharedDrawing {
    QByteArray identity;
    std::unordered_map<QString, ExchangedMark> known; ///< By GUID.
    QString openFile;                                 ///< Tells the courier that somebody waits for files.
    bool hasBegun = false;                            ///< The courier knows that it is open.
    std::int64_t lastTaken = 0;                       ///< Number of the last file that arrived and was read.
};

struct SynchronisationState {
    bool on = false;
    std::map<const AcDbDatabase *, SharedDrawing> drawings; ///< Those that take part.
    std::uint64_t lastSerial = 0;

    void reset() { *this = {}; }
};
SynchronisationState &synchronisation();
/// Null for a drawing that does not take part.
SharedDrawing *sharedDrawing(const AcDbDatabase &database);

/// When synchronisation is on the drawing takes part from now on: what differs from what it last exchanged
/// goes out. Calling it again does nothing.
void shareDrawing(AcDbDatabase &database);
/// Puts what was exchanged into the drawing, so that saving keeps it.
void keepExchanged(AcDbDatabase &database);
/// The drawing is about to go, or takes no part any more.
void leaveDrawing(const AcDbDatabase &database);

/// What the mark says, wherever it stands and however it was drawn.
QByteArray digestOf(const QuillnoteObj3 &mark);

/// Writes the mark's file when the drawing takes part and the mark says something new. Open for read at
/// least.
void synchroniseMark(const QuillnoteObj3 &mark);
/// Writes a file that names the mark as erased when the drawing takes part.
void synchroniseErased(const QuillnoteObj3 &mark);
/// The mark was received, or its erasing: it says nothing new.
void noteReceived(AcDbDatabase &database, const QString &guid, const QByteArray &digest);
/// This program has sent something newer of the mark than whoever made a file had seen: the file's state is
/// out of date, and the newer one is on its way to everybody.
bool isOutdated(const AcDbDatabase &database, const QString &guid, const SharedChange &change);

/// Commands. On tests the folder and is on whatever the test says: later writes look for a folder again.
void QN8_SynningOn();
void QN8_SynningOff();
