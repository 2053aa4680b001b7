// RereadCheck: reads a file that was just written and looks for every object that the drawing has.
//
// The check knows the objects from the database, not from what was written, and finds them by the reader's
// own scanner: kinds and handles, those of the opened file in its order. The file is read once from start to
// end through a small buffer, so the check costs about as much as the copy did and no memory. It says nothing
// of the disk: what it reads may still stand in the system's memory.
#pragma once

#include "host/base/progress.h"
#include "host/base/result.h"
#include "host/formats/dxf/dxfkinds.h"
#include "host/formats/dxf/dxfplan.h"

namespace dxf
{

class RereadCheck
{
public:
    /// Remembers the objects as they are now.
    RereadCheck(const AcDbDatabase &database, const DxfSource &source, const SavePlan &plan);

    /// The error is a sentence's end: "CIRCLE 1F is missing". Being stopped is an error as well.
    base::Result<void, QString> read(const QString &path, const base::Progress &progress = {});

private:
    struct Expected {
        std::uint64_t handle;
        AcDbKind kind;
        bool handleOptional; ///< The opened file gave none.
        bool anyHandle;      ///< The file keeps one that it gave twice.
    };
    struct Found {
        std::uint64_t handle = 0;
        AcDbKind kind = 0;
        bool inside = false; ///< Groups of an object are being read.
        bool headEnded = false;
        bool handleIn5 = true;
    };

    QString name(const Expected &object) const;
    template <class Scanner>
    base::Result<std::size_t, QString> feed(Scanner scanner, std::string_view bytes, bool last);
    base::Result<std::size_t, QString> feed(std::string_view bytes, bool last);
    base::Result<void, QString> readKept(const QString &path);
    bool take(const Group &group);
    void endObject();
    base::Result<void, QString> verdict() const;

    const DxfSource &m_source;
    bool m_tolerant; ///< The opened file was damaged, and some of that may be in the written one.
    std::vector<Expected> m_fromSource;
    std::vector<Expected> m_added; ///< By handle.
    std::vector<bool> m_addedSeen;
    std::size_t m_next = 0; ///< Of m_fromSource.
    Found m_found;
    bool m_ended = false; ///< EOF was read.
    KindCache m_kinds;
};

} // namespace dxf
