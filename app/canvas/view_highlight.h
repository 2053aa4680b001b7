// ViewHighlight: chosen entities in the colour of what is chosen, as a layer over the picture.
#pragma once

#include "host/acgi/display/display.h"

#include <QObject>
#include <QTimer>

namespace window
{

/// A layer of few entities always fits the view. One of many grows in slices, so that nothing waits for it;
/// it is shown moved and scaled while the view changes and painted anew when the view has come to rest.
class ViewHighlight : public QObject
{
    Q_OBJECT

public:
    explicit ViewHighlight(QObject *parent = nullptr);

    /// The drawing may be read at this moment; the entities stand in the space that `view` looks at.
    void show(AcDbDatabase *database, const std::vector<AcDbObjectId> &entities, const AcGiViewport &view,
              const QColor &background);
    void clear();
    /// The painter's coordinates are the pixels of the view.
    void paint(QPainter &painter) const;
    bool isEmpty() const { return m_entities.empty(); }
    /// All of the entities are painted as the view sees them.
    bool isSharp() const { return m_entities.empty() || (!m_next.isActive() && !m_rest.isActive()); }

Q_SIGNALS:
    void changed();

private:
    void repaint();
    void paintSlice();
    void paintSome(std::size_t count);

    AcDbDatabase *m_database = nullptr;
    std::vector<AcDbObjectId> m_entities;
    std::vector<AcDbObjectId> m_inOrder; ///< The same as they are painted: those of modules last.
    QColor m_background;
    std::uint64_t m_changeCount = 0;
    AcGiViewport m_view;
    QImage m_image;
    AcGiViewport m_imageView;
    std::size_t m_painted = 0; ///< Of the entities.
    QTimer m_rest;             ///< Runs until the view has come to rest.
    QTimer m_next;             ///< The next slice.
};

} // namespace window
