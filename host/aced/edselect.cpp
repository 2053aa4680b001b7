// Selection sets by window, crossing, filter and by the user.
#include "host/aced/edselect.h"

#include "host/acdb/dbsymtb.h"
#include "host/aced/edfilter.h"
#include "host/aced/edpick.h"
#include "host/aced/edprompt.h"
#include "host/aced/edsysvar.h"
#include "host/aced/edview.h"
#include "host/acgi/query/spatial_index.h"
#include "host/acgi/query/visibility.h"
#include "host/base/host_text.h"

#include <algorithm>
#include <unordered_set>

// Selecting without asking ------------------------------------------------------------------------

static void newestFirst(AcEdSelectionSet &set)
{
    std::sort(set.begin(), set.end(),
              [](AcDbObjectId a, AcDbObjectId b) { return a.stub()->index > b.stub()->index; });
}

static void addPassing(const AcDbDatabase &database, AcDbObjectId space, const AcEdFilter &filter,
                       AcEdSelectionSet &set)
{
    const BlockContents *const contents = database.blockContents(space);
    if (!contents)
        return;
    for (const std::uint32_t index : contents->entities) {
        const AcDbObjectId id(database.stub(index));
        if (filter.passes(id))
            set.push_back(id);
    }
}

/// Everything that passes, what is frozen or off included, from model space and all layouts.
static AcEdSelectionSet everything(const AcDbDatabase &database, const AcEdFilter &filter)
{
    AcEdSelectionSet set;
    for (const AcDbObjectId space : acdbLayoutBlocks(database))
        addPassing(database, space, filter, set);
    newestFirst(set);
    return set;
}

static AcEdSelectionSet visibleInSpace(const AcDbDatabase &database, const AcEdFilter &filter)
{
    AcEdSelectionSet set;
    addPassing(database, database.currentSpaceId(), filter, set);
    acgi::Visibility visibility;
    std::erase_if(set, [&visibility](AcDbObjectId id) {
        const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
        return !entity || !visibility.isVisible(*entity);
    });
    newestFirst(set);
    return set;
}

/// Corners in the current UCS; the rectangle stands upright in the view.
static AcEdSelectionSet inWindow(const AcApDocument &document, const AcGePoint3d &corner1,
                                 const AcGePoint3d &corner2, bool crossing, const AcEdFilter &filter)
{
    AcDbDatabase &database = *document.database();
    const acgi::Window window = acgi::Window::fromCorners(
        acedTrans(corner1, AcEdSpace::ucs, AcEdSpace::world),
        acedTrans(corner2, AcEdSpace::ucs, AcEdSpace::world), -document.view().twist);
    acgi::SpatialIndex &index = acgi::spatialIndexOf(database);
    AcEdSelectionSet set = crossing ? index.crossingWindow(database.currentSpaceId(), window)
                                    : index.insideWindow(database.currentSpaceId(), window);
    std::erase_if(set, [&filter](AcDbObjectId id) { return !filter.passes(id); });
    newestFirst(set);
    return set;
}

/// Of entities chosen earlier, those that still are there, in this space, and pass.
static AcEdSelectionSet stillThere(const AcDbDatabase &database, const std::vector<AcDbObjectId> &chosen,
                                   const AcEdFilter &filter)
{
    const std::uint32_t space = database.currentSpaceId().stub()->index;
    AcEdSelectionSet set;
    for (const AcDbObjectId id : chosen) {
        if (id.database() == &database && id.isValid() && id.stub()->owner == space && filter.passes(id))
            set.push_back(id);
    }
    return set;
}

static AcEdSelectionSet lastOne(const AcApDocument &document, const AcEdFilter &filter)
{
    const AcDbObjectId last = acedLastEntity(document);
    return filter.passes(last) ? AcEdSelectionSet{last} : AcEdSelectionSet();
}

// Selecting by the user ---------------------------------------------------------------------------

namespace
{

class UserSelection
{
public:
    UserSelection(AcApDocument &document, const AcEdFilter &filter, const QString &addPrompt)
        : m_document(document), m_filter(filter), m_addPrompt(addPrompt)
    {
    }
    /// RTNORM also when nothing was selected; RTCAN.
    int run(bool once);
    AcEdSelectionSet chosen() const;

private:
    AcEdRules rules() const;
    int ask(std::optional<AcEdPicked> &picked);
    int applyKeyword(const QString &keyword);
    int applyPick(const AcEdPicked &picked);
    int askWindow(bool crossing);
    int finishImpliedWindow(const AcGePoint3d &corner);
    void apply(const AcEdSelectionSet &found);
    void applyPointed(const AcEdSelectionSet &found);

    AcApDocument &m_document;
    const AcEdFilter &m_filter;
    QString m_addPrompt;
    bool m_removing = false;
    bool m_once = false;
    bool m_acted = false;     ///< The last round chose or missed something.
    AcEdSelectionSet m_order; ///< As chosen; what was removed again is no member.
    std::unordered_set<AcDbObjectId> m_members;
};

AcEdRules UserSelection::rules() const
{
    AcEdRules rules;
    rules.keywords = QStringLiteral("Window Crossing BOX ALL Last Previous Add Remove SIngle").split(u' ');
    rules.globalNames = rules.keywords;
    return rules;
}

int UserSelection::ask(std::optional<AcEdPicked> &picked)
{
    AcEdPrompt prompt;
    prompt.kind = AcEdPromptKind::selection;
    prompt.message = m_removing ? Host::tr("\n删除对象: ") : m_addPrompt;
    return acedPromptFor(prompt, rules(), [&](const AcEdAnswer &answer) {
        picked = acedReadPick(m_document, answer, m_filter);
        const QString complaint =
            Host::tr("无效选择。需要点、窗口(W)、窗交(C)、上一个(L)、前一个(P)、全部(ALL)、"
                     "添加(A)或删除(R)。");
        return picked ? AcEdVerdict::accept() : AcEdVerdict::refuse(complaint);
    });
}

/// Filters have been applied by whoever found the entities.
void UserSelection::apply(const AcEdSelectionSet &found)
{
    m_acted = true;
    std::size_t changed = 0;
    for (const AcDbObjectId id : found) {
        if (m_removing)
            changed += m_members.erase(id);
        else if (m_members.insert(id).second && ++changed)
            m_order.push_back(id);
    }
    acutPrintf(Host::tr("\n%1 %2 个，总计 %3 个")
                   .arg(m_removing ? Host::tr("删除") : Host::tr("找到"))
                   .arg(changed)
                   .arg(m_members.size()));
    acedFrontEnd().showChosen(chosen());
}

/// Shift takes away what is pointed at, as Remove does for all that follows.
void UserSelection::applyPointed(const AcEdSelectionSet &found)
{
    const bool wasRemoving = m_removing;
    m_removing = wasRemoving || acedFrontEnd().heldKeys().contains(QStringLiteral("Shift"));
    apply(found);
    m_removing = wasRemoving;
}

AcEdSelectionSet UserSelection::chosen() const
{
    AcEdSelectionSet set;
    std::unordered_set<AcDbObjectId> left = m_members;
    // Backwards, so that what was removed and added again stands where it was added last.
    for (auto id = m_order.rbegin(); id != m_order.rend(); ++id) {
        if (left.erase(*id))
            set.push_back(*id);
    }
    std::reverse(set.begin(), set.end());
    return set;
}

int UserSelection::askWindow(bool crossing)
{
    AcGePoint3d first;
    AcGePoint3d second;
    int result = acedGetPoint(nullptr, Host::tr("\n指定第一个角点: "), first);
    if (result == RTNORM)
        result = acedGetCorner(first, Host::tr("\n指定对角点: "), second);
    if (result == RTNORM)
        apply(inWindow(m_document, first, second, crossing, m_filter));
    return result == RTCAN ? RTCAN : RTNORM;
}

/// Drawn to the right it is a window, to the left a crossing window.
int UserSelection::finishImpliedWindow(const AcGePoint3d &corner)
{
    AcGePoint3d other;
    const int result = acedGetCorner(corner, Host::tr("\n指定对角点: "), other);
    if (result != RTNORM)
        return result == RTCAN ? RTCAN : RTNORM;
    const AcGeVector3d way = acedTrans(other - corner, AcEdSpace::ucs, AcEdSpace::display);
    applyPointed(inWindow(m_document, corner, other, way.x < 0, m_filter));
    return RTNORM;
}

int UserSelection::applyKeyword(const QString &keyword)
{
    const AcDbDatabase &database = *m_document.database();
    if (keyword == u"Window" || keyword == u"Crossing")
        return askWindow(keyword == u"Crossing");
    if (keyword == u"BOX") {
        AcGePoint3d corner;
        const int result = acedGetPoint(nullptr, Host::tr("\n指定第一个角点: "), corner);
        return result == RTNORM ? finishImpliedWindow(corner) : result == RTCAN ? int(RTCAN) : int(RTNORM);
    }
    if (keyword == u"ALL")
        apply(visibleInSpace(database, m_filter));
    else if (keyword == u"Last")
        apply(lastOne(m_document, m_filter));
    else if (keyword == u"Previous")
        apply(stillThere(database, m_document.previousSet(), m_filter));
    else if (keyword == u"SIngle")
        m_once = true;
    else
        m_removing = keyword == u"Remove";
    return RTNORM;
}

int UserSelection::applyPick(const AcEdPicked &picked)
{
    if (!picked.entity.isNull()) {
        applyPointed({picked.entity});
        return RTNORM;
    }
    return finishImpliedWindow(acedTrans(picked.where, AcEdSpace::world, AcEdSpace::ucs));
}

int UserSelection::run(bool once)
{
    m_once = once;
    for (;;) {
        m_acted = false;
        std::optional<AcEdPicked> picked;
        int result = ask(picked);
        if (result == RTNONE)
            return RTNORM;
        if (result == RTKWORD)
            result = applyKeyword(acedGetInput());
        else if (result == RTNORM)
            result = applyPick(*picked);
        if (result == RTCAN)
            return RTCAN;
        if (m_once && m_acted)
            return RTNORM;
    }
}

} // namespace

static int selectByUser(AcApDocument &document, const QString &addPrompt, const AcEdFilter &filter, bool once,
                        AcEdSelectionSet &selected)
{
    if (!once && !document.pickSet().empty() && acedIntVar(QStringLiteral("PICKFIRST"), 1) != 0) {
        selected = stillThere(*document.database(), document.pickSet(), filter);
        document.pickSet().clear();
        if (!selected.empty()) {
            acutPrintf(Host::tr("\n找到 %1 个").arg(selected.size()));
            document.previousSet() = selected;
            acedFrontEnd().showChosen(selected);
            return RTNORM;
        }
    }
    UserSelection user(document, filter, addPrompt);
    const int result = user.run(once);
    if (result == RTCAN)
        return RTCAN;
    selected = user.chosen();
    if (!selected.empty())
        document.previousSet() = selected;
    return RTNORM;
}

// The calls ---------------------------------------------------------------------------------------

static QString addPromptText()
{
    return Host::tr("\n选择对象: ");
}

namespace
{
struct Request {
    QString mode;
    const AcGePoint3d *point1;
    const AcGePoint3d *point2;
    QString addPrompt;
};
} // namespace

static int select(AcApDocument &document, const Request &request, const AcEdFilter &filter,
                  AcEdSelectionSet &selected)
{
    const AcDbDatabase &database = *document.database();
    const QString &mode = request.mode;
    if (mode == u"X") {
        selected = everything(database, filter);
    } else if (mode == u"A") {
        selected = visibleInSpace(database, filter);
    } else if (mode == u"W" || mode == u"C") {
        if (!request.point1 || !request.point2)
            return RTERROR;
        selected = inWindow(document, *request.point1, *request.point2, mode == u"C", filter);
    } else if (mode == u"L") {
        selected = lastOne(document, filter);
    } else if (mode == u"P") {
        selected = stillThere(database, document.previousSet(), filter);
    } else if (mode == u"I") {
        selected = stillThere(database, document.pickSet(), filter);
    } else if (mode.isEmpty() || mode == u":S") {
        return selectByUser(document, request.addPrompt, filter, !mode.isEmpty(), selected);
    } else {
        return RTERROR;
    }
    return RTNORM;
}

static int run(const Request &request, const ResbufList &filter, AcEdSelectionSet &selected)
{
    selected.clear();
    AcApDocument *const document = curDoc();
    if (!document)
        return RTERROR;
    const auto compiled = AcEdFilter::compile(filter);
    if (!compiled) {
        acutPrintf(u'\n' + compiled.error());
        return RTERROR;
    }
    const int result = select(*document, request, *compiled, selected);
    return result == RTNORM && selected.empty() ? int(RTERROR) : result;
}

/// "_X" is "X".
static QString plainMode(const QString &mode)
{
    const QString upper = mode.trimmed().toUpper();
    return upper.startsWith(u'_') ? upper.mid(1) : upper;
}

int acedSSGet(const QString &mode, const AcGePoint3d *point1, const AcGePoint3d *point2,
              const ResbufList &filter, AcEdSelectionSet &selected)
{
    return run({plainMode(mode), point1, point2, addPromptText()}, filter, selected);
}

int acedSSGetPrompt(const QString &mode, const QString &addPrompt, const ResbufList &filter,
                    AcEdSelectionSet &selected)
{
    return run({plainMode(mode), nullptr, nullptr, addPrompt.isEmpty() ? addPromptText() : addPrompt}, filter,
               selected);
}

bool acedPassesFilter(AcDbObjectId entity, const ResbufList &filter)
{
    const auto compiled = AcEdFilter::compile(filter);
    if (!compiled)
        acutPrintf(u'\n' + compiled.error());
    return compiled && compiled->passes(entity);
}
