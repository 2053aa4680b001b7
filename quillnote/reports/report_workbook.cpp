#include "quillnote/reports/report_workbook.h"

#include "host/base/atomic_file.h"
#include "host/os/temp_files.h"

#include <xlsxwriter.h>

#include <QFile>

#include <algorithm>

static constexpr qsizetype kLongestText = 32767;
static constexpr QSize kPictureBox(240, 160); ///< Pixels of a cell with a picture.
static constexpr int kTextRowHeight = 20;
static constexpr int kCellMargin = 3;

struct ReportWorkbook::Parts {
    QString path;
    QString temporary; ///< Where the library writes; it knows no other way.
    lxw_workbook *workbook = nullptr;
    lxw_worksheet *sheet = nullptr;
    lxw_format *head = nullptr;
    lxw_format *cell = nullptr;
    lxw_row_t row = 0;
    lxw_col_t column = 0;
    lxw_col_t columns = 0;
    std::size_t cut = 0;

    ~Parts()
    {
        if (workbook)
            workbook_close(workbook);
        QFile::remove(temporary);
    }
    void addFormats();
};

void ReportWorkbook::Parts::addFormats()
{
    head = workbook_add_format(workbook);
    format_set_bold(head);
    format_set_bg_color(head, 0xDDEBF7);
    format_set_align(head, LXW_ALIGN_VERTICAL_CENTER);
    cell = workbook_add_format(workbook);
    format_set_text_wrap(cell);
    format_set_align(cell, LXW_ALIGN_VERTICAL_TOP);
    for (lxw_format *const format : {head, cell})
        format_set_border(format, LXW_BORDER_THIN);
}

ReportWorkbook::ReportWorkbook(std::unique_ptr<Parts> parts) : m_parts(std::move(parts)) {}
ReportWorkbook::ReportWorkbook(ReportWorkbook &&other) noexcept = default;
ReportWorkbook &ReportWorkbook::operator=(ReportWorkbook &&other) noexcept = default;
ReportWorkbook::~ReportWorkbook() = default;

base::Result<ReportWorkbook, QString> ReportWorkbook::create(const QString &path)
{
    const auto temporary = os::temporaryFileName(QStringLiteral("QNX"));
    if (!temporary)
        return base::Failure{temporary.error().text()};
    auto parts = std::make_unique<Parts>();
    parts->path = path;
    parts->temporary = *temporary;
    parts->workbook = workbook_new(QFile::encodeName(*temporary).constData());
    parts->sheet = workbook_add_worksheet(parts->workbook, "评图标签");
    parts->addFormats();
    worksheet_set_landscape(parts->sheet);
    worksheet_set_paper(parts->sheet, 9); // A4
    worksheet_fit_to_pages(parts->sheet, 1, 0);
    worksheet_repeat_rows(parts->sheet, 0, 0);
    worksheet_freeze_panes(parts->sheet, 1, 0);
    return ReportWorkbook(std::move(parts));
}

void ReportWorkbook::addColumn(const QString &title, double width)
{
    worksheet_set_column(m_parts->sheet, m_parts->columns, m_parts->columns, width, nullptr);
    worksheet_write_string(m_parts->sheet, 0, m_parts->columns++, title.toUtf8().constData(), m_parts->head);
}

void ReportWorkbook::addPictureColumn(const QString &title)
{
    worksheet_set_column_pixels(m_parts->sheet, m_parts->columns, m_parts->columns,
                                std::uint32_t(kPictureBox.width()), nullptr);
    worksheet_write_string(m_parts->sheet, 0, m_parts->columns++, title.toUtf8().constData(), m_parts->head);
}

void ReportWorkbook::beginRow()
{
    ++m_parts->row;
    m_parts->column = 0;
}

void ReportWorkbook::addText(const QString &text)
{
    QString fitting = text;
    if (fitting.size() > kLongestText) {
        ++m_parts->cut;
        fitting.truncate(kLongestText - 1);
        if (fitting.back().isHighSurrogate())
            fitting.chop(1);
        fitting += u'…';
    }
    fitting.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    fitting.replace(u'\r', u'\n');
    fitting.remove(QChar(0)); // The library takes it for the end.
    worksheet_write_string(m_parts->sheet, m_parts->row, m_parts->column++, fitting.toUtf8().constData(),
                           m_parts->cell);
}

void ReportWorkbook::addPicture(const ReviewPicture &picture)
{
    const lxw_col_t column = m_parts->column++;
    worksheet_write_blank(m_parts->sheet, m_parts->row, column, m_parts->cell);
    if (picture.png.isEmpty())
        return;
    worksheet_set_row_pixels(m_parts->sheet, m_parts->row, std::uint32_t(kPictureBox.height()), nullptr);
    const double room = 2.0 * kCellMargin;
    const double scale = std::min({1.0, (kPictureBox.width() - room) / picture.size.width(),
                                   (kPictureBox.height() - room) / picture.size.height()});
    lxw_image_options options = {};
    options.x_offset = kCellMargin;
    options.y_offset = kCellMargin;
    // The library shows pictures of other resolutions larger or smaller.
    options.x_scale = scale * picture.pixelsPerInch / 96.0;
    options.y_scale = options.x_scale;
    options.object_position = LXW_OBJECT_MOVE_AND_SIZE;
    worksheet_insert_image_buffer_opt(m_parts->sheet, m_parts->row, column,
                                      reinterpret_cast<const unsigned char *>(picture.png.constData()),
                                      std::size_t(picture.png.size()), &options);
}

std::size_t ReportWorkbook::cutTexts() const
{
    return m_parts->cut;
}

base::Result<void, QString> ReportWorkbook::finish()
{
    worksheet_autofilter(m_parts->sheet, 0, 0, m_parts->row, lxw_col_t(m_parts->columns - 1));
    const lxw_error closed = workbook_close(std::exchange(m_parts->workbook, nullptr));
    if (closed != LXW_NO_ERROR)
        return base::Failure{
            QStringLiteral("%1: %2").arg(m_parts->path, QString::fromUtf8(lxw_strerror(closed)))};
    QFile complete(m_parts->temporary);
    if (!complete.open(QIODevice::ReadOnly))
        return base::Failure{QStringLiteral("%1: %2").arg(m_parts->temporary, complete.errorString())};
    if (const auto written = base::writeFileAtomically(m_parts->path, complete.readAll()); !written)
        return base::Failure{written.error().text()};
    return {};
}
