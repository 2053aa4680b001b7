#include "tests/pictures/drawing_text.h"

#include "host/formats/dxf/dxfreader.h"
#include "tests/support/picture.h"

namespace tests
{

namespace
{

/// Writes DXF text.
class Dxf
{
public:
    Dxf()
    {
        group(0, "SECTION");
        group(2, "HEADER");
        group(9, "$ACADVER");
        group(1, "AC1021");
    }
    void section(const QByteArray &name)
    {
        group(0, "ENDSEC");
        group(0, "SECTION");
        group(2, name);
    }
    void object(const QByteArray &line)
    {
        const QByteArrayList parts = split(line);
        if (!parts.first().startsWith('$'))
            group(0, parts.first());
        else
            group(9, parts.first());
        for (const QByteArray &part : parts.mid(1)) {
            const qsizetype space = part.indexOf(' ');
            value(part.left(space).toInt(), space < 0 ? QByteArray() : part.mid(space + 1));
        }
    }
    QByteArray end()
    {
        group(0, "ENDSEC");
        group(0, "EOF");
        return m_text;
    }

private:
    /// A bar that belongs to a text has no spaces around it.
    static QByteArrayList split(const QByteArray &line)
    {
        QByteArrayList parts;
        qsizetype start = 0;
        for (qsizetype bar = line.indexOf(" | "); bar >= 0; bar = line.indexOf(" | ", start)) {
            parts.append(line.mid(start, bar - start).trimmed());
            start = bar + 3;
        }
        return parts << line.mid(start).trimmed();
    }
    static bool isPoint(int code)
    {
        return (code >= 10 && code <= 18) || (code >= 110 && code <= 112) || code == 210;
    }
    void value(int code, const QByteArray &text)
    {
        if (!isPoint(code) || !text.contains(','))
            return group(code, text);
        for (const QByteArray &coordinate : text.split(',')) {
            group(code, coordinate);
            code += 10;
        }
    }
    void group(int code, const QByteArray &text) { m_text += QByteArray::number(code) + '\n' + text + '\n'; }

    QByteArray m_text;
};

} // namespace

static AcGiViewport viewFrom(const QByteArrayList &words)
{
    const auto number = [&](int at) { return words.value(at).toDouble(); };
    return planView(number(1), number(2), int(number(3)), int(number(4)), words.size() > 5 ? number(5) : 1.0);
}

DrawingText readDrawingText(const QByteArray &text)
{
    DrawingText drawing;
    drawing.space = QStringLiteral("*Model_Space");
    Dxf dxf;
    for (const QByteArray &line : text.split('\n')) {
        const QByteArrayList words = line.simplified().split(' ');
        if (line.startsWith('#') || words.first().isEmpty())
            continue;
        if (words.first() == "view")
            drawing.view = viewFrom(words);
        else if (words.first() == "space")
            drawing.space = QString::fromUtf8(words.value(1));
        else if (words.first() == "lineweights")
            drawing.lineWeights = true;
        else if (words.first() == "section")
            dxf.section(words.value(1));
        else
            dxf.object(line);
    }
    auto read = readDxf(base::FileBytes::fromByteArray(dxf.end()), QStringLiteral("picture"));
    if (read)
        drawing.database = std::move(read).value();
    else
        ADD_FAILURE() << "the drawing cannot be read";
    return drawing;
}

} // namespace tests
