// The entry of the freehand drawing library: lets a person sketch over a part of the screen.
#pragma once

/// Lays a window exactly over a rectangle of the screen, in Qt's screen coordinates, through which what is
/// below stays visible, and returns when the person is done. Runs in the program's own thread with its
/// QApplication.
///
/// `flag` is 1; other requests are refused. `path` ends in a zero; the file there is made or replaced as a
/// whole, in the form of docs/formats/sketch.md.
/// Returns 1 when a sketch was written. Returns 0 and leaves the file alone when the person cancelled or drew
/// nothing, and for calls that cannot be served: no QApplication, no path, an empty rectangle, one in whose
/// middle the program shows no window. A file that cannot be written is told to the person, who may go on,
/// try again or cancel.
extern "C" unsigned char callInkRelay(int flag, const char16_t *path, int left, int top, int width,
                                      int height);
