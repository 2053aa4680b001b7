// A front end that swallows what is printed and has no answers.
#pragma once

#include "host/aced/edfrontend.h"

namespace fuzz
{

class SilentFrontEnd : public AcEdFrontEnd
{
public:
    std::optional<AcEdAnswer> answer(const AcEdPrompt &) override { return std::nullopt; }
    std::optional<QString> dialogLine(const QString &) override { return std::nullopt; }
    bool isScripted() const override { return true; }
    void print(const QString &) override {}
};

} // namespace fuzz
