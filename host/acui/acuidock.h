// CAcUiDockControlBar: the base of palettes, windows that stay open beside the drawing.
//
// The window of the program lends its edges to them. Without one, on the console, a palette is a window of
// its own that nobody sees and that scripts work ("@in CMarkWnd2 click 1006").
#pragma once

#include <QDockWidget>
#include <QPointer>

class QMainWindow;

/// Whose edges palettes are docked to; null: none. Taken back by itself when the window goes.
void acuiSetMainFrame(QMainWindow *frame);
QMainWindow *acuiMainFrame();

class CAcUiDockControlBar : public QDockWidget
{
    Q_OBJECT

public:
    /// `name` tells the palette from others where the window keeps its panels.
    CAcUiDockControlBar(const QString &name, const QString &title);

    /// Puts the palette to an edge of the main frame, `width` wide, and shows it in front of others there.
    void dockAt(Qt::DockWidgetArea area, int width);

protected:
    /// Sizes that a floating palette keeps to; a docked one follows its window.
    void setFloatingLimits(const QSize &smallest, const QSize &largest);

private:
    void limitSize();

    QSize m_smallest;
    QSize m_largest;
};
