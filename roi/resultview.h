#pragma once

#include "roi/roipicture.h"

#include <QGroupBox>
#include <QImage>
#include <QTimer>

class QLabel;

/**
 * The current frame, as the film of the current region will show it.
 *
 * The picture is made by the function that makes those of the film, from the image that is already
 * decoded, in the next turn of the event loop. A large region is first cut from a reduced frame, so
 * that dragging stays smooth, and at full size once nothing has changed for a moment.
 */
class ResultView final : public QGroupBox
{
    Q_OBJECT

public:
    explicit ResultView(QWidget *parent = nullptr);
    ~ResultView() override;

    /// What is shown: the same input as the film gets.
    struct Subject
    {
        QImage decoded;
        RoiSourceFrame frame;
        Roi roi;
        RoiLook look;
        QString caption; ///< further facts about the film
    };

    void showSubject(const Subject &subject);
    /// Shows @p text in place of a picture.
    void showMessage(const QString &text);

private:
    class Picture;

    void showDraft();
    void finish();
    const QImage &draftFrame(int divisor);
    void render(const QImage &frame);

    Picture *m_picture; // this and the label are owned as children
    QLabel *m_caption;
    Subject m_subject;   // empty once its picture is shown in full
    QImage m_draftFrame; // likewise
    qint64 m_draftKey = 0;
    QTimer m_drafting;
    QTimer m_finishing;
};
