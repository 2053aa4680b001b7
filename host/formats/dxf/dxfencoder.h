// Encoder: groups to the bytes of a DXF file, in the style, code page and form that the file has.
#pragma once

#include "host/formats/dxf/dxfsource.h"

namespace dxf
{

class Encoder
{
public:
    explicit Encoder(const DxfSource &source) : m_source(source) {}

    /// A group that still has its source bytes is copied; others are encoded by their code. Values of
    /// another type than the code carries are converted as far as they can be. Long binary chunks
    /// become several groups.
    void append(QByteArray &out, const resbuf &group) const;
    void append(QByteArray &out, const ResbufList &groups) const;

    void text(QByteArray &out, int code, QStringView value) const;
    /// Text that is encoded already, such as kinds and names of the file itself.
    void plainText(QByteArray &out, int code, QByteArrayView value) const;
    void handle(QByteArray &out, int code, std::uint64_t value) const;
    void integer(QByteArray &out, int code, std::int64_t value) const;
    void real(QByteArray &out, int code, double value) const;
    void marker(QByteArray &out, QByteArrayView kind) const { plainText(out, 0, kind); }
    /// A stretch of whole groups of the file; completed when the file's last line has no end.
    void copy(QByteArray &out, std::string_view source) const;
    /// What a stretch of the file lacks of its last line end; empty in binary files.
    QByteArray missingLineEnd(std::string_view source) const;

private:
    bool isBinary() const { return m_source.form() == DrawingForm::dxfBinary; }
    void code(QByteArray &out, int code) const;
    void chunks(QByteArray &out, int code, QByteArrayView bytes) const;
    void line(QByteArray &out, QByteArrayView value) const;

    const DxfSource &m_source;
};

} // namespace dxf
