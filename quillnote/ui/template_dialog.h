// The dialog for the data of a project that go into a report: a row a field, with the values that were typed
// before. Values in, values out: the caller reads and stores what is remembered.
#pragma once

#include "host/acui/acuidialog.h"

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace Ui
{
class TemplateDialog;
}

struct TemplateDialogRow {
    QString caption;
    QStringList remembered; ///< The last one first.
    QString text;
    bool isDrawing = false; ///< Shows the drawing's path, whatever is typed.
};

class CTmpExcel : public CAcUiDialog
{
    Q_OBJECT

public:
    static constexpr int kMostRows = 20;
    /// doModal() gives this and the row's index when a text of the drawing is to become the row's value. The
    /// dialog is hidden then; setText() and doModal() go on with it.
    static constexpr int kPickText = 100;

    /// At most kMostRows rows.
    CTmpExcel(const std::vector<TemplateDialogRow> &rows, const QString &drawing, QWidget *parent = nullptr);
    ~CTmpExcel() override;

    QStringList texts() const;
    void setText(int row, const QString &text);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void setUpRow(int index, const TemplateDialogRow &row);
    void showDrawing();

    std::unique_ptr<Ui::TemplateDialog> m_form;
    std::vector<TemplateDialogRow> m_rows;
    QString m_drawing;
};

/// Shows the dialog until it is closed. `pick` asks for texts of the drawing meanwhile, with the dialog
/// hidden; none leaves the row as it is. The rows' texts, or none when it was cancelled.
std::optional<QStringList> runTemplateDialog(const std::vector<TemplateDialogRow> &rows,
                                             const QString &drawing,
                                             const std::function<std::optional<QString>()> &pick);
