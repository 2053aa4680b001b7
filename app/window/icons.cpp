#include "app/window/icons.h"

#include "app/window/stroke_drawing.h"

#include <QApplication>
#include <QFile>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace window
{

namespace
{

struct Drawn {
    const char *name;
    const char *strokes; ///< As readStrokes() takes them.
};

constexpr std::array kDrawn{
    Drawn{"new", "M 3.5 1.5 L 9.5 1.5 L 12.5 4.5 L 12.5 14.5 L 3.5 14.5 Z M 9.5 1.5 L 9.5 4.5 L 12.5 4.5"},
    Drawn{"open",
          "M 1.5 13.5 L 1.5 3.5 L 6 3.5 L 7.5 5.5 L 13.5 5.5 L 13.5 7.5 M 1.5 13.5 L 4 7.5 L 15.2 7.5 "
          "L 12.7 13.5 Z"},
    Drawn{"save",
          "M 2.5 2.5 L 11.5 2.5 L 13.5 4.5 L 13.5 13.5 L 2.5 13.5 Z M 5 2.5 L 5 6.5 L 10.5 6.5 L 10.5 2.5 "
          "M 4.5 13.5 L 4.5 9.5 L 11.5 9.5 L 11.5 13.5"},
    Drawn{"plot",
          "M 4.5 6 L 4.5 1.5 L 11.5 1.5 L 11.5 6 M 4.5 11.5 L 1.5 11.5 L 1.5 6 L 14.5 6 L 14.5 11.5 L 11.5 "
          "11.5 M 4.5 9.5 L 11.5 9.5 L 11.5 14.5 L 4.5 14.5 Z"},
    Drawn{"undo", "M 5.5 2.5 L 2.5 5.5 L 5.5 8.5 M 2.5 5.5 L 9.5 5.5 C 15 5.5 15 13.5 9.5 13.5 L 6 13.5"},
    Drawn{"redo", "M 10.5 2.5 L 13.5 5.5 L 10.5 8.5 M 13.5 5.5 L 6.5 5.5 C 1 5.5 1 13.5 6.5 13.5 L 10 13.5"},
    Drawn{"erase", "M 6 13.5 L 2.5 10 L 9.5 3 L 13.5 7 L 7 13.5 Z M 6 6.5 L 10 10.5 M 6 13.5 L 13.5 13.5"},
    Drawn{"move",
          "M 8 1.5 L 8 14.5 M 1.5 8 L 14.5 8 M 6 3.5 L 8 1.5 L 10 3.5 M 6 12.5 L 8 14.5 L 10 12.5 M 3.5 6 L "
          "1.5 8 L 3.5 10 M 12.5 6 L 14.5 8 L 12.5 10"},
    Drawn{"copy",
          "M 5.5 5.5 L 13.5 5.5 L 13.5 14 L 5.5 14 Z M 10.5 5.5 L 10.5 2 L 2.5 2 L 2.5 10.5 L 5.5 10.5"},
    Drawn{"rotate", "M 13.5 8.5 C 13 14.5 4 15 2.7 9 C 2 3.5 9 0.5 12 4.5 M 12.6 1.3 L 12.4 4.9 L 8.8 4.7"},
    Drawn{"scale",
          "M 2.5 8.5 L 7.5 8.5 L 7.5 13.5 L 2.5 13.5 Z M 2.5 6 L 2.5 2.5 L 13.5 2.5 L 13.5 13.5 L 10 13.5 M "
          "8 8 L 11.5 4.5 M 8.5 4.5 L 11.5 4.5 L 11.5 7.5"},
    Drawn{"mirror",
          "M 8 1.5 L 8 3.5 M 8 5.5 L 8 7.5 M 8 9.5 L 8 11.5 M 8 13.5 L 8 14.5 M 6 3.5 L 6 12.5 L 1.5 12.5 Z "
          "M 10 3.5 L 10 12.5 L 14.5 12.5 Z"},
    Drawn{"line", "M 3 13 L 13 3 O 3 13 1.3 O 13 3 1.3"},
    Drawn{"circle", "O 8 8 6 F O 8 8 0.7"},
    Drawn{"text", "M 3 4.5 L 3 2.5 L 13 2.5 L 13 4.5 M 8 2.5 L 8 13.5 M 6 13.5 L 10 13.5"},
    Drawn{"zoom-extents", "O 7 7 4.8 M 10.5 10.5 L 14.3 14.3 M 5.2 7 L 8.8 7 M 7 5.2 L 7 8.8"},
    Drawn{"zoom-window",
          "M 1.5 4 L 1.5 1.5 L 4 1.5 M 9 1.5 L 11.5 1.5 L 11.5 4 M 1.5 9 L 1.5 11.5 L 4 11.5 O 9 9 3.3 "
          "M 11.4 11.4 L 14.5 14.5"},
    Drawn{"zoom-previous", "O 7 7 4.8 M 10.5 10.5 L 14.3 14.3 M 8.5 5 L 6 7 L 8.5 9"},
    Drawn{"pan", "M 8 1.5 L 8 14.5 M 1.5 8 L 14.5 8 O 8 8 2.5"},
    Drawn{"find", "O 6.7 6.7 4.6 M 10.2 10.2 L 14.3 14.3"},
    Drawn{"regen",
          "M 13.5 3 L 13.5 6.5 L 10 6.5 M 13.2 6.3 C 11 0.5 3.2 1.6 2.5 7.5 M 2.5 13 L 2.5 9.5 L 6 9.5 M 2.8 "
          "9.7 C 5 15.5 12.8 14.4 13.5 8.5"},
    Drawn{"help", "O 8 8 6.3 M 6 6.2 C 6 3.6 10.2 3.6 10 6.3 C 9.9 7.8 8 7.7 8 9.6 F O 8 11.7 0.8"},
    Drawn{"close", "M 3.5 3.5 L 12.5 12.5 M 12.5 3.5 L 3.5 12.5"},
    Drawn{"up", "M 3.5 10.5 L 8 5.5 L 12.5 10.5"},
    Drawn{"down", "M 3.5 5.5 L 8 10.5 L 12.5 5.5"},
    Drawn{"background",
          "M 1.5 2.5 L 14.5 2.5 L 14.5 13.5 L 1.5 13.5 Z F M 8 2.5 L 14.5 2.5 L 14.5 13.5 L 8 13.5 Z"},
    Drawn{"flag", "M 4.5 13.5 L 4.5 3 F M 4.5 3 L 12.5 3 L 10.5 5.75 L 12.5 8.5 L 4.5 8.5 Z"},
    Drawn{"layers",
          "M 8 1.5 L 14.5 5 L 8 8.5 L 1.5 5 Z M 1.5 8 L 8 11.5 L 14.5 8 M 1.5 11 L 8 14.5 L 14.5 11"},
};

class StrokeIcon : public QIconEngine
{
public:
    explicit StrokeIcon(StrokeDrawing drawn) : m_drawn(std::move(drawn)) {}

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State) override
    {
        const QPalette palette = QApplication::palette();
        const QPalette::ColorGroup group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
        const QColor color =
            palette.color(group, mode == QIcon::Selected ? QPalette::HighlightedText : QPalette::WindowText);
        const double scale = std::min(rect.width(), rect.height()) / 16.0;
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->translate(rect.center().x() + 0.5 - 8.0 * scale, rect.center().y() + 0.5 - 8.0 * scale);
        painter->scale(scale, scale);
        painter->setPen(QPen(color, 1.2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter->drawPath(m_drawn.lines);
        painter->fillPath(m_drawn.areas, color);
        painter->restore();
    }
    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override
    {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect(QPoint(0, 0), size), mode, state);
        return pixmap;
    }
    QIconEngine *clone() const override { return new StrokeIcon(m_drawn); }

private:
    StrokeDrawing m_drawn;
};

} // namespace

static QIcon strokeIcon(const QString &strokes)
{
    auto drawn = readStrokes(strokes);
    return drawn ? QIcon(new StrokeIcon(*std::move(drawn))) : QIcon();
}

QIcon icon(const char *name)
{
    const auto found = std::ranges::find(kDrawn, QLatin1String(name),
                                         [](const Drawn &drawn) { return QLatin1String(drawn.name); });
    return found == kDrawn.end() ? QIcon() : strokeIcon(QString::fromLatin1(found->strokes));
}

QIcon iconFromFile(const QString &path)
{
    constexpr qint64 kMost = 64 * 1024;
    QFile file(path);
    if (!file.exists())
        return {};
    if (!path.endsWith(QLatin1String(".strokes"), Qt::CaseInsensitive))
        return QIcon(path);
    if (file.size() > kMost || !file.open(QIODevice::ReadOnly))
        return {};
    return strokeIcon(QString::fromLatin1(file.readAll()));
}

QIcon programIcon()
{
    constexpr double kGrid = 16.0;
    const QColor red(196, 30, 45);
    const auto *const flag = std::ranges::find(kDrawn, std::string_view("flag"), &Drawn::name);
    const std::optional<StrokeDrawing> drawn = readStrokes(QString::fromLatin1(flag->strokes));
    QIcon icon;
    for (const int size : {16, 24, 32, 48, 64, 128}) {
        QPixmap pixmap(size, size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.scale(size / kGrid, size / kGrid);
        painter.setPen(Qt::NoPen);
        painter.setBrush(red);
        painter.drawRoundedRect(QRectF(0.5, 0.5, kGrid - 1, kGrid - 1), 3, 3);
        painter.strokePath(drawn->lines, QPen(Qt::white, 1.4, Qt::SolidLine, Qt::RoundCap));
        painter.fillPath(drawn->areas, Qt::white);
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

} // namespace window
