#include "quillnote/snapshot/commands/other_drawing.h"

#include "host/aced/edfrontend.h"

#include <algorithm>

OtherDrawing::OtherDrawing(const QString &path) : m_current(curDoc())
{
    const std::vector<AcApDocument *> before = acDocManager()->allDocuments();
    const auto opened = acDocManager()->openDocument(path, AcApOpenAs::readOnly);
    if (opened)
        m_other = *opened;
    else
        acutPrintf(u'\n' + opened.error());
    m_wasOpen = std::ranges::find(before, m_other) != before.end();
    acDocManager()->activateDocument(m_current);
}

OtherDrawing::~OtherDrawing()
{
    acDocManager()->activateDocument(m_current);
    if (m_other && !m_wasOpen)
        acDocManager()->closeDocument(m_other);
}
