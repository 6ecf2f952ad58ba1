#pragma once

#include "roi/roipicture.h"

#include <QGroupBox>
#include <QImage>
#include <QTimer>

class QLabel;

/**
 * The frame that is looked at as the film of the current region will show it.
 *
 * The picture is made by what makes the film's own, from the image that is decoded already, once
 * the present turn of the event loop is over; a large one when nothing has changed for a moment, so
 * that a drag does not wait for it.
 */
class ResultView final : public QGroupBox
{
    Q_OBJECT

public:
    explicit ResultView(QWidget *parent = nullptr);
    ~ResultView() override;

    /// What is made visible, all as the film gets it.
    struct Subject
    {
        QImage decoded;
        RoiSourceFrame frame;
        Roi roi;
        RoiLook look;
        QString caption; ///< what else is to be known of the film
    };

    void showSubject(const Subject &subject);
    /// Shows @p text where there is nothing to be seen.
    void showMessage(const QString &text);

private:
    class Picture;

    void render();

    Picture *m_picture; // this and the label are owned as children
    QLabel *m_caption;
    Subject m_subject;
    QTimer m_rendering;
};
