// The window over the drawing that is sketched on.
#pragma once

#include "helpers/ink_relay/ink_document.h"

#include <QPixmap>
#include <QWidget>

#include <optional>

class QEventLoop;

namespace ink
{

class Strip;

class Overlay : public QWidget
{
    Q_OBJECT

public:
    /// Covers `area` of the screen once it runs; what is below is pictured now.
    Overlay(const QRect &area, const QString &path);

    /// Shows the overlay until the person is done or cancels. True when the file was written.
    bool run();

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void tabletEvent(QTabletEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    // The shape under the pen.
    void begin(const QPointF &place);
    void extend(const QPointF &place, bool isConstrained);
    void end();
    void abandon();

    void showStep();
    void paintAll();
    void update(const Shape &shape);
    using QWidget::update;

    void done();
    void cancel();
    void leave(bool isWritten);
    QPointF onCanvas(const QPointF &place) const;

    QString m_path;
    Document m_document;
    QPixmap m_below;   ///< Null when the window system shows what is below by itself.
    QPixmap m_picture; ///< All of it but the shape under the pen.
    std::optional<Shape> m_current;
    bool m_isFreehand = false; ///< The shape under the pen.
    Strip *m_strip = nullptr;
    QEventLoop *m_loop = nullptr;
    bool m_isWritten = false;
};

} // namespace ink
