#include "app/console/documents.h"

#include "app/console/console_front_end.h"
#include "host/aced/edcommands.h"

#include <algorithm>

namespace console
{

OpenDrawing::OpenDrawing(const QString &path)
{
    if (path.isEmpty()) {
        m_document = acDocManager()->newDocument();
    } else if (auto opened = acDocManager()->openDocument(path)) {
        m_document = *opened;
    } else {
        printMessageLine(opened.error());
        return;
    }
    // The console's own face answers no command prompt: the editor runs what is queued and returns.
    ConsoleFrontEnd face;
    AcEdFrontEnd *const before = acedSetFrontEnd(&face);
    acedEditor()->processInput();
    acedSetFrontEnd(before);
}

OpenDrawing::~OpenDrawing()
{
    while (!acDocManager()->documents().empty())
        acDocManager()->closeDocument(acDocManager()->documents().back().get());
}

AcApDocument *OpenDrawing::document() const
{
    const auto &opened = acDocManager()->documents();
    const bool isOpen = std::any_of(opened.begin(), opened.end(),
                                    [this](const auto &each) { return each.get() == m_document; });
    return isOpen ? m_document : nullptr;
}

} // namespace console
