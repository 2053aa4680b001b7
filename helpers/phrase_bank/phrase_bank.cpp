#include "helpers/phrase_bank/phrase_bank.h"

#include "helpers/phrase_bank/bank_files.h"
#include "helpers/phrase_bank/bank_windows.h"
#include "helpers/phrase_bank/choose_window.h"
#include "helpers/phrase_bank/telling.h"

#include <QApplication>

/// What is wrong with a shipped file is no reason not to search.
static void fill(bank::Bank &bank)
{
    bank::telling([&] { bank::fillNewBank(bank); });
}

extern "C" void callPhraseBank(std::u16string &result, const char16_t *key)
{
    bank::Bank bank;
    fill(bank);
    bank::CPhraseBankWnd window(bank, key ? QString::fromUtf16(key) : QString(),
                                QApplication::activeWindow());
    result.clear();
    if (window.doModal() == QDialog::Accepted)
        result = window.chosen().toStdU16String();
}

extern "C" void callAddToSelfDefLib(const char16_t *text)
{
    bank::Bank bank;
    fill(bank);
    bank.keep(text ? QString::fromUtf16(text) : QString());
}

template <class Window>
static void show()
{
    bank::telling([] {
        bank::Bank bank;
        fill(bank);
        Window(bank, QApplication::activeWindow()).doModal();
    });
}

extern "C" void CallLibSetup()
{
    show<bank::CBankSetupWnd>();
}

extern "C" void KeywordsDef()
{
    show<bank::CKeywordsWnd>();
}
