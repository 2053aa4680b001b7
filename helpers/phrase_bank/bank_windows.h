// The windows of the settings: banks, and keywords with their synonyms.
#pragma once

#include "helpers/phrase_bank/bank.h"

#include "host/acui/acuidialog.h"

class QComboBox;
class QLineEdit;
class QListWidget;

namespace bank
{

/// Controls: bank that is searched 1100, banks 1101, import 1102, export 1103, remove 1104.
class CBankSetupWnd : public CAcUiDialog
{
    Q_OBJECT

public:
    CBankSetupWnd(Bank &bank, QWidget *parent);

private:
    void fill();
    const BankInfo *current() const;
    void importFile();
    void exportFile();
    void removeBank();

    Bank &m_bank;
    std::vector<BankInfo> m_infos;
    QComboBox *m_searched;
    QListWidget *m_list;
};

/// Controls: keywords 1201, word 1202, synonyms 1203, keep 1204, remove 1205.
class CKeywordsWnd : public CAcUiDialog
{
    Q_OBJECT

public:
    CKeywordsWnd(Bank &bank, QWidget *parent);

private:
    void fill();
    void showCurrent();
    void keep();
    void removeCurrent();

    Bank &m_bank;
    std::vector<Keyword> m_keywords;
    QListWidget *m_list;
    QLineEdit *m_word;
    QLineEdit *m_synonyms;
};

} // namespace bank
