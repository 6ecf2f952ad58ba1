#pragma once

#include <QLabel>

/**
 * A label of plain text whose parts are separated by bars, "a   |   b". Where the next part does
 * not fit into the line, a line break takes the place of the bar.
 */
class CaptionLabel final : public QLabel
{
    Q_OBJECT

public:
    using QLabel::QLabel;

    int heightForWidth(int width) const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    int indentPx() const;
    QString broken(int width) const;
};
