#pragma once

#include <QLabel>

/**
 * A label of plain text in parts with bars between them, "a   |   b", that is broken at a bar where
 * the width does not do for the next part; the bar then goes.
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
