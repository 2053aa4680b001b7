// The prompt machine: where answers come from, what is refused and asked again.
//
// Answers come from the innermost feed that has any: the arguments of acedCommandS, the rest of a typed
// line or of a queued macro; then from the front end.
#pragma once

#include "host/acap/docman.h"
#include "host/aced/edfrontend.h"
#include "host/aced/edinput.h"

#include <deque>
#include <functional>

/// Answers that were given before anybody asked.
class AcEdFeed
{
public:
    enum Kind {
        closed, ///< A prompt that finds it empty is cancelled.
        open,   ///< A prompt that finds it empty asks on outside.
    };
    AcEdFeed(Kind kind, std::deque<AcEdToken> tokens);
    ~AcEdFeed();
    AcEdFeed(const AcEdFeed &) = delete;
    AcEdFeed &operator=(const AcEdFeed &) = delete;

    Kind kind() const { return m_kind; }
    std::deque<AcEdToken> &tokens() { return m_tokens; }
    /// Where the last answer came from: it was one of these, or a PAUSE left it to the user.
    enum class LastAnswer { elsewhere, ours, users };
    LastAnswer lastAnswer = LastAnswer::elsewhere;

private:
    Kind m_kind;
    std::deque<AcEdToken> m_tokens;
};

/// The next answer, or none; then the running command has been told to stop.
std::optional<AcEdAnswer> acedNextAnswer(const AcEdPrompt &prompt);
/// The words of a typed line as answers: a blank ends each, two blanks hold an Enter between them.
std::deque<AcEdToken> acedSplitLine(const QString &line);

/// Rules and keywords of the running prompt, taken from acedInitGet() when a prompt begins.
struct AcEdRules {
    int bits = 0;
    QStringList keywords;    ///< As listed: what is shown and what abbreviates.
    QStringList globalNames; ///< What acedGetInput() tells; as long as `keywords`.

    bool has(AcEdInitGet bit) const { return bits & bit; }
};
AcEdRules acedTakeRules();
/// What acedGetInput() tells next.
void acedSetInput(const QString &text);

/// What a prompt makes of an answer.
struct AcEdVerdict {
    bool done = false;
    int result = RTNORM;
    QString complaint; ///< Printed before asking again.

    static AcEdVerdict accept(int result = RTNORM) { return {true, result, {}}; }
    static AcEdVerdict refuse(const QString &complaint) { return {false, RTNORM, complaint}; }
};

/// Asks until the answer is taken, a bounded number of times: then the command is cancelled. Enter, cancel,
/// keywords and free texts are settled here by `rules`; `take` sees only other answers.
int acedPromptFor(const AcEdPrompt &prompt, const AcEdRules &rules,
                  const std::function<AcEdVerdict(const AcEdAnswer &)> &take);

struct AcEdAngleFormat;
/// From AUNITS, ANGBASE and ANGDIR.
AcEdAngleFormat acedAngleFormat();
/// The point of an answer in the current UCS, remembered as the last point; none when it is no point.
std::optional<AcGePoint3d> acedAnswerPoint(const AcEdAnswer &answer, const AcGePoint3d *base);
/// LASTPOINT, in the current UCS.
AcGePoint3d acedLastPoint();
void acedSetLastPoint(const AcGePoint3d &point);
