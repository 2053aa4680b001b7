// Numbers as text: forms that other programs must read back, and fields that must be refused.
#include "host/base/format_number.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>

using base::formatPrintfG;
using base::formatReal;
using base::parseInteger;
using base::parseReal;

TEST(FormatReal, IsShortAndAlwaysHasAPoint)
{
    const std::pair<double, const char *> rows[] = {
        {0.0, "0.0"},
        {-0.0, "-0.0"},
        {1.0, "1.0"},
        {-1.5, "-1.5"},
        {0.1, "0.1"},
        {1e20, "1.0E+20"},
        {1.5e-7, "1.5E-07"},
        {123456.0, "123456.0"},
        {2.0 / 3.0, "0.6666666666666666"},
        {5e-324, "5.0E-324"},
        {1.7976931348623157e308, "1.7976931348623157E+308"},
        {std::numeric_limits<double>::infinity(), "0.0"},
        {std::nan(""), "0.0"},
    };
    for (const auto &[value, text] : rows)
        EXPECT_EQ(formatReal(value).view(), text);
}

TEST(FormatReal, ReadsBackAsTheSameNumber)
{
    std::mt19937_64 random(20240506);
    for (int round = 0; round < 100'000; ++round) {
        const auto value = std::bit_cast<double>(random());
        if (!std::isfinite(value))
            continue;
        const auto back = parseReal(formatReal(value));
        ASSERT_TRUE(back) << formatReal(value).view();
        ASSERT_EQ(std::bit_cast<std::uint64_t>(*back), std::bit_cast<std::uint64_t>(value));
    }
}

TEST(FormatPrintfG, HasSixDigitsAndAThreeDigitExponent)
{
    const std::pair<double, const char *> rows[] = {
        {0.0, "0"},
        {100000.0, "100000"},
        {1e-7, "1e-007"},
        {1.5e10, "1.5e+010"},
        {1e-5, "1e-005"},
        {0.0001, "0.0001"},
        {1e6, "1e+006"},
        {999999.5, "1e+006"},
        {1e100, "1e+100"},
        {-1e-300, "-1e-300"},
        {2.0 / 3.0, "0.666667"},
        {123456.7, "123457"},
        {1234567.0, "1.23457e+006"},
    };
    for (const auto &[value, text] : rows)
        EXPECT_EQ(formatPrintfG(value).view(), text);
}

TEST(ParseReal, AcceptsTheFormsThatDrawingsHold)
{
    const std::pair<const char *, double> rows[] = {
        {"1", 1.0},      {"  -2.50\r", -2.5}, {"+3.", 3.0},    {".5", 0.5},
        {"1E5", 1e5},    {"1.5e-07", 1.5e-7}, {"1D3", 1e3},    {"-2.5d+002", -250},
        {"1e-400", 0.0}, {"0.1E-400", 0.0},   {"\t007 ", 7.0},
    };
    for (const auto &[text, value] : rows)
        EXPECT_EQ(parseReal(text), value) << text;
    EXPECT_EQ(parseReal("0." + std::string(400, '0') + "1"), 0.0);
}

TEST(ParseReal, RefusesEverythingElse)
{
    for (const char *text :
         {"",   "  ",    "abc", "1.5x", "1 2",       "1,5",  "+-1",   "++1",    "--1", "1e",
          "1D", "1D2D3", "nan", "inf",  "-infinity", "0x10", "1e999", "-1e999", ".",   "-"})
        EXPECT_EQ(parseReal(text), std::nullopt) << text;
    EXPECT_EQ(parseReal("1" + std::string(400, '0')), std::nullopt);
}

TEST(ParseInteger, KnowsItsLimits)
{
    EXPECT_EQ(parseInteger("   62\r"), 62);
    EXPECT_EQ(parseInteger("+1"), 1);
    EXPECT_EQ(parseInteger("-9223372036854775808"), std::numeric_limits<std::int64_t>::min());
    for (const char *text : {"", "+", "9223372036854775808", "1.0", "1 2", "+-1", "A"})
        EXPECT_EQ(parseInteger(text), std::nullopt) << text;
}
