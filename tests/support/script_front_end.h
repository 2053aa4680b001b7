// A front end whose answers come from a list, and a drawing that is open for the length of a test.
//
//     const tests::OpenDrawing drawing(memoryDrawing.open());
//     tests::ScriptFrontEnd script({"0,0", "@10<90", ""});
//     EXPECT_EQ(acedEditor()->runCommand("LINE"), RTNORM);
//     EXPECT_TRUE(script.isUsedUp());
#pragma once

#include "host/acap/docman.h"
#include "host/aced/edfrontend.h"

#include <deque>

namespace tests
{

/// Is the front end in use while it lives. "^C" cancels a prompt; without an answer left there is none.
class ScriptFrontEnd : public AcEdFrontEnd
{
public:
    explicit ScriptFrontEnd(const QStringList &answers = {}, const QStringList &dialogLines = {});
    ~ScriptFrontEnd() override;
    ScriptFrontEnd(const ScriptFrontEnd &) = delete;
    ScriptFrontEnd &operator=(const ScriptFrontEnd &) = delete;

    void add(const QString &typed);
    /// As a person points with the mouse; world coordinates.
    void addPoint(const AcGePoint3d &where);
    void addEntity(AcDbObjectId entity, const AcGePoint3d &where);
    void addDialogLine(const QString &line) { m_dialogLines.push_back(line); }

    std::optional<AcEdAnswer> answer(const AcEdPrompt &prompt) override;
    std::optional<QString> dialogLine(const QString &what) override;
    bool isScripted() const override { return true; }
    void print(const QString &text) override { printed += text; }
    void refuseAnswer(const QString &reason) override
    {
        refusals.append(reason);
        print(QStringLiteral("\n") + reason);
    }
    QStringList heldKeys() const override { return held; }

    bool isUsedUp() const { return m_answers.empty() && m_dialogLines.empty(); }

    QString printed;
    std::vector<AcEdPrompt> prompts; ///< All that were asked, in order.
    QStringList dialogs;             ///< Likewise for dialogs.
    QStringList refusals;
    QStringList held;

private:
    std::deque<AcEdAnswer> m_answers;
    std::deque<QString> m_dialogLines;
    AcEdFrontEnd *m_before;
};

/// A document of the process's document manager, current from the start, closed at the end.
class OpenDrawing
{
public:
    explicit OpenDrawing(std::unique_ptr<AcDbDatabase> database, const QString &fileName = {});
    ~OpenDrawing();
    OpenDrawing(const OpenDrawing &) = delete;
    OpenDrawing &operator=(const OpenDrawing &) = delete;

    AcApDocument &document() const { return *m_document; }
    AcDbDatabase &database() const { return *m_document->database(); }
    /// By the handle that MemoryDrawing gave.
    AcDbObjectId id(std::uint64_t handle) const { return database().getAcDbObjectId({handle}); }

private:
    AcApDocument *m_document;
};

} // namespace tests
