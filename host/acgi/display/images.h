// Raster images that drawings show: where their files are, and their pixels once somebody looks at them.
#pragma once

#include "host/acgi/text/font.h"

#include <QImage>
#include <QString>

#include <map>
#include <mutex>
#include <vector>

namespace acgi
{

class Images
{
public:
    struct Entry {
        QString file;                  ///< Absolute path; empty when missing.
        QString lookedIn;              ///< The folder of the drawing at that time.
        QString shownName;             ///< Without its folders.
        std::vector<PlacedGlyph> name; ///< The same laid out, for missing ones.
        double nameWidth = 0.0;
        QImage pixels;  ///< Null until loaded, and when the file is no image or too large a one.
        QSize tooLarge; ///< Pixels of an image that cannot be loaded for its size; invalid for others.
        bool isLoaded = false;
    };

    /// Looks the file up. A whole path is taken as it is; a relative one counts from `folder`, the drawing's
    /// own, and never from where the program was started. What is not found so is looked for by its bare name
    /// in `folder`. Missing ones are looked for again when the folder is another. Main thread.
    void find(const QString &path, const QString &folder);
    /// The entry of a path that was looked up, with its pixels. Any thread.
    const Entry &load(const QString &path);
    /// Files may have come or gone.
    void clear() { m_entries.clear(); }

private:
    std::mutex m_lock;
    std::map<QString, Entry> m_entries;
};

} // namespace acgi
