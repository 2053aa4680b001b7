// The settings dialog. Values in, values out: the caller stores them.
#pragma once

#include "quillnote/frame/settings/settings_table.h"
#include "quillnote/ui/setup_values.h"

#include "host/acui/acuidialog.h"

#include <memory>

namespace Ui
{
class Setup;
}

/// Shows the settings until the dialog is closed; no value when it was cancelled. Text heights and passwords
/// are checked. The colours, the phrase folder and the report template are stored at once by their buttons.
std::optional<SetupValues> runSetup(const SetupValues &start);

class CSetup : public CAcUiDialog
{
    Q_OBJECT

public:
    explicit CSetup(const SetupValues &start, QWidget *parent = nullptr);
    ~CSetup() override;

    SetupValues values() const;
    void accept() override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    void fill(const SetupValues &values);
    void watchChanges();
    void connectButtons();
    void chooseColor(settings::Number setting, int &color);
    void chooseTemplate();
    bool passwordsAgree();
    void checkHeight();
    void leaveHeightBox();
    void showSample();
    void fitScreen();

    std::unique_ptr<Ui::Setup> m_form;
    int m_color1 = 2;
    int m_color2 = 2;
};
