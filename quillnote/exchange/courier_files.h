// What the program and the courier have between them: files in the folder "courier" of the synchronisation
// folder. The program says which drawings are open, the courier lays down what arrived for them.
#pragma once

#include <QByteArray>
#include <QString>

class AcDbDatabase;
struct SharedDrawing;

/// Returns the file that says that a drawing waits for what others send; withdrawing removes it.
QString announceOpenDrawing(const QByteArray &identity);
void withdrawOpenDrawing(const QString &file);

/// The next file that arrived for the drawing and was not taken yet; empty when there is none. It counts as
/// taken from now on; whoever has read it removes it.
QString takeArrived(SharedDrawing &drawing);

/// Starts the courier when the settings say where people meet; says so where they do not. While
/// synchronisation is on and a person looks, what arrives for the current drawing is imported between
/// commands, and the courier's state is told to the window.
void startCourier();
void stopWatchingArrivals();

/// Command: asks for the folder or the server at which people meet.
void QN8_SynningPlace();
