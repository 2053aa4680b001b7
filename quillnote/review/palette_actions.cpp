// What a person does with the review palette: answering, walking, searching, phrases.
#include "quillnote/review/palette_control.h"

#include "quillnote/entity/mark_values.h"
#include "quillnote/entity/password.h"
#include "quillnote/ui/phrase_bank.h"

#include "host/aced/edcommands.h"
#include "host/aced/edfrontend.h"
#include "host/aced/edinput.h"
#include "host/aced/edmessage.h"

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
