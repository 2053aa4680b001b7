// The front end in use, and the one that stands in while there is none.
#include "host/aced/edfrontend.h"

#include "host/acap/docman.h"
#include "host/base/terminal_text.h"

#include <cstdio>
#include <utility>

namespace
{

class NoFrontEnd : public AcEdFrontEnd
{
public:
    std::optional<AcEdAnswer> answer(const AcEdPrompt &) override { return std::nullopt; }
    std::optional<QString> dialogLine(const QString &) override { return std::nullopt; }
    bool isScripted() const override { return true; }
    void print(const QString &text) override
    {
        std::fputs(base::terminalText(text).toUtf8().constData(), stderr);
    }
};

AcEdFrontEnd *none()
{
    static NoFrontEnd frontEnd;
    return &frontEnd;
}

AcEdFrontEnd *&current()
{
    static AcEdFrontEnd *frontEnd = none();
    return frontEnd;
}

} // namespace

AcEdFrontEnd &acedFrontEnd()
{
    return *current();
}

AcEdFrontEnd *acedSetFrontEnd(AcEdFrontEnd *frontEnd)
{
    return std::exchange(current(), frontEnd ? frontEnd : none());
}

QRect acedDrawingWindow()
{
    if (const auto window = acedFrontEnd().drawingWindow())
        return *window;
    const AcApDocument *const document = curDoc();
    const AcGeView view = document ? document->view() : AcGeView();
    return {0, 0, int(view.pixelWidth), int(view.pixelHeight)};
}

void acutPrintf(const QString &text)
{
    acedFrontEnd().print(text);
}

void acdbFail(const QString &text)
{
    acutPrintf(QLatin1Char('\n') + text);
}
