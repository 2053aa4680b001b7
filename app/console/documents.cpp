#include "app/console/documents.h"

#include "app/console/console_front_end.h"
#include "host/acdb/dbobject.h"
#include "host/aced/edcommands.h"

#include <QJsonArray>

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

/// Objects of a loaded module whose bytes it refused: reports and pictures go without them.
static QStringList unreadableObjects(const AcDbDatabase &database)
{
    QStringList found;
    for (std::uint32_t index = 1; index < database.stubCount(); ++index) {
        AcDbStub *const stub = database.stub(index);
        if (stub->has(AcDbStub::kErased))
            continue;
        const AcRxClass *const kind = acdbKindClass(stub->kind, stub->has(AcDbStub::kEntity));
        if (!kind->application())
            continue;
        const AcDbObjectPointer<AcDbObject> object(AcDbObjectId(stub), AcDb::kForRead);
        if (!object || !object->isKindOf(kind))
            found.append(QStringLiteral("%1 %2").arg(QString::fromUtf8(acdbKindName(stub->kind)),
                                                     QString::number(stub->handle, 16).toUpper()));
    }
    return found;
}

void OpenDrawing::tellDamage() const
{
    if (!document())
        return;
    const QString &file = document()->fileName();
    if (const qsizetype count = document()->database()->repairs().size(); count > 0)
        printMessageLine(QStringLiteral("%1: damaged; repairs while opening: %2 (quillnote info lists them)")
                             .arg(file)
                             .arg(count));
    constexpr qsizetype kMostLines = 100;
    const QStringList unreadable = unreadableObjects(*document()->database());
    for (const QString &each : unreadable.first(std::min(unreadable.size(), kMostLines)))
        printMessageLine(QStringLiteral("%1: %2 cannot be read").arg(file, each));
    if (unreadable.size() > kMostLines)
        printMessageLine(
            QStringLiteral("%1: %2 more cannot be read").arg(file).arg(unreadable.size() - kMostLines));
}

void addDamage(QJsonObject &object, const AcApDocument &document)
{
    if (const qsizetype count = document.database()->repairs().size(); count > 0)
        object.insert(QStringLiteral("repairs"), count);
    if (const QStringList unreadable = unreadableObjects(*document.database()); !unreadable.isEmpty())
        object.insert(QStringLiteral("unreadable"), QJsonArray::fromStringList(unreadable));
}

} // namespace console
