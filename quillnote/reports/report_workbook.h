// A workbook with one table, written row by row; the sheet's layout is fixed here.
#pragma once

#include "quillnote/reports/review.h"

#include "host/base/result.h"

#include <memory>

class ReportWorkbook
{
public:
    static base::Result<ReportWorkbook, QString> create(const QString &path);
    ReportWorkbook(ReportWorkbook &&other) noexcept;
    ReportWorkbook &operator=(ReportWorkbook &&other) noexcept;
    ~ReportWorkbook();

    /// Columns first; `width` in characters.
    void addColumn(const QString &title, double width);
    void addPictureColumn(const QString &title);

    /// Then the rows, cell by cell from the left.
    void beginRow();
    void addText(const QString &text);
    void addPicture(const ReviewPicture &picture);

    /// Texts that were longer than a cell may be.
    std::size_t cutTexts() const;

    /// Puts the workbook in the place of an existing file. The error names the file.
    base::Result<void, QString> finish();

private:
    struct Parts;
    explicit ReportWorkbook(std::unique_ptr<Parts> parts);
    std::unique_ptr<Parts> m_parts;
};
