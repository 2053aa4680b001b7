// The rules of walking through marks, as values.
#include "quillnote/review/answer.h"
#include "quillnote/review/review_rules.h"
#include "quillnote/ui/review_bar.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;

static MarkSummary mark(int number, int sub, const QString &reviewer, const QString &opinion = {},
                        const QString &feedback = {})
{
    return {{}, std::uint16_t(number), std::uint16_t(sub), 0, reviewer, opinion, feedback};
}

static const std::vector<MarkSummary> kMarks{
    mark(1, 0, QStringLiteral("Li"), QStringLiteral("Door 900")), mark(2, 0, {}, QStringLiteral("门宽不足")),
    mark(2, 3, QStringLiteral("Wang"), QStringLiteral("window"), QStringLiteral("door moved"))};

TEST(ReviewList, FiltersByReviewer)
{
    EXPECT_THAT(passingMarks(kMarks, QStringLiteral("ALL")), ElementsAre(0, 1, 2));
    EXPECT_THAT(passingMarks(kMarks, QStringLiteral("*未命名*")), ElementsAre(1));
    EXPECT_THAT(passingMarks(kMarks, QStringLiteral("Wang")), ElementsAre(2));
    EXPECT_THAT(passingMarks(kMarks, QStringLiteral("Zhao")), IsEmpty());
    EXPECT_EQ(reviewersOf(kMarks),
              QStringList({QStringLiteral("Li"), QStringLiteral("*未命名*"), QStringLiteral("Wang")}));
    std::vector<MarkSummary> many;
    for (int i = 0; i < 17; ++i)
        many.push_back(mark(i, 0, QString::number(i)));
    EXPECT_EQ(reviewersOf(many).size(), 16);
}

TEST(ReviewList, StepsToTheNextOpenMarkOrTheEnd)
{
    const std::vector<std::int16_t> statuses{3, 0, 1, -1, 0, 2};
    struct Case {
        std::size_t from;
        int by;
        bool onlyOpen;
        std::optional<std::size_t> to;
    };
    const Case cases[] = {{0, 1, false, 1}, {1, 1, true, 4},  {4, 1, true, 5},    {5, 1, true, {}},
                          {4, -1, true, 1}, {1, -1, true, 0}, {0, -1, false, {}}, {9, 1, false, {}}};
    for (const Case &each : cases)
        EXPECT_EQ(stepFrom(each.from, each.by, statuses, each.onlyOpen), each.to) << each.from << each.by;
    EXPECT_EQ(stepFrom(0, 1, {}, true), std::nullopt);
}

TEST(ReviewList, FindsNumbersAndWords)
{
    EXPECT_EQ(readWantedNumber(QStringLiteral("  ")), std::nullopt);
    const std::pair<const char *, WantedNumber> typed[] = {{"12", {12, 0}},   {" 12.3 ", {12, 3}},
                                                           {".4", {0, 4}},    {"5.", {5, 0}},
                                                           {"7x.2y", {7, 2}}, {"x", {0, 0}}};
    for (const auto &[text, wanted] : typed)
        EXPECT_EQ(readWantedNumber(QString::fromLatin1(text)), wanted) << text;
    EXPECT_EQ(findNumber(kMarks, {2, 0}), 1u);
    EXPECT_EQ(findNumber(kMarks, {2, 3}), 2u);
    EXPECT_EQ(findNumber(kMarks, {1, 3}), std::nullopt);
    EXPECT_THAT(findText(kMarks, QStringLiteral("door")), ElementsAre(2));
    EXPECT_THAT(findText(kMarks, QStringLiteral("Door")), ElementsAre(0));
    EXPECT_EQ(counterText(kMarks[2], 2, 3), u"2.3-3/3");
    EXPECT_EQ(counterText(kMarks[0], 0, 3), u"1-1/3");
    EXPECT_EQ(reviewerLine(QStringLiteral("Li"), QStringLiteral("Li")), u"校审人:");
    EXPECT_EQ(reviewerLine(QStringLiteral("Li"), QStringLiteral("显示全部")), u"校审人:Li");
}

TEST(ReviewAnswer, TheNameBeforeItIsNeverStored)
{
    const ShownFeedback named(QStringLiteral("Zhao"), QStringLiteral("done\r\ntwice"));
    EXPECT_EQ(named.text, u"Zhao:\ndone\ntwice");
    EXPECT_EQ(named.stored(QStringLiteral("Zhao:\nother")), u"other");
    EXPECT_EQ(named.stored(QStringLiteral("Zhao:other")), u"other");
    EXPECT_EQ(named.stored(QStringLiteral("other")), u"other");
    EXPECT_EQ(named.stored({}), QString());
    EXPECT_EQ(ShownFeedback({}, QStringLiteral("x")).stored(QStringLiteral("Zhao:\ny")), u"Zhao:\ny");
}

TEST(ReviewAnswer, OnlyWhatWasChangedIsAChange)
{
    ReviewedMark shown;
    shown.feedback = ShownFeedback(QStringLiteral("Zhao"), QStringLiteral("a\r\nb"));
    shown.summary.feedback = QStringLiteral("a\r\nb");
    shown.summary.feedbackType = 7; // Of a later program.
    EXPECT_TRUE(changeOf(shown, QStringLiteral("Zhao:\na\nb"), 1012).isEmpty());
    const AnswerChange status = changeOf(shown, QStringLiteral("Zhao:\na\nb"), 1013);
    EXPECT_EQ(status, (AnswerChange{{}, std::int16_t(-1)}));
    const AnswerChange words = changeOf(shown, QStringLiteral("Zhao:\nc"), 1012);
    EXPECT_EQ(words, (AnswerChange{QStringLiteral("c"), {}}));
    EXPECT_TRUE(changeOf(shown, QStringLiteral("Zhao:\na\nb"), 0).isEmpty());
}

TEST(ReviewView, MarginsAndWidths)
{
    const AcDbExtents mark({0, 0, 0}, {100, 40, 0});
    const AcDbExtents half = sheetWindow(mark, 50, false);
    EXPECT_DOUBLE_EQ(half.minPoint().x, -50);
    EXPECT_DOUBLE_EQ(half.maxPoint().y, 60);
    const AcDbExtents aside = sheetWindow(mark, 80, true);
    EXPECT_DOUBLE_EQ(aside.minPoint().x, -20 + 10);
    EXPECT_DOUBLE_EQ(aside.maxPoint().x, 120 + 10);
    EXPECT_DOUBLE_EQ(aside.minPoint().y, -8);
    for (const auto &[stored, width] : {std::pair(0, 205), {204, 205}, {205, 205}, {640, 640}, {801, 205}})
        EXPECT_EQ(reviewBarWidth(stored), width);
}
