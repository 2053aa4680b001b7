// The in-memory DWG filer: bytes by hand, and no reading past the end.
#include "host/acdb/dbfiler.h"

#include <gmock/gmock.h>

static QByteArray sampleStream()
{
    AcDbMemoryFiler filer(AcDb::kFileFiler, nullptr);
    filer.writeBool(true);
    filer.writeInt16(-2);
    filer.writeUInt32(0x01020304);
    filer.writeDouble(1.5);
    filer.writeString(QStringLiteral("图A"));
    filer.writeBytes("xyz");
    return filer.stream();
}

TEST(MemoryFiler, WritesTheDocumentedBytes)
{
    EXPECT_EQ(sampleStream().toHex(), QByteArray("01"
                                                 "feff"
                                                 "04030201"
                                                 "000000000000f83f"
                                                 "02000000fe564100"
                                                 "78797a"));
}

TEST(MemoryFiler, EveryTruncationFailsAndKeepsFailing)
{
    const QByteArray whole = sampleStream();
    for (qsizetype size = 0; size <= whole.size(); ++size) {
        AcDbMemoryFiler filer(AcDb::kFileFiler, nullptr, whole.left(size));
        bool flag = false;
        std::int16_t small = 0;
        std::uint32_t large = 0;
        double real = 0;
        QString text;
        QByteArray bytes;
        filer.readBool(flag);
        filer.readInt16(small);
        filer.readUInt32(large);
        filer.readDouble(real);
        filer.readString(text);
        EXPECT_EQ(filer.readBytes(bytes, 3) == Acad::eOk, size == whole.size());
        EXPECT_EQ(filer.filerStatus(), size == whole.size() ? Acad::eOk : Acad::eEndOfFile);
    }
}

TEST(MemoryFiler, HostileSizesAreRefusedBeforeAllocating)
{
    AcDbMemoryFiler filer(AcDb::kFileFiler, nullptr, QByteArray::fromHex("ffffffff41"));
    QString text;
    EXPECT_EQ(filer.readString(text), Acad::eEndOfFile);
    AcDbMemoryFiler bytesFiler(AcDb::kFileFiler, nullptr, "abc");
    QByteArray bytes;
    EXPECT_EQ(bytesFiler.readBytes(bytes, 0xffffffff), Acad::eEndOfFile);
}
