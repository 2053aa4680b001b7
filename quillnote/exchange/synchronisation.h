// Synchronisation: while it is on, every change of a mark becomes a file in the synchronisation folder, which
// the other members of the review read with -QN3_DataFileIn. Moving the files is not the module's business.
#pragma once

#include <QByteArray>
#include <QHashFunctions>
#include <QString>

#include <unordered_map>

class QuillnoteObj3;

struct SynchronisationState {
    bool on = false;
    /// What was last written or received of a mark, by its GUID: the same is not written again.
    std::unordered_map<QString, QByteArray> known;

    void reset() { *this = {}; }
};
SynchronisationState &synchronisation();

/// Writes the mark's file when synchronisation is on and the mark says something new. Open for read at least.
void synchroniseMark(const QuillnoteObj3 &mark);
/// Writes a file that names the mark as erased when synchronisation is on.
void synchroniseErased(const QuillnoteObj3 &mark);
/// The mark was received: it says nothing new.
void noteReceived(const QuillnoteObj3 &mark);

/// Commands. On tests the folder and is on whatever the test says: later writes look for a folder again.
void QN8_SynningOn();
void QN8_SynningOff();
