#include "host/aced/edprompt.h"

#include "host/aced/edcommands.h"
#include "host/aced/edlisp.h"
#include "host/aced/edparse.h"
#include "host/aced/edsysvar.h"
#include "host/base/format_number.h"
#include "host/base/host_text.h"

// Feeds -------------------------------------------------------------------------------------------

static std::vector<AcEdFeed *> &feeds()
{
    static std::vector<AcEdFeed *> stack;
    return stack;
}

AcEdFeed::AcEdFeed(Kind kind, std::deque<AcEdToken> tokens) : m_kind(kind), m_tokens(std::move(tokens))
{
    feeds().push_back(this);
}

AcEdFeed::~AcEdFeed()
{
    std::erase(feeds(), this);
}

std::deque<AcEdToken> acedSplitLine(const QString &line)
{
    std::deque<AcEdToken> words;
    QStringList parts = line.split(u' ');
    if (parts.size() > 1 && parts.last().isEmpty())
        parts.removeLast(); // The last word's own end.
    for (const QString &part : parts)
        words.emplace_back(part);
    return words;
}

static AcEdAnswer answerOf(const AcEdToken &token)
{
    if (const auto *text = std::get_if<QString>(&token))
        return AcEdAnswer::ofText(*text);
    if (const auto *integer = std::get_if<int>(&token))
        return AcEdAnswer::ofText(QString::number(*integer));
    if (const auto *real = std::get_if<double>(&token))
        return AcEdAnswer::ofText(base::formatReal(*real).toString());
    if (const auto *point = std::get_if<AcGePoint3d>(&token))
        return AcEdAnswer::ofPoint(acedTrans(*point, AcEdSpace::ucs, AcEdSpace::world));
    if (const auto *entity = std::get_if<AcDbObjectId>(&token))
        return AcEdAnswer::ofEntity(*entity, {});
    return {};
}

static void echo(const AcEdPrompt &prompt, const AcEdAnswer &answer)
{
    if (acedIntVar(QStringLiteral("CMDECHO")) != 0)
        acutPrintf(prompt.message + answer.typed);
}

/// A text that may hold blanks is the rest of its line.
static QString joinRest(AcEdFeed &feed, QString text)
{
    while (!feed.tokens().empty() && std::holds_alternative<QString>(feed.tokens().front())) {
        text += u' ' + std::get<QString>(feed.tokens().front());
        feed.tokens().pop_front();
    }
    return text;
}

std::optional<AcEdAnswer> acedNextAnswer(const AcEdPrompt &prompt)
{
    for (AcEdFeed *const feed : feeds())
        feed->lastAnswer = AcEdFeed::LastAnswer::elsewhere;
    for (std::size_t i = feeds().size(); i-- > 0;) {
        AcEdFeed &feed = *feeds()[i];
        if (feed.tokens().empty() && feed.kind() == AcEdFeed::open)
            continue;
        if (feed.tokens().empty()) {
            acedRefuse(Host::tr("提示没有得到回答: %1").arg(prompt.message.trimmed()));
            acedEditor()->requestCancel();
            return std::nullopt;
        }
        const AcEdToken token = std::move(feed.tokens().front());
        feed.tokens().pop_front();
        const bool isPause = std::holds_alternative<AcEdPause>(token);
        feed.lastAnswer = isPause ? AcEdFeed::LastAnswer::users : AcEdFeed::LastAnswer::ours;
        if (isPause)
            continue;
        AcEdAnswer answer = answerOf(token);
        if (prompt.allowsBlanks && feed.kind() == AcEdFeed::open)
            answer.typed = joinRest(feed, answer.typed);
        echo(prompt, answer);
        return answer;
    }
    auto answer = acedFrontEnd().answer(prompt);
    if (!answer) {
        acedEditor()->requestCancel();
        acedEditor()->requestQuit();
    }
    return answer;
}

void acedRefuse(const QString &reason)
{
    for (AcEdFeed *const feed : feeds()) {
        if (feed->lastAnswer == AcEdFeed::LastAnswer::ours)
            feed->tokens().clear();
        else if (feed->lastAnswer == AcEdFeed::LastAnswer::users)
            feed->tokens().push_front(PAUSE); // The user may try again.
    }
    acedFrontEnd().refuseAnswer(reason);
}

// Rules -------------------------------------------------------------------------------------------

static AcEdRules &pendingRules()
{
    static AcEdRules rules;
    return rules;
}

static QString &inputText()
{
    static QString text;
    return text;
}

void acedInitGet(int bits, const QString &keywords)
{
    AcEdRules &rules = pendingRules();
    rules.bits = bits;
    const QStringList words = keywords.split(u' ', Qt::SkipEmptyParts);
    const qsizetype mark = words.indexOf(QStringLiteral("_"));
    rules.keywords = mark < 0 ? words : words.first(mark);
    rules.globalNames = mark < 0 ? words : words.mid(mark + 1);
    rules.globalNames.resize(rules.keywords.size());
    for (qsizetype i = 0; i < rules.keywords.size(); ++i) {
        QString &name = rules.globalNames[i];
        name = (name.isEmpty() ? rules.keywords[i] : name).section(u',', 0, 0);
    }
}

AcEdRules acedTakeRules()
{
    return std::exchange(pendingRules(), {});
}

void acedSetInput(const QString &text)
{
    inputText() = text;
}

QString acedGetInput()
{
    return inputText();
}

// Asking ------------------------------------------------------------------------------------------

/// A LISP value as the answer that it stands for; empty for nil.
static QString lispAnswer(const QString &text)
{
    if (text == u"nil")
        return {};
    if (text.size() >= 2 && text.startsWith(u'"') && text.endsWith(u'"'))
        return text.mid(1, text.size() - 2)
            .replace(QLatin1String("\\\""), QLatin1String("\""))
            .replace(QLatin1String("\\\\"), QLatin1String("\\"));
    if (text.startsWith(u'(') && text.endsWith(u')'))
        return text.mid(1, text.size() - 2).split(u' ', Qt::SkipEmptyParts).join(u',');
    return text;
}

/// "'ZOOM E" inside another command; true when there was one to run.
static bool ranTransparently(const QString &typed)
{
    if (!typed.startsWith(u'\''))
        return false;
    const AcEdCommand *const command = acedRegCmds()->lookup(typed.section(u' ', 0, 0));
    if (!command || !(command->flags & ACRX_CMD_TRANSPARENT))
        return false;
    acedEditor()->execute(typed.mid(1));
    return true;
}

namespace
{

/// One round of a prompt: what the typed text settles before the prompt's own reading.
struct Round {
    enum Outcome { finished, again, readOn };
    Outcome outcome = readOn;
    int result = RTNORM;
    QString complaint;
};

} // namespace

static Round settleKeyword(const QString &typed, const AcEdRules &rules)
{
    const bool global = typed.size() > 1 && typed.startsWith(u'_');
    const auto match =
        global ? acedMatchKeyword(typed.mid(1), rules.globalNames) : acedMatchKeyword(typed, rules.keywords);
    if (match.ambiguous)
        return {Round::again, RTNORM, Host::tr("回答不明确，请说明是 %1。").arg(match.candidates.join(u'/'))};
    if (match.index < 0)
        return {};
    acedSetInput(rules.globalNames[match.index]);
    return {Round::finished, RTKWORD, {}};
}

static Round settleText(AcEdAnswer &answer, const AcEdRules &rules)
{
    answer.typed = answer.typed.trimmed();
    if (ranTransparently(answer.typed))
        return {Round::again, RTNORM, {}};
    if (answer.typed.startsWith(u'(')) {
        const auto value = acedEvaluateLisp(answer.typed);
        if (!value)
            return {Round::again, RTNORM, value.error()};
        answer.typed = lispAnswer(*value);
        if (answer.typed.isEmpty())
            return {Round::again, RTNORM, {}};
    }
    if (answer.typed.isEmpty()) {
        if (rules.has(RSG_NONULL))
            return {Round::again, RTNORM, Host::tr("必须给出回答。")};
        return {Round::finished, RTNONE, {}};
    }
    return settleKeyword(answer.typed, rules);
}

static Round playRound(AcEdAnswer &answer, const AcEdRules &rules,
                       const std::function<AcEdVerdict(const AcEdAnswer &)> &take)
{
    if (answer.kind == AcEdAnswer::cancel) {
        acedEditor()->requestCancel();
        return {Round::finished, RTCAN, {}};
    }
    if (answer.kind == AcEdAnswer::text) {
        const Round settled = settleText(answer, rules);
        if (settled.outcome != Round::readOn)
            return settled;
    }
    const AcEdVerdict verdict = take(answer);
    if (verdict.done)
        return {Round::finished, verdict.result, {}};
    if (rules.has(RSG_OTHER) && answer.kind == AcEdAnswer::text) {
        acedSetInput(answer.typed);
        return {Round::finished, RTKWORD, {}};
    }
    return {Round::again, RTNORM, verdict.complaint};
}

/// Says what was typed, which need not be on the screen any more.
static QString complaintAbout(const QString &typed, const QString &complaint)
{
    return typed.isEmpty() ? complaint : Host::tr("“%1”: %2").arg(typed, complaint);
}

int acedPromptFor(const AcEdPrompt &prompt, const AcEdRules &rules,
                  const std::function<AcEdVerdict(const AcEdAnswer &)> &take)
{
    AcEdPrompt shown = prompt;
    shown.keywords = rules.keywords;
    shown.allowsEmpty = !rules.has(RSG_NONULL);
    // A person is asked again, but not for ever; a script ends at its first wrong answer, before it gets out
    // of step.
    constexpr int kMostAttempts = 10;
    for (int attempt = 0; attempt < kMostAttempts; ++attempt) {
        auto answer = acedNextAnswer(shown);
        if (!answer)
            return RTCAN;
        const QString typed = answer->typed.trimmed();
        const Round round = playRound(*answer, rules, take);
        if (round.outcome == Round::finished)
            return round.result;
        if (!round.complaint.isEmpty())
            acedRefuse(complaintAbout(typed, round.complaint));
    }
    acutPrintf(Host::tr("\n没有得到可用的回答，命令已取消。"));
    acedEditor()->requestCancel();
    return RTCAN;
}

// Points ------------------------------------------------------------------------------------------

namespace
{

struct LastPoint {
    AcGePoint3d point; ///< In world coordinates, because it outlives a change of the UCS.
};

} // namespace

AcGePoint3d acedLastPoint()
{
    AcApDocument *const document = curDoc();
    return document
               ? acedTrans(document->attachments().get<LastPoint>().point, AcEdSpace::world, AcEdSpace::ucs)
               : AcGePoint3d();
}

void acedSetLastPoint(const AcGePoint3d &point)
{
    if (AcApDocument *const document = curDoc())
        document->attachments().get<LastPoint>().point = acedTrans(point, AcEdSpace::ucs, AcEdSpace::world);
}

AcEdAngleFormat acedAngleFormat()
{
    return {acedIntVar(QStringLiteral("AUNITS")), acedRealVar(QStringLiteral("ANGBASE")),
            acedIntVar(QStringLiteral("ANGDIR")) != 0};
}

static std::optional<AcGePoint3d> typedPoint(const QString &text, const AcGePoint3d *base)
{
    const auto typed = acedParsePoint(text, acedAngleFormat());
    if (!typed)
        return std::nullopt;
    if (typed->relative) {
        AcGeVector3d offset = typed->point.asVector();
        if (typed->world)
            offset = acedTrans(offset, AcEdSpace::world, AcEdSpace::ucs);
        return (base ? *base : acedLastPoint()) + offset;
    }
    AcGePoint3d point = typed->point;
    if (!typed->hasZ)
        point.z = acedRealVar(QStringLiteral("ELEVATION"));
    return typed->world ? acedTrans(point, AcEdSpace::world, AcEdSpace::ucs) : point;
}

std::optional<AcGePoint3d> acedAnswerPoint(const AcEdAnswer &answer, const AcGePoint3d *base)
{
    std::optional<AcGePoint3d> point;
    if (answer.kind == AcEdAnswer::text)
        point = typedPoint(answer.typed, base);
    else if (answer.kind != AcEdAnswer::cancel)
        point = acedTrans(answer.where, AcEdSpace::world, AcEdSpace::ucs);
    if (point)
        acedSetLastPoint(*point);
    return point;
}
