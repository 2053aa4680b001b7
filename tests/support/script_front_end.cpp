#include "tests/support/script_front_end.h"

#include "host/aced/edcommands.h"

namespace tests
{

ScriptFrontEnd::ScriptFrontEnd(const QStringList &answers, const QStringList &dialogLines)
    : m_dialogLines(dialogLines.begin(), dialogLines.end()), m_before(acedSetFrontEnd(this))
{
    // The editor forgets that an earlier script ran out of answers.
    acedEditor()->processInput();
    prompts.clear();
    for (const QString &typed : answers)
        add(typed);
}

ScriptFrontEnd::~ScriptFrontEnd()
{
    acedSetFrontEnd(m_before);
}

void ScriptFrontEnd::add(const QString &typed)
{
    m_answers.push_back(typed == u"^C" ? AcEdAnswer::ofCancel() : AcEdAnswer::ofText(typed));
}

void ScriptFrontEnd::addPoint(const AcGePoint3d &where)
{
    m_answers.push_back(AcEdAnswer::ofPoint(where));
}

void ScriptFrontEnd::addEntity(AcDbObjectId entity, const AcGePoint3d &where)
{
    m_answers.push_back(AcEdAnswer::ofEntity(entity, where));
}

std::optional<AcEdAnswer> ScriptFrontEnd::answer(const AcEdPrompt &prompt)
{
    prompts.push_back(prompt);
    if (m_answers.empty())
        return std::nullopt;
    const AcEdAnswer next = m_answers.front();
    m_answers.pop_front();
    return next;
}

std::optional<QString> ScriptFrontEnd::dialogLine(const QString &what)
{
    dialogs.append(what);
    // What only tells something needs no line; boxes of the widget layer name their buttons.
    const bool isAlert = what.startsWith(u"message box ") && what.endsWith(u"(@ok)");
    if (isAlert && (m_dialogLines.empty() || m_dialogLines.front() != u"ok"))
        return QStringLiteral("ok");
    if (m_dialogLines.empty())
        return std::nullopt;
    const QString next = m_dialogLines.front();
    m_dialogLines.pop_front();
    return next;
}

OpenDrawing::OpenDrawing(std::unique_ptr<AcDbDatabase> database, const QString &fileName)
    : m_document(acDocManager()->addDocument(std::move(database), fileName))
{
}

OpenDrawing::~OpenDrawing()
{
    acDocManager()->closeDocument(m_document);
}

} // namespace tests
