#pragma once

#include <QObject>
#include <QPixmap>

class QImage;
class QLabel;

/**
 * The last frame, fitted into its label at the resolution of the screen.
 *
 * Keeps the frame at full size, or at 4096 pixels where it is larger, so that resizing neither
 * decodes it again nor scales an already scaled picture.
 */
class PreviewPane final : public QObject
{
    Q_OBJECT

public:
    explicit PreviewPane(QLabel *label, QObject *parent = nullptr);

    /// Shows a frame; false when it is null, and the last frame stays.
    bool showFrame(const QImage &frame);
    /// Forgets the frame and shows @p text in its place.
    void clear(const QString &text);
    /// Fits the frame into the label's present size.
    void rescale();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QLabel *m_label; // not owned; belongs to the window's form
    QPixmap m_frame; // full size; null until the first frame
    QPixmap m_shown; // fitted into the label; null until it is made
};
