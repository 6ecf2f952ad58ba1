#include "roi/framepanel.h"

#include "base/utctext.h"
#include "imaging/framedecoder.h"
#include "roi/roicanvas.h"
#include "roi/solarposition.h"
#include "ui_framepanel.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QKeyEvent>
#include <QSignalBlocker>

#include <algorithm>

namespace {

QString frameMetaText(const RoiSourceFrame &frame, const QSize &size)
{
    const QString what = frame.actualUtc.isValid() ? UtcText::toOverlayText(frame.actualUtc)
                                                   : QFileInfo(frame.file).fileName();
    return QStringLiteral("%1   |   %2 x %3")
        .arg(what, QString::number(size.width()), QString::number(size.height()));
}

QString cannotDecodeText(const RoiSourceFrame &frame)
{
    return FramePanel::tr("Cannot decode %1").arg(frame.file);
}

} // namespace

FramePanel::FramePanel(QWidget *parent) : QWidget(parent), m_ui(std::make_unique<Ui::FramePanel>())
{
    m_ui->setupUi(this);
    m_ui->frameView->installEventFilter(this);
    for (QLabel *line : {m_ui->cursorLabel, m_ui->regionLabel}) // the canvas keeps its size
        line->setMinimumHeight(line->fontMetrics().lineSpacing());
    m_ui->frameSlider->setEnabled(false);
    m_canvas = new RoiCanvas(m_ui->frameView, this);
    m_canvas->showMessage(tr("Open a session to inspect the captured full frames."));
    m_decoding.setSingleShot(true);
    connect(&m_decoding, &QTimer::timeout, this, &FramePanel::showWanted);
    connect(m_ui->frameSlider, &QSlider::valueChanged, this, &FramePanel::wantFrame);
    connect(m_ui->fitButton, &QPushButton::clicked, m_canvas, &RoiCanvas::fit);
    connectCanvas();
}

FramePanel::~FramePanel() = default;

void FramePanel::clear()
{
    m_frames.clear();
    showNone({});
}

void FramePanel::showFrames(const QVector<RoiSourceFrame> &frames)
{
    m_frames = frames;
    const int count = frames.size();
    const QSignalBlocker quiet(m_ui->frameSlider);
    m_ui->frameSlider->setEnabled(count > 1);
    m_ui->frameSlider->setRange(0, std::max(count - 1, 0));
    m_ui->frameSlider->setPageStep(std::max(count / 10, 1));
    m_ui->frameSlider->setValue(0);
    if (count > 0)
        wantFrame(0);
    else
        showNone(tr("The original PNG frames are not present for this datasource."));
}

void FramePanel::showRegionSize(const QString &text)
{
    m_ui->regionLabel->setText(text);
}

void FramePanel::startDrawing()
{
    if (m_image.isNull()) {
        emit statusChanged(cannotDecodeText(m_frame));
        return;
    }
    m_canvas->startDrawing();
    m_ui->frameView->setFocus(); // Return draws half of the frame
    emit statusChanged(tr("Drag a rectangle on the image to define the new ROI."));
}

void FramePanel::focusSlider()
{
    m_ui->frameSlider->setFocus();
}

void FramePanel::endDrawing()
{
    if (!m_canvas->isDrawing())
        return;
    m_canvas->cancelDrawing();
    emit statusChanged(QString()); // it asks for a rectangle
}

/// Keys of the canvas: where the view would scroll they step through the frames.
bool FramePanel::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    switch (static_cast<QKeyEvent *>(event)->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (!m_canvas->isDrawing())
            return false;
        m_canvas->drawMiddle();
        return true;
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_Home:
    case Qt::Key_End:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
        return QCoreApplication::sendEvent(m_ui->frameSlider, event);
    default:
        return false;
    }
}

void FramePanel::wantFrame(int index)
{
    endDrawing();
    m_ui->frameCounterLabel->setText(QStringLiteral("%1 / %2").arg(index + 1).arg(m_frames.size()));
    m_decoding.start();
}

void FramePanel::showWanted()
{
    const int index = m_ui->frameSlider->value();
    m_frame = m_frames.at(index);
    m_image = FrameDecoder::decode(m_frame.file);
    if (m_image.isNull()) {
        m_canvas->showMessage(cannotDecodeText(m_frame));
        emit statusChanged(cannotDecodeText(m_frame));
    } else {
        m_canvas->showFrame(QPixmap::fromImage(m_image));
    }
    m_ui->frameMetaLabel->setText(frameMetaText(m_frame, m_image.size()));
    emit frameChanged();
    if (index == 0)
        m_canvas->fit();
}

void FramePanel::showNone(const QString &text)
{
    endDrawing();
    m_decoding.stop();
    m_frame = {};
    m_image = {};
    m_canvas->showMessage(text);
    m_ui->frameCounterLabel->setText(QStringLiteral("0 / 0"));
    m_ui->frameMetaLabel->clear();
    m_ui->cursorLabel->clear();
    emit statusChanged(text);
    emit frameChanged();
}

void FramePanel::showCursor(const QPointF &pixel)
{
    m_ui->cursorLabel->setText(
        m_image.rect().contains(pixel.toPoint())
            ? SolarPosition::pixelText(pixel, m_image.size(), m_frame.metadata)
            : QString());
}

void FramePanel::connectCanvas()
{
    connect(m_canvas, &RoiCanvas::hovered, this, &FramePanel::showCursor);
    connect(m_canvas, &RoiCanvas::left, m_ui->cursorLabel, &QLabel::clear);
    connect(m_canvas, &RoiCanvas::rectangleTooSmall, this,
            [this] { emit statusChanged(tr("ROI creation canceled: rectangle too small.")); });
    connect(m_canvas, &RoiCanvas::startedOutside, this,
            [this] { emit statusChanged(tr("Start the ROI selection inside the image.")); });
}
