#include "quillnote/exchange/synchronisation.h"

#include "quillnote/exchange/exchange_files.h"
#include "quillnote/exchange/export_marks.h"

#include <QCryptographicHash>

SynchronisationState &synchronisation()
{
    static SynchronisationState state;
    return state;
}

/// A file with this mark alone, of no drawing in particular.
static QByteArray fileOfMark(const QuillnoteObj3 &mark)
{
    MarkData data;
    data.marks.push_back(markDataRecord(mark));
    return encodeMarkData(data);
}

/// What the mark says, wherever it stands.
static QByteArray digestOf(const QuillnoteObj3 &mark)
{
    MarkData data;
    MarkDataRecord &record = data.marks.emplace_back(markDataRecord(mark));
    record.handle = {};
    record.owner = {};
    record.layerColor = 0;
    return QCryptographicHash::hash(encodeMarkData(data), QCryptographicHash::Sha1);
}

void noteReceived(const QuillnoteObj3 &mark)
{
    if (synchronisation().on)
        synchronisation().known[mark.GUID] = digestOf(mark);
}

void synchroniseMark(const QuillnoteObj3 &mark)
{
    if (!synchronisation().on || mark.isErased())
        return;
    const QByteArray digest = digestOf(mark);
    QByteArray &known = synchronisation().known[mark.GUID];
    if (known == digest)
        return;
    if (!writeSynchronisationFile(fileOfMark(mark), QString::fromUtf16(kMarkFilePrefix)).isEmpty())
        known = digest;
}

void synchroniseErased(const QuillnoteObj3 &mark)
{
    if (!synchronisation().on)
        return;
    synchronisation().known.erase(mark.GUID);
    writeSynchronisationFile(encodeErasedMarks({mark.GUID}),
                             QString::fromUtf16(kMarkFilePrefix) + QStringLiteral("Del"));
}

void QN8_SynningOn()
{
    synchronisationFolder(FolderTest::write);
    synchronisation().on = true;
}

void QN8_SynningOff()
{
    synchronisation().reset();
}
