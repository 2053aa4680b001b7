// A sink that counts what it is given, and holds whoever draws to closing every clip that he opens.
#pragma once

#include "host/acgi/geometry.h"
#include "host/base/assert.h"

namespace fuzz
{

class CountingSink : public AcGiGeometry
{
public:
    explicit CountingSink(bool isDisplay = false) : m_isDisplay(isDisplay) {}

    std::size_t lines = 0;  ///< Polylines that have points, and arcs.
    std::size_t points = 0; ///< An arc is one, a text one for each character.
    int clips = 0;

    bool isDisplay() const override { return m_isDisplay; }
    void polyline(std::uint32_t count, const AcGePoint3d *) override
    {
        lines += count > 0;
        points += count;
    }
    void arc(const acgi::Arc &) override
    {
        ++lines;
        ++points;
    }
    void text(const acgi::TextLine &line) override { points += std::size_t(line.text.size()); }
    void infiniteLine(const AcGePoint3d &, const AcGeVector3d &, bool) override { ++points; }
    void fill(std::span<const acgi::Loop> loops) override
    {
        QUILL_ASSERT(!loops.empty());
        for (const acgi::Loop &loop : loops)
            points += loop.size();
    }
    bool blockReference(const acgi::BlockPlacement &) override { return true; }
    void pushClip(std::span<const acgi::Loop>, bool) override { ++clips; }
    void popClip() override { QUILL_ASSERT(--clips >= 0); }

private:
    const bool m_isDisplay;
};

} // namespace fuzz
