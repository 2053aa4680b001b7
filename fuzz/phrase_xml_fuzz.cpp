// The XML phrase library, which comes from the cloud programs: what is read is exported, and reads as the
// same.
#include "quillnote/ui/phrase_library.h"

#include "host/base/assert.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto library = parsePhraseXml(QByteArrayView(data, qsizetype(size)));
    if (!library)
        return 0;
    QUILL_ASSERT(library->menus.size() <= std::size_t(kMostPhraseMenus));
    QUILL_ASSERT(library->menus.empty() || library->menus.back().end == int(library->phrases.size()));
    const auto again = parsePhraseXml(exportPhraseXml(*library, QStringLiteral("user")));
    QUILL_ASSERT(again && again->menus.size() <= library->menus.size());
    return 0;
}
