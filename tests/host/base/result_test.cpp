// Results and the always-on assertion.
#include "host/base/result.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

using base::Failure;
using base::Result;

static Result<std::unique_ptr<int>, std::string> half(int number)
{
    if (number % 2 != 0)
        return Failure{"odd"}; // Converts to the error type.
    return std::make_unique<int>(number / 2);
}

TEST(Result, CarriesAMoveOnlyValueOrAnError)
{
    auto good = half(8);
    ASSERT_TRUE(good);
    const std::unique_ptr<int> taken = *std::move(good);
    EXPECT_EQ(*taken, 4);

    const auto bad = half(7);
    ASSERT_FALSE(bad);
    EXPECT_EQ(bad.error(), "odd");

    const Result<void, int> done;
    EXPECT_TRUE(done);
    EXPECT_EQ((Result<void, int>(Failure{3}).error()), 3);
}

TEST(Result, EqualTypesOfValueAndErrorStayApart)
{
    const Result<std::string, std::string> value(std::string("text"));
    const Result<std::string, std::string> error(Failure{std::string("text")});
    EXPECT_TRUE(value);
    EXPECT_FALSE(error);
    EXPECT_EQ(error.valueOr("other"), "other");
}

TEST(ResultDeathTest, AskingForWhatIsNotThereSaysWhereAndAborts)
{
    EXPECT_DEATH(static_cast<void>(half(7).value()), "result.h:[0-9]+: assertion failed: ok\\(\\)");
    EXPECT_DEATH(static_cast<void>(half(8).error()), "assertion failed: !ok\\(\\)");
}
