// The window in which phrases are searched and chosen.
#pragma once

#include "helpers/phrase_bank/bank.h"

#include "host/acui/acuidialog.h"

class QComboBox;
class QLabel;
class QLineEdit;
class QTreeWidget;

namespace bank
{

/// Controls: search 1001, bank 1002, phrases 1003 (first column the phrase, second the words that hit).
class CPhraseBankWnd : public CAcUiDialog
{
    Q_OBJECT

public:
    CPhraseBankWnd(Bank &bank, const QString &key, QWidget *parent);

    /// The chosen phrases, divided by "\r\n".
    QString chosen() const;

protected:
    /// Arrows in the search move through the phrases.
    bool preTranslateKey(QKeyEvent *event) override;

private:
    void search();
    void choose();

    Bank &m_bank;
    QString m_key;
    std::vector<Found> m_found;
    QString m_chosen;
    QLineEdit *m_search;
    QComboBox *m_banks;
    QTreeWidget *m_list;
    QLabel *m_count;
};

} // namespace bank
