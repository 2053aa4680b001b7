// Prompts for points, numbers, texts and keywords.
#include "host/aced/edinput.h"

#include "host/aced/edcommands.h"
#include "host/aced/edparse.h"
#include "host/aced/edprompt.h"
#include "host/base/host_text.h"

#include <cmath>
#include <limits>

static AcEdPrompt promptOf(AcEdPromptKind kind, const QString &message, const AcGePoint3d *base)
{
    AcEdPrompt prompt;
    prompt.kind = kind;
    prompt.message = message;
    prompt.hasBase = base != nullptr;
    if (base)
        prompt.base = *base;
    return prompt;
}

/// "需要数值。" or "需要数值或选项关键字。"
static QString required(const QString &what, const AcEdRules &rules)
{
    return Host::tr("需要%1%2。").arg(what, rules.keywords.isEmpty() ? QString() : Host::tr("或选项关键字"));
}

// Points ------------------------------------------------------------------------------------------

static int askPoint(const AcEdPrompt &prompt, const AcEdRules &rules, const AcGePoint3d *base,
                    AcGePoint3d &point)
{
    return acedPromptFor(prompt, rules, [&](const AcEdAnswer &answer) {
        const auto given = acedAnswerPoint(answer, base);
        if (!given)
            return AcEdVerdict::refuse(required(Host::tr("点"), rules));
        point = *given;
        return AcEdVerdict::accept();
    });
}

int acedGetPoint(const AcGePoint3d *base, const QString &prompt, AcGePoint3d &point)
{
    return askPoint(promptOf(AcEdPromptKind::point, prompt, base), acedTakeRules(), base, point);
}

int acedGetTrackedPoint(const AcGePoint3d *base, const QString &prompt, AcEdCursorTracker &tracker,
                        AcGePoint3d &point)
{
    AcEdPrompt shown = promptOf(AcEdPromptKind::point, prompt, base);
    shown.tracker = &tracker;
    return askPoint(shown, acedTakeRules(), base, point);
}

int acedGetCorner(const AcGePoint3d &base, const QString &prompt, AcGePoint3d &corner)
{
    return askPoint(promptOf(AcEdPromptKind::corner, prompt, &base), acedTakeRules(), &base, corner);
}

/// The second of two points that together give a distance or an angle.
static int askSecondPoint(const AcGePoint3d &first, AcGePoint3d &second)
{
    AcEdRules rules;
    rules.bits = RSG_NONULL;
    return askPoint(promptOf(AcEdPromptKind::point, Host::tr("\n指定第二点: "), &first), rules, &first,
                    second);
}

// Numbers -----------------------------------------------------------------------------------------

/// Empty when the number may stand.
static QString forbidden(double value, const AcEdRules &rules)
{
    const bool negative = rules.has(RSG_NONEG) && value < 0;
    const bool zero = rules.has(RSG_NOZERO) && value == 0;
    if (!negative && !zero)
        return {};
    if (rules.has(RSG_NONEG) && rules.has(RSG_NOZERO))
        return Host::tr("值必须为正且非零。");
    return negative ? Host::tr("值必须为正或零。") : Host::tr("值必须非零。");
}

static AcEdVerdict takeReal(double given, const AcEdRules &rules, double &value)
{
    const QString complaint = forbidden(given, rules);
    if (!complaint.isEmpty())
        return AcEdVerdict::refuse(complaint);
    value = given;
    return AcEdVerdict::accept();
}

static int askInteger(const AcEdPrompt &prompt, const AcEdRules &rules, int &value)
{
    constexpr double kLow = std::numeric_limits<int>::min();
    constexpr double kHigh = std::numeric_limits<int>::max();
    return acedPromptFor(prompt, rules, [&](const AcEdAnswer &answer) {
        const auto given = answer.kind == AcEdAnswer::text ? acedParseNumber(answer.typed) : std::nullopt;
        if (!given || *given != std::floor(*given))
            return AcEdVerdict::refuse(required(Host::tr("整数"), rules));
        if (*given < kLow || *given > kHigh)
            return AcEdVerdict::refuse(Host::tr("需要 %1 到 %2 之间的整数。").arg(int(kLow)).arg(int(kHigh)));
        double checked = 0;
        const AcEdVerdict verdict = takeReal(*given, rules, checked);
        if (verdict.done)
            value = int(checked);
        return verdict;
    });
}

int acedGetInt(const QString &prompt, int &value)
{
    return askInteger(promptOf(AcEdPromptKind::integer, prompt, nullptr), acedTakeRules(), value);
}

int acedGetReal(const QString &prompt, double &value)
{
    const AcEdRules rules = acedTakeRules();
    return acedPromptFor(
        promptOf(AcEdPromptKind::real, prompt, nullptr), rules, [&](const AcEdAnswer &answer) {
            const auto given = answer.kind == AcEdAnswer::text ? acedParseNumber(answer.typed) : std::nullopt;
            return given ? takeReal(*given, rules, value)
                         : AcEdVerdict::refuse(required(Host::tr("数值"), rules));
        });
}

namespace
{

/// What a prompt gets from an answer that is no number: one point, with the base or a second one.
struct TwoPoints {
    AcGePoint3d from;
    AcGePoint3d to;
    int result = RTNORM;
};

} // namespace

static std::optional<TwoPoints> twoPoints(const AcEdAnswer &answer, const AcGePoint3d *base)
{
    const auto point = acedAnswerPoint(answer, base);
    if (!point)
        return std::nullopt;
    if (base)
        return TwoPoints{*base, *point, RTNORM};
    TwoPoints points{*point, {}, RTNORM};
    points.result = askSecondPoint(points.from, points.to);
    return points;
}

int acedGetDist(const AcGePoint3d *base, const QString &prompt, double &distance, AcEdCursorTracker *tracker)
{
    const AcEdRules rules = acedTakeRules();
    AcEdPrompt shown = promptOf(AcEdPromptKind::distance, prompt, base);
    shown.tracker = tracker;
    return acedPromptFor(shown, rules, [&](const AcEdAnswer &answer) {
        if (answer.kind == AcEdAnswer::text) {
            if (const auto given = acedParseNumber(answer.typed))
                return takeReal(*given, rules, distance);
        }
        const auto points = twoPoints(answer, base);
        if (!points)
            return AcEdVerdict::refuse(required(Host::tr("距离数值、两点"), rules));
        if (points->result != RTNORM)
            return AcEdVerdict::accept(points->result);
        AcGeVector3d way = points->to - points->from;
        if (rules.has(RSG_2D))
            way.z = 0;
        return takeReal(way.length(), rules, distance);
    });
}

int acedGetAngle(const AcGePoint3d *base, const QString &prompt, double &angle, AcEdCursorTracker *tracker)
{
    const AcEdRules rules = acedTakeRules();
    const AcEdAngleFormat format = acedAngleFormat();
    AcEdPrompt shown = promptOf(AcEdPromptKind::angle, prompt, base);
    shown.tracker = tracker;
    return acedPromptFor(shown, rules, [&](const AcEdAnswer &answer) {
        if (answer.kind == AcEdAnswer::text) {
            if (const auto given = acedParseAngle(answer.typed, format))
                return takeReal(*given, rules, angle);
        }
        const auto points = twoPoints(answer, base);
        if (!points)
            return AcEdVerdict::refuse(required(Host::tr("角度数值、两点"), rules));
        if (points->result != RTNORM)
            return AcEdVerdict::accept(points->result);
        return takeReal(directionAngle(points->from, points->to) - format.base, rules, angle);
    });
}

// Texts and keywords ------------------------------------------------------------------------------

/// Without blanks a text ends at the first one; quotes keep them in.
static QString firstWord(const QString &typed)
{
    const QString trimmed = typed.trimmed();
    if (trimmed.startsWith(u'"') && trimmed.indexOf(u'"', 1) > 0)
        return trimmed.section(u'"', 1, 1);
    return trimmed.section(u' ', 0, 0);
}

int acedGetString(bool blanksAllowed, const QString &prompt, QString &value)
{
    acedTakeRules(); // Texts know neither rules nor keywords.
    AcEdPrompt shown = promptOf(AcEdPromptKind::string, prompt, nullptr);
    shown.allowsBlanks = blanksAllowed;
    const auto answer = acedNextAnswer(shown);
    if (!answer || answer->kind == AcEdAnswer::cancel) {
        if (answer)
            acedEditor()->requestCancel();
        return RTCAN;
    }
    value = blanksAllowed ? answer->typed : firstWord(answer->typed);
    return RTNORM;
}

int acedGetKword(const QString &prompt, QString &keyword)
{
    const AcEdRules rules = acedTakeRules();
    if (rules.keywords.isEmpty() && !rules.has(RSG_OTHER))
        return RTERROR; // The caller offered nothing to choose from.
    const int result =
        acedPromptFor(promptOf(AcEdPromptKind::keyword, prompt, nullptr), rules,
                      [](const AcEdAnswer &) { return AcEdVerdict::refuse(Host::tr("无效的选项关键字。")); });
    if (result != RTKWORD)
        return result;
    keyword = acedGetInput();
    return RTNORM;
}
