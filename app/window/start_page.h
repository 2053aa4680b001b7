// What the window shows while no drawing is open: what one can do next.
#pragma once

#include <QWidget>

class QVBoxLayout;

namespace window
{

class StartPage : public QWidget
{
    Q_OBJECT

public:
    explicit StartPage(QWidget *parent = nullptr);

    /// Reads the recent files again.
    void refresh();

Q_SIGNALS:
    void openWanted();
    void newWanted();
    void fileWanted(const QString &path);

private:
    QVBoxLayout *m_recent = nullptr;
};

} // namespace window
