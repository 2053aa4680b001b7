#include "app/canvas/view_highlight.h"

#include "app/canvas/view_picture.h"
#include "host/acrx/rxclass.h"

#include <QDeadlineTimer>

#include <algorithm>

namespace window
{

/// So many are painted while the view moves.
static constexpr std::size_t kFew = 2000;
static const QColor kChosen(30, 144, 255);

ViewHighlight::ViewHighlight(QObject *parent) : QObject(parent)
{
    m_rest.setSingleShot(true);
    m_rest.setInterval(150);
    connect(&m_rest, &QTimer::timeout, this, &ViewHighlight::repaint);
    m_next.setSingleShot(true);
    m_next.setInterval(0);
    connect(&m_next, &QTimer::timeout, this, &ViewHighlight::paintSlice);
}

void ViewHighlight::clear()
{
    m_rest.stop();
    m_next.stop();
    m_database = nullptr;
    m_image = {};
    if (std::exchange(m_entities, {}).empty())
        return;
    Q_EMIT changed();
}

static bool isCustom(AcDbObjectId id)
{
    return id.isValid() && id.objectClass()->application() != nullptr;
}

void ViewHighlight::show(AcDbDatabase *database, const std::vector<AcDbObjectId> &entities,
                         const AcGiViewport &view, const QColor &background)
{
    if (!database || entities.empty()) {
        clear();
        return;
    }
    const bool isOther = database != m_database || database->changeCount() != m_changeCount ||
                         background != m_background || entities != m_entities;
    if (!isOther && isSameView(view, m_view))
        return;
    m_database = database;
    m_changeCount = database->changeCount();
    m_view = view;
    m_background = background;
    if (isOther) {
        m_entities = entities;
        // Their numbers are read even where others lie over them.
        m_inOrder = entities;
        std::stable_partition(m_inOrder.begin(), m_inOrder.end(),
                              [](AcDbObjectId id) { return !isCustom(id); });
    }
    if (isOther || m_entities.size() <= kFew) {
        repaint();
    } else {
        m_next.stop(); // What is there goes on being shown.
        m_rest.start();
    }
    Q_EMIT changed();
}

void ViewHighlight::repaint()
{
    m_rest.stop();
    m_next.stop();
    if (!m_database)
        return;
    QImage image(int(m_view.pixelWidth), int(m_view.pixelHeight), QImage::Format_ARGB32_Premultiplied);
    if (image.isNull())
        return;
    image.fill(Qt::transparent);
    m_image = image;
    m_imageView = m_view;
    m_painted = 0;
    if (m_entities.size() > kFew) {
        paintSlice();
        return;
    }
    paintSome(m_entities.size());
    // Lines that are two pixels wide stand out whatever their colour was.
    const QImage thin = m_image.copy();
    QPainter widen(&m_image);
    widen.drawImage(1, 0, thin);
    widen.drawImage(0, 1, thin);
    widen.end();
    Q_EMIT changed();
}

void ViewHighlight::paintSlice()
{
    constexpr std::size_t kSome = 3000;
    constexpr int kSlice = 15; // Milliseconds.
    const QDeadlineTimer until(kSlice);
    while (m_painted < m_entities.size() && !until.hasExpired())
        paintSome(std::min(kSome, m_entities.size() - m_painted));
    if (m_painted < m_entities.size())
        m_next.start();
    Q_EMIT changed();
}

void ViewHighlight::paintSome(std::size_t count)
{
    acgi::PaintOptions options;
    options.fillBackground = false;
    options.highlight = kChosen;
    options.background = m_background;
    QPainter painter(&m_image);
    const std::span some = std::span(m_inOrder).subspan(m_painted, count);
    acgi::displayOf(*m_database).paintEntities(some, m_imageView, painter, options);
    m_painted += count;
}

void ViewHighlight::paint(QPainter &painter) const
{
    if (m_image.isNull() || m_entities.empty())
        return;
    painter.save();
    if (!isSameView(m_imageView, m_view))
        painter.setTransform(pixelTransform(m_imageView, m_view), true);
    painter.drawImage(0, 0, m_image);
    painter.restore();
}

} // namespace window
