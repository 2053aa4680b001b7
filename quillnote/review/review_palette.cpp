#include "quillnote/review/review_palette.h"

#include "quillnote/authoring/collect_marks.h"
#include "quillnote/authoring/redraw_marks.h"
#include "quillnote/entity/mark_dictionary.h"
#include "quillnote/entity/mark_values.h"
#include "quillnote/entity/password.h"
#include "quillnote/review/answer.h"
#include "quillnote/review/show_mark.h"
#include "quillnote/snapshot/snapshot_viewer.h"
#include "quillnote/ui/phrase_bank.h"
#include "quillnote/ui/review_bar.h"

#include "host/acdb/dbundo.h"
#include "host/aced/edcommands.h"
#include "host/aced/edfrontend.h"
#include "host/aced/edinput.h"
#include "host/aced/edmessage.h"

#include <QPointer>

#include <algorithm>
#include <limits>

namespace
{

enum class Zoom { no, yes };

class ReviewPalette
{
public:
    ReviewPalette();
    ~ReviewPalette();

    void open(AcDbObjectId mark);
    void refresh();
    void storeInput(AcApDocument &document, bool forSaving);
    void forget(const AcApDocument &document);
    /// False when the main window took it along.
    bool hasWindow() const { return !m_bar.isNull(); }

private:
    CMarkWnd2 &panel() { return m_bar->panel(); }
    void connectPanel();
    void refreshLater();

    // What is on the list
    void showDocument(AcApDocument *document);
    void reload();
    std::size_t placeOf(AcDbObjectId mark);
    const MarkSummary &listed(std::size_t place) { return m_index.marks()[m_list[place]]; }

    // What is shown
    void show(std::size_t place, Zoom zoom);
    void showNothing(const QString &why);
    void showFields(const ReviewedMark &mark);
    void showPlace();
    void followShown();
    void rememberPosition();

    // What a person does
    bool commit(bool insideCommand = false);
    void step(int by);
    bool goTo(AcDbObjectId mark, bool insideCommand = false);
    void chooseReviewer(const QString &entry);
    void goToNumber(const QString &typed);
    void search(const QString &text);
    void stepResult(int by);
    void enableResults();
    void allowOpinionEdit();
    void takePhrase();
    void storePhrase();

    QPointer<CMyDockControlBar> m_bar;
    MarkIndex m_index;
    AcApDocument *m_document = nullptr;
    std::vector<std::size_t> m_list; ///< Places in the index of the marks that the filter passes.
    std::size_t m_at = 0;            ///< Place in the list.
    std::optional<ReviewedMark> m_shown;
    AcDbObjectId m_lost; ///< The mark that was shown and is gone; it may come back.
    bool m_isLater = false;
    std::map<const AcApDocument *, ReviewPosition> m_positions;
    std::vector<AcDbObjectId> m_results;
    std::size_t m_result = 0;
};

/// The reviewer filter lives as long as the program.
QString &reviewerFilter()
{
    static QString filter = QStringLiteral("ALL");
    return filter;
}

std::unique_ptr<ReviewPalette> &palette()
{
    static std::unique_ptr<ReviewPalette> one;
    return one;
}

// Building ----------------------------------------------------------------------------------------

ReviewPalette::ReviewPalette() : m_bar(new CMyDockControlBar), m_index([this] { refreshLater(); })
{
    connectPanel();
}

ReviewPalette::~ReviewPalette()
{
    m_index.watch(nullptr);
    if (m_bar)
        m_bar->disconnect();
    delete m_bar.data();
}

void ReviewPalette::connectPanel()
{
    CMarkWnd2 *const source = &panel();
    // Whatever a person does, he does it to the drawing as it is now.
    const auto on = [this, source](auto signal, auto act) {
        QObject::connect(source, signal, source, [this, act](auto... value) {
            refresh();
            act(value...);
        });
    };
    on(&CMarkWnd2::stepWanted, [this](int by) { step(by); });
    on(&CMarkWnd2::reviewerChosen, [this](const QString &entry) { chooseReviewer(entry); });
    on(&CMarkWnd2::numberWanted, [this](const QString &typed) { goToNumber(typed); });
    on(&CMarkWnd2::searchWanted, [this](const QString &text) { search(text); });
    on(&CMarkWnd2::resultWanted, [this](int by) { stepResult(by); });
    on(&CMarkWnd2::saveWanted, [this] { commit(); });
    on(&CMarkWnd2::opinionEditWanted, [this] { allowOpinionEdit(); });
    on(&CMarkWnd2::phraseWanted, [this] { takePhrase(); });
    on(&CMarkWnd2::storingWanted, [this] { storePhrase(); });
    on(&CMarkWnd2::snapshotsToggled,
       [this] { showPictureOf(m_shown ? m_shown->summary.id : AcDbObjectId(), panel().showsSnapshots()); });
    QObject::connect(m_bar, &CMyDockControlBar::closed, source, [this] {
        commit();
        closeSnapshotViewers();
    });
}

void ReviewPalette::open(AcDbObjectId mark)
{
    refresh();
    commit(true);
    m_bar->open();
    refresh();
    if (mark.isNull())
        show(m_at, Zoom::yes);
    else
        goTo(mark, true);
    m_bar->activateWindow();
    panel().focusFeedback();
}

// The drawing -------------------------------------------------------------------------------------

/// Notifications come while marks are open; they are looked at afterwards.
void ReviewPalette::refreshLater()
{
    if (m_isLater || !m_bar)
        return;
    m_isLater = true;
    QMetaObject::invokeMethod(
        &panel(),
        [this] {
            m_isLater = false;
            refresh();
        },
        Qt::QueuedConnection);
}

void ReviewPalette::refresh()
{
    if (!m_bar)
        return;
    AcApDocument *const current = curDoc();
    if (current != m_document || (current && current->database() != m_index.database()))
        showDocument(current);
    else if (m_document && m_index.isStale())
        followShown();
}

void ReviewPalette::showDocument(AcApDocument *document)
{
    m_document = document;
    m_index.watch(document ? document->database() : nullptr);
    m_shown.reset();
    m_lost = {};
    m_results.clear();
    m_list.clear();
    enableResults();
    closeSnapshotViewers();
    if (!document) {
        panel().setReviewers({}, {});
        showNothing(QStringLiteral("没有打开的图形。"));
        return;
    }
    reload();
    if (m_list.empty() && reviewerFilter() != u"ALL") {
        reviewerFilter() = QStringLiteral("ALL");
        reload();
    }
    const auto known = m_positions.find(document);
    const ReviewPosition position =
        known == m_positions.end() ? readReviewPosition(*document->database()) : known->second;
    m_at = std::size_t(std::max<std::int16_t>(position.index, 0)); // show() knows the end.
    show(m_at, Zoom::no);
}

void ReviewPalette::reload()
{
    const std::vector<MarkSummary> &marks = m_index.marks();
    m_list = passingMarks(marks, reviewerFilter());
    panel().setReviewers(reviewersOf(marks), reviewerFilter());
}

/// m_list.size() when it is not on the list.
std::size_t ReviewPalette::placeOf(AcDbObjectId mark)
{
    const std::vector<MarkSummary> &marks = m_index.marks();
    const auto place = std::ranges::find_if(m_list, [&](std::size_t each) { return marks[each].id == mark; });
    return std::size_t(place - m_list.begin());
}

// Showing -----------------------------------------------------------------------------------------

void ReviewPalette::showNothing(const QString &why)
{
    m_shown.reset();
    panel().showMark({});
    panel().setOpinionEditable(false);
    panel().lockAnswer(why);
    showPlace();
}

/// The step buttons. Where a mark is gone both lead to its neighbours.
void ReviewPalette::showPlace()
{
    const std::size_t count = m_list.size();
    const bool isGap = !m_shown;
    panel().enableSteps(count > 0 && m_at > 0, isGap ? m_at < count : m_at + 1 < count);
}

void ReviewPalette::showFields(const ReviewedMark &mark)
{
    CMarkWnd2::Shown shown;
    shown.counter = counterText(mark.summary, m_at, m_list.size());
    shown.reviewerLine = reviewerLine(mark.summary.reviewer, panel().chosenReviewer());
    shown.opinion = mark.summary.opinion;
    shown.feedback = mark.feedback.text;
    shown.status = mark.statusControl();
    panel().showMark(shown);
    panel().setOpinionEditable(false);
    panel().lockAnswer(whyNotAnswered(*m_document, mark.summary.id));
    showPlace();
}

void ReviewPalette::show(std::size_t place, Zoom zoom)
{
    m_lost = {};
    m_shown.reset();
    if (m_list.empty()) {
        m_at = 0;
        closeSnapshotViewers();
        if (m_document)
            showNothing(QStringLiteral("本图中无评图标签。"));
        return;
    }
    m_at = std::min(place, m_list.size() - 1);
    const AcDbObjectId id = listed(m_at).id;
    m_shown = readReviewedMark(id);
    if (!m_shown) {
        showNothing(QStringLiteral("该评图标签无法读取。"));
        return;
    }
    showFields(*m_shown);
    rememberPosition();
    if (zoom == Zoom::no)
        return;
    const bool pictures = panel().showsSnapshots();
    zoomToMark(*m_document, id, standsBesidePicture(id, pictures));
    showPictureOf(id, pictures);
    refreshDrawnMarks();
    acedFrontEnd().lookAgain();
}

/// Marks have come, gone or changed. What a person has typed and not saved stays, unless its mark is gone.
void ReviewPalette::followShown()
{
    const AcDbObjectId id = m_shown ? m_shown->summary.id : m_lost;
    const bool isTyped = m_shown && !changeOf(*m_shown, panel().feedback(), panel().status()).isEmpty();
    const QString typed = panel().feedback();
    const int status = panel().status();
    reload();
    const std::size_t place = placeOf(id);
    if (place == m_list.size()) {
        if (id.isNull()) {
            show(m_at, Zoom::no);
            return;
        }
        m_at = std::min(m_at, m_list.size());
        m_lost = id;
        closeSnapshotViewers();
        showNothing(QStringLiteral("该评图标签已被删除。"));
        return;
    }
    m_at = place;
    m_lost = {};
    m_shown = readReviewedMark(id);
    if (!m_shown) {
        showNothing(QStringLiteral("该评图标签无法读取。"));
        return;
    }
    showFields(*m_shown);
    if (isTyped) {
        panel().setFeedback(typed);
        panel().checkRadio(1009, 1013, status);
    }
}

void ReviewPalette::rememberPosition()
{
    const std::size_t most = std::size_t(std::numeric_limits<std::int16_t>::max());
    m_positions[m_document] = {std::int16_t(std::min(m_at, most)), m_shown->summary.id};
}

// Storing -----------------------------------------------------------------------------------------

/// False when there is something to store and it could not be; then the panel stays where it is. A command
/// that runs would take the answer into its own step, so it is to end first.
bool ReviewPalette::commit(bool insideCommand)
{
    // Of a drawing that is gone nothing is left to ask.
    if (!m_bar || !m_shown || !m_document || m_index.database() != m_document->database() ||
        !m_shown->summary.id.isValid())
        return true;
    const AnswerChange change = changeOf(*m_shown, panel().feedback(), panel().status());
    if (change.isEmpty())
        return true;
    if (const QString reason = whyNotAnswered(*m_document, m_shown->summary.id); !reason.isEmpty()) {
        acedRefuse(reason);
        return false;
    }
    if (!insideCommand && !acedEditor()->activeCommands().isEmpty()) {
        acedRefuse(QStringLiteral("有命令正在执行，请先完成或取消它，再保存回复。"));
        return false;
    }
    if (!storeAnswer(*m_document, m_shown->summary.id, change))
        return false;
    m_shown = readReviewedMark(m_shown->summary.id);
    refresh();
    if (!insideCommand)
        acedFrontEnd().lookAgain();
    return true;
}

void ReviewPalette::storeInput(AcApDocument &document, bool forSaving)
{
    if (&document == m_document)
        commit(true);
    const auto position = m_positions.find(&document);
    if (!forSaving || position == m_positions.end())
        return;
    AcDbDatabase &database = *document.database();
    if (!position->second.mark.isValid())
        position->second.mark = {};
    if (readReviewPosition(database) == position->second)
        return;
    const AcDbUncountedChange quietly(database);
    writeReviewPosition(database, position->second);
}

void ReviewPalette::forget(const AcApDocument &document)
{
    m_positions.erase(&document);
    if (m_document != &document)
        return;
    m_document = nullptr;
    m_index.watch(nullptr);
    m_shown.reset();
    m_lost = {};
    m_list.clear();
    m_results.clear();
    if (!m_bar)
        return;
    enableResults();
    showNothing(QStringLiteral("没有打开的图形。"));
    refreshLater();
}

// Walking -----------------------------------------------------------------------------------------

void ReviewPalette::step(int by)
{
    if (m_list.empty())
        return;
    if (!m_shown && m_lost.isNull())
        return;
    if (!m_shown) { // The mark behind the gap has moved up into its place.
        if (by > 0 ? m_at < m_list.size() : m_at > 0)
            show(by > 0 ? m_at : m_at - 1, Zoom::yes);
        return;
    }
    if (by < 0 ? m_at == 0 : m_at + 1 >= m_list.size())
        return;
    if (!commit())
        return;
    std::vector<std::int16_t> statuses;
    const std::vector<MarkSummary> &marks = m_index.marks();
    statuses.reserve(m_list.size());
    for (const std::size_t place : m_list)
        statuses.push_back(marks[place].feedbackType);
    if (const auto place = stepFrom(m_at, by, statuses, panel().onlyUnhandled()))
        show(*place, Zoom::yes);
}

bool ReviewPalette::goTo(AcDbObjectId mark, bool insideCommand)
{
    if (!commit(insideCommand))
        return false;
    reviewerFilter() = QStringLiteral("ALL");
    reload();
    panel().chooseFirstReviewer();
    const std::size_t place = placeOf(mark);
    if (place == m_list.size()) {
        show(m_at, Zoom::no);
        acutPrintf(QStringLiteral("\n该评图标签已被删除。"));
        return false;
    }
    show(place, Zoom::yes);
    return true;
}

void ReviewPalette::chooseReviewer(const QString &entry)
{
    if (!m_document)
        return;
    if (!commit()) {
        panel().setReviewers(reviewersOf(m_index.marks()), reviewerFilter());
        return;
    }
    reviewerFilter() = entry == allReviewersEntry() ? QStringLiteral("ALL") : entry;
    reload();
    show(0, Zoom::yes);
}

void ReviewPalette::goToNumber(const QString &typed)
{
    const auto wanted = readWantedNumber(typed);
    if (!wanted) {
        acutPrintf(QStringLiteral("请先输入评图标签编号!"));
        return;
    }
    if (!m_document || m_index.marks().empty()) {
        acutPrintf(QStringLiteral("\n本图中无评图标签。"));
        return;
    }
    const auto place = findNumber(m_index.marks(), *wanted);
    if (!place)
        acutPrintf(QStringLiteral("没找到这个编号的评图标签!"));
    else if (goTo(m_index.marks()[*place].id))
        panel().focusFeedback();
}

// Searching ---------------------------------------------------------------------------------------

void ReviewPalette::search(const QString &typed)
{
    m_results.clear();
    m_result = 0;
    enableResults();
    const QString text = typed.trimmed();
    if (text.isEmpty())
        return;
    // An answer that was just typed is found too.
    if (!commit())
        return;
    if (!m_document || m_index.marks().empty()) {
        acutPrintf(QStringLiteral("本图中还没有评图标签。"));
        return;
    }
    QStringList numbers;
    const std::vector<MarkSummary> &marks = m_index.marks();
    for (const std::size_t place : findText(marks, text)) {
        m_results.push_back(marks[place].id);
        numbers.append(markNumberText(marks[place].markNumber, marks[place].subNumber));
    }
    if (m_results.empty()) {
        acutPrintf(QStringLiteral("\n未找到包含字符串 <%1> 的评图标签。").arg(text));
        return;
    }
    if (goTo(m_results.front()))
        panel().focusFeedback();
    acutPrintf(QStringLiteral("\n总共检索出 %1 个评图标签，编号是：%2")
                   .arg(QString::number(numbers.size()), numbers.join(QStringLiteral(", "))));
    enableResults();
}

void ReviewPalette::enableResults()
{
    panel().enableResults(m_result > 0 && !m_results.empty(), m_result + 1 < m_results.size());
}

void ReviewPalette::stepResult(int by)
{
    if (m_results.empty() || (by < 0 ? m_result == 0 : m_result + 1 >= m_results.size()))
        return;
    if (!commit())
        return;
    m_result = by < 0 ? m_result - 1 : m_result + 1;
    goTo(m_results[m_result]);
    enableResults();
}

// Words -------------------------------------------------------------------------------------------

void ReviewPalette::allowOpinionEdit()
{
    panel().setOpinionEditable(
        m_shown && (sameHash(m_shown->passwordHash, unlockedHash()) || checkPassword(m_shown->passwordHash)));
}

void ReviewPalette::takePhrase()
{
    const std::optional<QString> phrase = callPhraseBank({});
    if (!phrase || !m_bar)
        return;
    const QString text = panel().feedback();
    panel().setFeedback(text.isEmpty() ? *phrase : text + u'\n' + *phrase);
}

void ReviewPalette::storePhrase()
{
    const QString text = m_shown ? m_shown->feedback.stored(panel().feedback()).trimmed() : QString();
    if (text.isEmpty())
        acedAlert(QStringLiteral("反馈文字栏为空白，不需要保存为知识库."));
    else
        callAddToSelfDefLib(text);
}

} // namespace

// The one palette ---------------------------------------------------------------------------------

void openReviewPalette(AcDbObjectId mark)
{
    if (palette() && !palette()->hasWindow())
        palette().reset();
    if (!palette())
        palette() = std::make_unique<ReviewPalette>();
    palette()->open(mark);
}

void closeReviewPalette()
{
    palette().reset();
    reviewerFilter() = QStringLiteral("ALL");
}

void refreshReviewPalette()
{
    if (palette())
        palette()->refresh();
}

void storeReviewInput(AcApDocument &document, bool forSaving)
{
    if (palette())
        palette()->storeInput(document, forSaving);
}

void forgetReviewed(const AcApDocument &document)
{
    if (palette())
        palette()->forget(document);
}
