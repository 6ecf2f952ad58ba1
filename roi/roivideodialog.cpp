#include "roi/roivideodialog.h"

#include "base/plainmessagebox.h"
#include "base/runtimeconfig.h"
#include "base/utctext.h"
#include "imaging/framedecoder.h"
#include "output/sessionfiles.h"
#include "roi/roicanvas.h"
#include "roi/roiprogressdialog.h"
#include "ui_roivideodialog.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QKeyEvent>
#include <QSignalBlocker>
#include <QTimer>

#include <algorithm>
#include <utility>

namespace {

QString boxTitle()
{
    return RoiVideoDialog::tr("ROI video");
}

QString sourceRowText(const RoiSource &source)
{
    const QString count = source.frames.isEmpty()
                              ? RoiVideoDialog::tr("  [no original PNGs]")
                              : RoiVideoDialog::tr("  [%1 frames]").arg(source.frames.size());
    return source.nickname + count;
}

QString frameMetaText(const RoiSourceFrame &frame, const QSize &size)
{
    const QString what = frame.actualUtc.isValid() ? UtcText::toOverlayText(frame.actualUtc)
                                                   : QFileInfo(frame.file).fileName();
    return QStringLiteral("%1   |   %2 x %3")
        .arg(what, QString::number(size.width()), QString::number(size.height()));
}

QString cannotDecodeText(const RoiSourceFrame &frame)
{
    return RoiVideoDialog::tr("Cannot decode %1").arg(frame.file);
}

/// A failure in one line, without the encoder's output.
QString summary(const QString &errorText)
{
    return errorText.section(QStringLiteral("\n\n"), 0, 0)
        .replace(QLatin1Char('\n'), QLatin1Char(' '));
}

} // namespace

RoiVideoDialog::RoiVideoDialog(const QString &initialSessionDirectory, QWidget *parent)
    : QDialog(parent), m_ui(std::make_unique<Ui::RoiVideoDialog>())
{
    m_ui->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    setWindowFlag(Qt::WindowMaximizeButtonHint);
    m_ui->splitter->setStretchFactor(0, 1);
    m_ui->splitter->setSizes({860, 400});              // only their ratio counts
    m_ui->frameView->setFocusProxy(m_ui->frameSlider); // arrow keys step through the frames
    m_canvas = new RoiCanvas(m_ui->frameView, this);
    m_canvas->showMessage(tr("Open a session to inspect the captured full frames."));
    connectWidgets();
    connectCanvas();
    connectRun();
    showSource(-1);
    m_ui->browseButton->setFocus();
    const QDir initial(initialSessionDirectory);
    if (!initialSessionDirectory.isEmpty() && initial.exists(SessionFiles::descriptor()))
        loadSession(initialSessionDirectory, &m_initialError);
}

RoiVideoDialog::~RoiVideoDialog() = default;

bool RoiVideoDialog::loadSession(const QString &directory, QString *errorText)
{
    const std::optional<StoredSession> loaded = RoiSession::load(directory, errorText);
    if (loaded)
        showSession(*loaded);
    return loaded.has_value();
}

void RoiVideoDialog::reject()
{
    switch (m_activity) {
    case Activity::None:
        if (m_ui->roiBox->mayBeLeft())
            QDialog::reject();
        break;
    case Activity::LookingUp:
        m_activity = Activity::Canceling;
        m_lookup.abort();
        break;
    case Activity::Filming:
        m_generator.cancel();
        break;
    case Activity::Canceling:
        break;
    }
}

/// Esc ends drawing first, and closes the dialog only when nothing is being drawn.
void RoiVideoDialog::keyPressEvent(QKeyEvent *event)
{
    if (event->matches(QKeySequence::Cancel) && m_canvas->isDrawing())
        endDrawing();
    else
        QDialog::keyPressEvent(event);
}

void RoiVideoDialog::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    sendRemarks();
    if (!m_initialError.isEmpty())
        QTimer::singleShot(0, this, [this] { warn(std::exchange(m_initialError, QString())); });
}

void RoiVideoDialog::browse()
{
    const QString directory = QFileDialog::getExistingDirectory(
        this, tr("Select Orvik acquisition session"), RuntimeConfig::outputRoot());
    if (directory.isEmpty())
        return;
    QString errorText;
    const std::optional<StoredSession> chosen = RoiSession::load(directory, &errorText);
    if (!chosen)
        warn(errorText);
    else if (m_ui->roiBox->mayBeLeft())
        showSession(*chosen);
}

void RoiVideoDialog::showSource(int row)
{
    const bool known = row >= 0 && row < m_session.sources.size();
    const int frames = known ? m_session.sources.at(row).frames.size() : 0;
    const QSignalBlocker quiet(m_ui->frameSlider);
    m_ui->frameSlider->setEnabled(frames > 1);
    m_ui->frameSlider->setRange(0, std::max(frames - 1, 0));
    m_ui->frameSlider->setPageStep(std::max(frames / 10, 1));
    m_ui->frameSlider->setValue(0);
    if (known)
        showFrame(0);
}

void RoiVideoDialog::showFrame(int index)
{
    endDrawing();
    const QVector<RoiSourceFrame> &frames = currentSource()->frames;
    if (frames.isEmpty()) {
        const QString text = tr("The original PNG frames are not present for this datasource.");
        m_canvas->showMessage(text);
        m_ui->frameCounterLabel->setText(QStringLiteral("0 / 0"));
        m_ui->frameMetaLabel->clear();
        setStatus(text);
    } else {
        const RoiSourceFrame &frame = frames.at(index);
        const QPixmap picture = QPixmap::fromImage(FrameDecoder::decode(frame.file));
        if (picture.isNull()) {
            const QString text = cannotDecodeText(frame);
            m_canvas->showMessage(text);
            setStatus(text);
        } else {
            m_canvas->showFrame(picture);
        }
        m_ui->frameCounterLabel->setText(
            QStringLiteral("%1 / %2").arg(index + 1).arg(frames.size()));
        m_ui->frameMetaLabel->setText(frameMetaText(frame, picture.size()));
    }
    m_ui->roiBox->setFrameSize(m_canvas->frameSize());
    drawRegions();
    showScaleLine();
    if (index == 0)
        m_canvas->fit();
}

void RoiVideoDialog::startDrawing()
{
    if (!currentSource() || currentSource()->frames.isEmpty()) {
        warn(tr("Load a datasource with original PNG frames first."));
    } else if (m_canvas->frameSize().isEmpty()) {
        setStatus(cannotDecodeText(currentSource()->frames.at(m_ui->frameSlider->value())));
    } else {
        m_canvas->startDrawing();
        setStatus(tr("Drag a rectangle on the image to define the new ROI."));
    }
}

void RoiVideoDialog::endDrawing()
{
    if (m_canvas->isDrawing())
        setStatus(QString()); // it asks the user to draw
    m_canvas->cancelDrawing();
}

void RoiVideoDialog::createRoi(const QRectF &pixels)
{
    const QString name = m_ui->roiBox->add(pixels);
    setStatus(tr("Created %1. Adjust X/Y/Width/Height or rotation if needed.").arg(name));
}

void RoiVideoDialog::drawRegions()
{
    m_canvas->showRegions(m_ui->roiBox->pixelRects(), m_ui->roiBox->currentRow());
}

void RoiVideoDialog::generate()
{
    endDrawing();
    m_ui->roiBox->commitTyped();
    RoiVideoPlan plan = planFromWidgets();
    if (plan.rois.isEmpty()) {
        warn(tr("Create and check at least one ROI."));
        return;
    }
    if (!m_ui->roiBox->store()) // a film must always be traceable to a stored definition
        return;
    if (plan.sources.isEmpty()) {
        warn(tr("No original PNG frames are available for the selected datasource(s)."));
        return;
    }
    const bool canceled = plan.scaleOverlay && !findScales(plan);
    const auto outcome = canceled ? RoiVideoGenerator::Outcome::Canceled : film(plan);
    enterActivity(Activity::None);
    report(outcome);
}

void RoiVideoDialog::connectWidgets()
{
    connect(m_ui->browseButton, &QPushButton::clicked, this, &RoiVideoDialog::browse);
    connect(m_ui->sourceCombo, qOverload<int>(&QComboBox::currentIndexChanged), this,
            &RoiVideoDialog::showSource);
    connect(m_ui->frameSlider, &QSlider::valueChanged, this, &RoiVideoDialog::showFrame);
    connect(m_ui->roiBox, &RoiEditor::regionsChanged, this, &RoiVideoDialog::drawRegions);
    connect(m_ui->roiBox, &RoiEditor::drawingRequested, this, &RoiVideoDialog::startDrawing);
    connect(m_ui->roiBox, &RoiEditor::logMessage, this, &RoiVideoDialog::logMessage);
    connect(m_ui->generateButton, &QPushButton::clicked, this, &RoiVideoDialog::generate);
}

void RoiVideoDialog::connectRun()
{
    connect(&m_lookup, &ScaleLookup::logMessage, this, &RoiVideoDialog::logMessage);
    connect(&m_lookup, &ScaleLookup::statusChanged, this, &RoiVideoDialog::setStatus);
    connect(&m_generator, &RoiVideoGenerator::logMessage, this, &RoiVideoDialog::logMessage);
}

void RoiVideoDialog::connectCanvas()
{
    connect(m_ui->fitButton, &QPushButton::clicked, m_canvas, &RoiCanvas::fit);
    connect(m_canvas, &RoiCanvas::rectangleDrawn, this, &RoiVideoDialog::createRoi);
    connect(m_canvas, &RoiCanvas::rectangleTooSmall, this,
            [this] { setStatus(tr("ROI creation canceled: rectangle too small.")); });
    connect(m_canvas, &RoiCanvas::startedOutside, this,
            [this] { setStatus(tr("Start the ROI selection inside the image.")); });
}

void RoiVideoDialog::showSession(const StoredSession &session)
{
    m_session = session;
    m_ui->roiBox->load(m_session.directory);
    fillWidgets();
    const int row = m_session.firstWithFrames();
    {
        const QSignalBlocker quiet(m_ui->sourceCombo);
        m_ui->sourceCombo->setCurrentIndex(row);
    }
    showSource(row);
    m_ui->frameSlider->setFocus();
    setStatus(tr("Session loaded: %1 datasource(s), %2 with original PNG frames.")
                  .arg(m_session.sources.size())
                  .arg(m_session.sourcesWithFrames()));
    m_session.remarks += RoiVideoGenerator::restoreEarlierFilms(m_session);
    sendRemarks();
}

void RoiVideoDialog::fillWidgets()
{
    {
        const QSignalBlocker quiet(m_ui->sourceCombo);
        m_ui->sourceCombo->clear();
        for (const RoiSource &source : std::as_const(m_session.sources))
            m_ui->sourceCombo->addItem(sourceRowText(source));
    }
    m_ui->sessionEdit->setText(QDir::toNativeSeparators(m_session.directory));
    m_ui->fpsSpin->setValue(m_session.videoFps);
    m_ui->crfSpin->setValue(m_session.videoCrf);
    m_ui->sourceOverlayCheck->setChecked(m_session.sourceOverlay);
    m_ui->scaleOverlayCheck->setChecked(m_session.scaleOverlay);
}

/// The log is connected only after the constructor has returned.
void RoiVideoDialog::sendRemarks()
{
    if (!isVisible())
        return;
    const QStringList remarks = std::exchange(m_session.remarks, QStringList());
    for (const QString &remark : remarks)
        emit logMessage(remark);
}

void RoiVideoDialog::showScaleLine()
{
    const RoiSource *source = currentSource();
    const int widthPx = m_canvas->frameSize().width();
    if (!source || widthPx < 1) {
        m_ui->scaleLabel->setText(ScaleLookup::lineText(0, {}));
        return;
    }
    const QJsonObject &own = source->frames.at(m_ui->frameSlider->value()).metadata;
    m_ui->scaleLabel->setText(
        ScaleLookup::lineText(widthPx, ScaleLookup::isUsable(own) ? own : m_lookup.known(*source)));
}

/// Null while no session is loaded.
const RoiSource *RoiVideoDialog::currentSource() const
{
    const int row = m_ui->sourceCombo->currentIndex();
    return row >= 0 ? &m_session.sources.at(row) : nullptr;
}

RoiVideoPlan RoiVideoDialog::planFromWidgets() const
{
    RoiVideoPlan plan;
    plan.sessionDirectory = m_session.directory;
    for (int row = 0; row < m_session.sources.size(); ++row) {
        const bool chosen =
            m_ui->allSourcesCheck->isChecked() || row == m_ui->sourceCombo->currentIndex();
        if (chosen && !m_session.sources.at(row).frames.isEmpty())
            plan.sources.append({m_session.sources.at(row), {}});
    }
    const QVector<Roi> &rois = m_ui->roiBox->rois();
    for (int row = 0; row < rois.size(); ++row) {
        if (rois.at(row).enabled)
            plan.rois.append({row + 1, rois.at(row)});
    }
    plan.fps = m_ui->fpsSpin->value();
    plan.crf = m_ui->crfSpin->value();
    plan.timestampOverlay = m_ui->timestampCheck->isChecked();
    plan.sourceOverlay = m_ui->sourceOverlayCheck->isChecked();
    plan.scaleOverlay = m_ui->scaleOverlayCheck->isChecked();
    plan.intro = m_ui->introCheck->isChecked();
    plan.introSeconds = m_ui->zoomDurationSpin->value();
    return plan;
}

/// False when the user canceled.
bool RoiVideoDialog::findScales(RoiVideoPlan &plan)
{
    enterActivity(Activity::LookingUp);
    for (RoiFilmSource &filmed : plan.sources) {
        if (m_activity == Activity::LookingUp)
            filmed.scaleMetadata = m_lookup.ensure(filmed.source, m_session.startUtc);
    }
    showScaleLine();
    return m_activity == Activity::LookingUp;
}

RoiVideoGenerator::Outcome RoiVideoDialog::film(const RoiVideoPlan &plan)
{
    enterActivity(Activity::Filming);
    RoiProgressDialog progress(m_generator, plan.totalFrames(), this);
    progress.show();
    return m_generator.run(plan);
}

void RoiVideoDialog::report(RoiVideoGenerator::Outcome outcome)
{
    switch (outcome) {
    case RoiVideoGenerator::Outcome::Completed:
        setStatus(tr("Completed: %1 ROI video(s) created.").arg(m_generator.createdVideos()));
        inform(tr("Created %1 ROI video(s).\n\nOriginal PNG frames were not modified.")
                   .arg(m_generator.createdVideos()));
        break;
    case RoiVideoGenerator::Outcome::Canceled:
        setStatus(tr("ROI video generation canceled. Original frames were not modified."));
        inform(m_ui->statusLabel->text());
        break;
    case RoiVideoGenerator::Outcome::Failed:
        setStatus(summary(m_generator.errorText()));
        warn(m_generator.errorText());
        break;
    }
}

/// Canceling hides the modal progress dialog while the run is still on the stack. Without the lock
/// the user could start a second run then, or close the dialog.
void RoiVideoDialog::enterActivity(Activity activity)
{
    m_activity = activity;
    const bool locked = activity != Activity::None;
    for (QWidget *part :
         {static_cast<QWidget *>(m_ui->splitter), static_cast<QWidget *>(m_ui->browseButton),
          static_cast<QWidget *>(m_ui->generateButton)})
        part->setDisabled(locked);
    if (!locked)
        m_ui->generateButton->setFocus();
}

void RoiVideoDialog::setStatus(const QString &text)
{
    m_ui->statusLabel->setText(text);
}

void RoiVideoDialog::warn(const QString &text)
{
    PlainMessageBox::show(this, QMessageBox::Warning, boxTitle(), text);
}

void RoiVideoDialog::inform(const QString &text)
{
    PlainMessageBox::show(this, QMessageBox::Information, boxTitle(), text);
}
