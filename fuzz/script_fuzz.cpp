// Scripts from anywhere: reading one never fails otherwise than by its message, and what was read is what
// stands in the file.
#include "app/console/script_reader.h"
#include "host/base/assert.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArrayView bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    const auto script = console::Script::parse(bytes, QStringLiteral("s"));
    if (!script) {
        QUILL_ASSERT(script.error().startsWith(u"s:"));
        return 0;
    }
    console::ScriptReader reader(*script);
    int before = 0;
    while (const console::ScriptLine *line = reader.take()) {
        QUILL_ASSERT(line->number > before && !line->text.contains(u'\n') && !line->text.startsWith(u';'));
        const bool isWord = line->text.size() > 1 && line->text[1].isLetter();
        QUILL_ASSERT(line->kind == console::ScriptLine::dialog || !(line->text.startsWith(u'@') && isWord));
        before = line->number;
    }
    QUILL_ASSERT(before <= bytes.count('\n') + 1);
    return 0;
}
