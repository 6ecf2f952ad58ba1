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

const QPointF beside(-1.0, -1.0); // the frame

QString cannotDecodeText(const RoiSourceFrame &frame)
{
    return FramePanel::tr("Cannot decode %1").arg(frame.file);
}

} // namespace

FramePanel::FramePanel(QWidget *parent) : QWidget(parent), m_ui(std::make_unique<Ui::FramePanel>())
{
    m_ui->setupUi(this);
    m_ui->frameView->installEventFilter(this);
    m_ui->frameSlider->installEventFilter(this);
    keepHeights();
    m_ui->frameSlider->setEnabled(false);
    m_canvas = new RoiCanvas(m_ui->frameView, this);
    m_canvas->showMessage(tr("Open a session to inspect the captured full frames."));
    m_decoding.setSingleShot(true);
    connect(&m_decoding, &QTimer::timeout, this, &FramePanel::showWanted);
    connect(m_ui->fitButton, &QPushButton::clicked, m_canvas, &RoiCanvas::fit);
    connectCanvas();
    connectSlider();
    setInterval({});
}

FramePanel::~FramePanel() = default;

void FramePanel::clear()
{
    m_frames.clear();
    setInterval({});
    showNone({});
}

void FramePanel::showFrames(const QVector<RoiSourceFrame> &frames, int row)
{
    rest();
    m_frames = frames;
    m_row = row;
    const int count = frames.size();
    const QSignalBlocker quiet(m_ui->frameSlider);
    m_ui->frameSlider->setEnabled(count > 1);
    m_ui->frameSlider->setRange(0, std::max(count - 1, 0));
    m_ui->frameSlider->setPageStep(std::max(count / 10, 1));
    m_ui->frameSlider->setValue(0);
    setInterval(m_interval);
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
    m_player.stop();
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

void FramePanel::rest()
{
    endDrawing();
    m_player.stop();
}

/// Keys of the canvas, where the view would scroll, and of the slider.
bool FramePanel::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    auto *key = static_cast<QKeyEvent *>(event);
    if (watched == m_ui->frameSlider)
        return pageBy(key->key());
    const bool isReturn = key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter;
    if (isReturn && m_canvas->isDrawing()) {
        m_canvas->drawMiddle();
        return true;
    }
    return stepBy(key);
}

/// Keys that none of the buttons takes.
void FramePanel::keyPressEvent(QKeyEvent *event)
{
    if (!stepBy(event))
        QWidget::keyPressEvent(event);
}

/// Hands the keys that step through the frames to the slider; false for others.
bool FramePanel::stepBy(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_Home:
    case Qt::Key_End:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
        if (m_ui->frameSlider->isEnabled()) // else the key would come back to this panel
            QCoreApplication::sendEvent(m_ui->frameSlider, event);
        return true;
    default:
        return false;
    }
}

/// Page Down goes on through the frames, as through a document; a slider would go back.
bool FramePanel::pageBy(int key)
{
    if (key != Qt::Key_PageUp && key != Qt::Key_PageDown)
        return false;
    m_ui->frameSlider->triggerAction(key == Qt::Key_PageDown ? QSlider::SliderPageStepAdd
                                                             : QSlider::SliderPageStepSub);
    return true;
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
    showCursor(m_canvas->mousePosition());
    emit frameChanged();
    if (index == 0)
        m_canvas->fit();
}

void FramePanel::togglePlaying()
{
    if (m_player.isPlaying()) {
        m_player.stop();
        return;
    }
    const QSlider *slider = m_ui->frameSlider;
    const bool atEnd = slider->value() == slider->maximum();
    m_player.play(atEnd ? slider->minimum() : slider->value(), slider->maximum());
}

void FramePanel::changeInterval(FrameInterval (*change)(FrameInterval,
                                                        const QVector<RoiSourceFrame> &, int, int))
{
    const int index = m_ui->frameSlider->value();
    if (FrameIntervals::haveTimes(m_frames) && !m_frames.at(index).actualUtc.isValid())
        emit statusChanged(tr("This frame has no time. Choose one that has."));
    else
        tellInterval(change(m_interval, m_frames, m_row, index));
}

void FramePanel::tellInterval(const FrameInterval &interval)
{
    setInterval(interval);
    emit statusChanged(m_ui->intervalLabel->toolTip());
}

void FramePanel::setInterval(const FrameInterval &interval)
{
    m_interval = interval;
    const QVector<int> kept = FrameIntervals::kept(interval, m_frames, m_row);
    m_kept = kept.size();
    std::optional<QPair<int, int>> shown;
    if (!kept.isEmpty() && m_kept < m_frames.size())
        shown = {kept.first(), kept.last()};
    m_ui->frameSlider->setInterval(shown);
    m_ui->intervalLabel->setText(
        m_frames.isEmpty() ? QString() : FrameIntervals::keptText(kept, m_frames.size()));
    m_ui->intervalLabel->setToolTip(FrameIntervals::explanation(interval, m_row));
    for (QToolButton *button :
         {static_cast<QToolButton *>(m_ui->playButton), m_ui->fromButton, m_ui->toButton})
        button->setEnabled(m_frames.size() > 1);
    m_ui->allButton->setEnabled(!FrameIntervals::isAll(interval));
    emit intervalChanged();
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
    showCursor(beside);
    emit statusChanged(text);
    emit frameChanged();
}

/// Shows nothing where the metadata do not tell the position.
void FramePanel::showCursor(const QPointF &pixel)
{
    const bool inside = QRectF(m_image.rect()).contains(pixel);
    const QString text = SolarPosition::pixelText(pixel, m_image.size(), m_frame.metadata);
    m_ui->cursorLabel->setText(inside || text.isEmpty() ? text : tr("Cursor: --"));
}

/// Gives the lines below the canvas a fixed height, so that the canvas keeps its size.
void FramePanel::keepHeights()
{
    for (QLabel *line : {m_ui->cursorLabel, m_ui->regionLabel}) {
        line->setText(QStringLiteral("R\u2609")); // the sign may come from a taller fallback font
        line->setFixedHeight(line->sizeHint().height());
        line->clear();
    }
}

void FramePanel::connectCanvas()
{
    connect(m_canvas, &RoiCanvas::hovered, this, &FramePanel::showCursor);
    connect(m_canvas, &RoiCanvas::left, this, [this] { showCursor(beside); });
    connect(m_canvas, &RoiCanvas::rectangleTooSmall, this,
            [this] { emit statusChanged(tr("ROI creation canceled: rectangle too small.")); });
    connect(m_canvas, &RoiCanvas::startedOutside, this,
            [this] { emit statusChanged(tr("Start the ROI selection inside the image.")); });
}

void FramePanel::connectSlider()
{
    const QSlider *slider = m_ui->frameSlider;
    connect(slider, &QSlider::valueChanged, this, &FramePanel::wantFrame);
    connect(slider, &QSlider::actionTriggered, &m_player, &FramePlayer::stop); // by the user
    connect(m_canvas, &RoiCanvas::regionDragged, &m_player, &FramePlayer::stop);
    connect(&m_player, &FramePlayer::frameDue, slider, &QSlider::setValue);
    connect(&m_player, &FramePlayer::playingChanged, m_ui->playButton, &PlayButton::showPlaying);
    connect(m_ui->playButton, &QToolButton::clicked, this, &FramePanel::togglePlaying);
    connect(m_ui->fromButton, &QToolButton::clicked, this,
            [this] { changeInterval(&FrameIntervals::beginningAt); });
    connect(m_ui->toButton, &QToolButton::clicked, this,
            [this] { changeInterval(&FrameIntervals::endingAt); });
    connect(m_ui->allButton, &QToolButton::clicked, this, [this] { tellInterval({}); });
}
