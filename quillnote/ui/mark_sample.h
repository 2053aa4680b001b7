// A small picture of marks as the settings make them, drawn by the code that draws the marks of drawings.
#pragma once

#include "quillnote/ui/setup_values.h"

#include <QWidget>

class MarkSample : public QWidget
{
    Q_OBJECT

public:
    explicit MarkSample(QWidget *parent = nullptr);

    /// What is chosen at the moment; nothing of it has to be stored.
    void show(const SetupValues &values, int color1, int color2);

    QSize sizeHint() const override { return {300, 200}; }
    QSize minimumSizeHint() const override { return {240, 160}; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    SetupValues m_values;
    int m_color1 = 2;
    int m_color2 = 2;
};
