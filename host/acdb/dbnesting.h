// AcDbNesting: the blocks that a walk stands in. A walk that goes from a block into the blocks that it shows
// asks here first, so that a block that contains itself, or a chain without end, ends the same way
// everywhere.
#pragma once

#include "host/acdb/dbid.h"

#include <algorithm>
#include <vector>

class AcDbNesting
{
public:
    /// Blocks below this are shown by nobody.
    static constexpr std::size_t kDeepest = 64;

    /// False for a block that the walk stands in already, and for one too deep.
    bool enter(const AcDbStub *block)
    {
        if (m_blocks.size() >= kDeepest || std::ranges::find(m_blocks, block) != m_blocks.end())
            return false;
        m_blocks.push_back(block);
        return true;
    }
    void leave() { m_blocks.pop_back(); }
    bool isInside() const { return !m_blocks.empty(); }

private:
    std::vector<const AcDbStub *> m_blocks;
};
