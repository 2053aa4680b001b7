#include "host/formats/drawingformat.h"

#include <QFileInfo>

#include <algorithm>

static std::vector<const DrawingFormat *> &registered()
{
    static std::vector<const DrawingFormat *> formats;
    return formats;
}

void registerDrawingFormat(const DrawingFormat &format)
{
    registered().push_back(&format);
}

const std::vector<const DrawingFormat *> &drawingFormats()
{
    return registered();
}

template <class Fits>
static const DrawingFormat *firstThat(Fits fits)
{
    const auto found = std::ranges::find_if(registered(), fits);
    return found == registered().end() ? nullptr : *found;
}

const DrawingFormat *drawingFormatOfBytes(std::string_view bytes)
{
    for (const Recognised wanted : {Recognised::surely, Recognised::perhaps}) {
        const auto fits = [&](const DrawingFormat *format) { return format->recognises(bytes) == wanted; };
        if (const DrawingFormat *const format = firstThat(fits))
            return format;
    }
    return nullptr;
}

const DrawingFormat *drawingFormatOf(const AcDbDatabase &database)
{
    return firstThat([&database](const DrawingFormat *format) { return format->holds(database); });
}

const DrawingFormat *drawingFormatOfName(const QString &path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    return firstThat([&suffix](const DrawingFormat *format) { return format->suffix() == suffix; });
}

const DrawingFormat *drawingFormatToSave(const AcDbDatabase &database, const QString &path)
{
    const DrawingFormat *const named = drawingFormatOfName(path);
    return named ? named : drawingFormatOf(database);
}
