#include "roi/roivideodialog.h"

#include "base/plainmessagebox.h"
#include "base/runtimeconfig.h"
#include "base/utctext.h"
#include "imaging/framedecoder.h"
#include "output/sessionfiles.h"
#include "roi/roicanvas.h"
#include "roi/roigeometry.h"
#include "ui_roivideodialog.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QKeyEvent>
#include <QLabel>
#include <QProgressDialog>
#include <QShortcut>
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

QListWidgetItem *makeRoiItem(const Roi &roi)
{
    auto *item = new QListWidgetItem(roi.name);
    item->setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemIsUserCheckable);
    item->setCheckState(roi.enabled ? Qt::Checked : Qt::Unchecked);
    return item;
}

/// A failure in one line, without the encoder's own words.
QString summary(const QString &errorText)
{
    return errorText.section(QStringLiteral("\n\n"), 0, 0)
        .replace(QLatin1Char('\n'), QLatin1Char(' '));
}

/// Names of regions and datasources are shown as they stand, whatever markup they hold.
QLabel *makePlainLabel(const QString &text, QWidget *parent)
{
    auto *label = new QLabel(text, parent);
    label->setTextFormat(Qt::PlainText);
    label->setAlignment(Qt::AlignCenter);
    label->setWordWrap(true);
    return label;
}

void setField(QSpinBox *field, int lowest, int highest, int value)
{
    const QSignalBlocker quiet(field);
    field->setEnabled(true);
    field->setRange(lowest, std::max(lowest, highest));
    field->setValue(value);
}

} // namespace

RoiVideoDialog::RoiVideoDialog(const QString &initialSessionDirectory, QWidget *parent)
    : QDialog(parent), m_ui(std::make_unique<Ui::RoiVideoDialog>())
{
    m_ui->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    setWindowFlag(Qt::WindowMaximizeButtonHint);
    m_ui->splitter->setStretchFactor(0, 1);
    m_ui->splitter->setSizes({860, 400}); // in proportion: the canvas takes what there is
    m_ui->frameView->setFocusProxy(m_ui->frameSlider); // arrow keys step through the frames
    m_canvas = new RoiCanvas(m_ui->frameView, this);
    m_canvas->showMessage(tr("Open a session to inspect the captured full frames."));
    connectWidgets();
    connectCanvas();
    showSource(-1);
    showRoiList(-1);
    m_ui->browseButton->setFocus();
    const QDir initial(initialSessionDirectory);
    if (!initialSessionDirectory.isEmpty() && initial.exists(SessionFiles::descriptor()))
        loadSession(initialSessionDirectory, &m_initialError);
}

RoiVideoDialog::~RoiVideoDialog() = default;

bool RoiVideoDialog::loadSession(const QString &directory, QString *errorText)
{
    std::optional<StoredSession> loaded = RoiSession::load(directory, errorText);
    if (!loaded)
        return false;
    m_session = std::move(*loaded);
    m_storedRois = m_rois = RoiSet::load(m_session.directory);
    showSession();
    return true;
}

void RoiVideoDialog::reject()
{
    if (m_lookingUp) {
        m_lookingUp = false;
        m_lookup.abort();
    } else if (mayLeaveRois()) {
        QDialog::reject();
    }
}

/// The first Esc ends a drawing, the next one closes.
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
    if (!m_initialError.isEmpty())
        QTimer::singleShot(0, this, [this] { warn(std::exchange(m_initialError, QString())); });
}

void RoiVideoDialog::browse()
{
    if (!mayLeaveRois())
        return;
    const QString directory = QFileDialog::getExistingDirectory(
        this, tr("Select Orvik acquisition session"), RuntimeConfig::outputRoot());
    QString errorText;
    if (!directory.isEmpty() && !loadSession(directory, &errorText))
        warn(errorText);
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
    showRoiFields();
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
        setStatus(QString()); // it asks for a rectangle
    m_canvas->cancelDrawing();
}

void RoiVideoDialog::createRoi(const QRectF &pixels)
{
    Roi roi;
    roi.name = RoiSet::defaultName(m_rois.size());
    roi.rect = RoiGeometry::normalizedRect(pixels, m_canvas->frameSize());
    m_rois.append(roi);
    showRoiList(m_rois.size() - 1);
    setStatus(tr("Created %1. Adjust X/Y/Width/Height or rotation if needed.").arg(roi.name));
}

void RoiVideoDialog::deleteRoi()
{
    const int row = m_ui->roiList->currentRow();
    if (!currentRoi())
        return;
    m_rois.remove(row);
    showRoiList(std::min(row, m_rois.size() - 1));
}

void RoiVideoDialog::saveRois()
{
    if (!storeRois())
        return;
    emit logMessage(
        QStringLiteral("ROI definitions saved: %1").arg(RoiSet::filePath(m_session.directory)));
    inform(tr("ROI definitions saved to rois.json."));
}

void RoiVideoDialog::onCurrentRoiChanged()
{
    showRoiFields();
    drawRegions();
}

void RoiVideoDialog::onRoiItemChanged(QListWidgetItem *item)
{
    m_rois[m_ui->roiList->row(item)].enabled = item->checkState() == Qt::Checked;
}

void RoiVideoDialog::onNameEdited(const QString &name)
{
    if (Roi *roi = currentRoi()) {
        roi->name = name;
        m_ui->roiList->currentItem()->setText(name);
    }
}

void RoiVideoDialog::onRotationChosen(int index)
{
    if (Roi *roi = currentRoi())
        roi->rotation = RoiGeometry::rotationAt(index);
}

void RoiVideoDialog::generate()
{
    endDrawing();
    RoiVideoPlan plan = planFromWidgets();
    if (plan.rois.isEmpty()) {
        warn(tr("Create and check at least one ROI."));
        return;
    }
    if (!storeRois()) // a film must always be traceable to a stored definition
        return;
    if (plan.sources.isEmpty()) {
        warn(tr("No original PNG frames are available for the selected datasource(s)."));
        return;
    }
    if (!plan.scaleOverlay || findScales(plan))
        film(plan);
    else
        reportCanceled();
}

void RoiVideoDialog::connectWidgets()
{
    connect(m_ui->browseButton, &QPushButton::clicked, this, &RoiVideoDialog::browse);
    connect(m_ui->sourceCombo, qOverload<int>(&QComboBox::currentIndexChanged), this,
            &RoiVideoDialog::showSource);
    connect(m_ui->frameSlider, &QSlider::valueChanged, this, &RoiVideoDialog::showFrame);
    connect(m_ui->newRoiButton, &QPushButton::clicked, this, &RoiVideoDialog::startDrawing);
    connect(m_ui->deleteRoiButton, &QPushButton::clicked, this, &RoiVideoDialog::deleteRoi);
    connect(m_ui->saveRoisButton, &QPushButton::clicked, this, &RoiVideoDialog::saveRois);
    connect(m_ui->generateButton, &QPushButton::clicked, this, &RoiVideoDialog::generate);
    connect(m_ui->roiList, &QListWidget::currentRowChanged, this,
            &RoiVideoDialog::onCurrentRoiChanged);
    connect(m_ui->roiList, &QListWidget::itemChanged, this, &RoiVideoDialog::onRoiItemChanged);
    connect(m_ui->nameEdit, &QLineEdit::textEdited, this, &RoiVideoDialog::onNameEdited);
    connect(m_ui->rotationCombo, qOverload<int>(&QComboBox::currentIndexChanged), this,
            &RoiVideoDialog::onRotationChosen);
    connectGeometry(m_ui->xSpin, &QRectF::moveLeft, &QSize::width);
    connectGeometry(m_ui->ySpin, &QRectF::moveTop, &QSize::height);
    connectGeometry(m_ui->widthSpin, &QRectF::setWidth, &QSize::width);
    connectGeometry(m_ui->heightSpin, &QRectF::setHeight, &QSize::height);
    auto *deleteKey = new QShortcut(QKeySequence::Delete, m_ui->roiList);
    deleteKey->setContext(Qt::WidgetShortcut);
    connect(deleteKey, &QShortcut::activated, this, &RoiVideoDialog::deleteRoi);
    connect(&m_lookup, &ScaleLookup::logMessage, this, &RoiVideoDialog::logMessage);
    connect(&m_lookup, &ScaleLookup::statusChanged, this, &RoiVideoDialog::setStatus);
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

/// Lets @p field change its own side of the region only: what the others hold beyond whole pixels,
/// or beyond this frame's edge, stays for the other datasources.
void RoiVideoDialog::connectGeometry(QSpinBox *field, void (QRectF::*change)(qreal),
                                     int (QSize::*frameSide)() const)
{
    connect(field, qOverload<int>(&QSpinBox::valueChanged), this,
            [this, change, frameSide](int pixels) {
                if (Roi *roi = currentRoi()) {
                    const QSize frame = m_canvas->frameSize();
                    (roi->rect.*change)(double(pixels) / (frame.*frameSide)());
                    onCurrentRoiChanged();
                }
            });
}

void RoiVideoDialog::showSession()
{
    const QVector<RoiSource> &sources = m_session.sources;
    {
        const QSignalBlocker quiet(m_ui->sourceCombo);
        m_ui->sourceCombo->clear();
        for (const RoiSource &source : sources)
            m_ui->sourceCombo->addItem(sourceRowText(source));
    }
    m_ui->sessionEdit->setText(QDir::toNativeSeparators(m_session.directory));
    m_ui->fpsSpin->setValue(m_session.videoFps);
    m_ui->crfSpin->setValue(m_session.videoCrf);
    m_ui->sourceOverlayCheck->setChecked(m_session.sourceOverlay);
    m_ui->scaleOverlayCheck->setChecked(m_session.scaleOverlay);
    showRoiList(0);

    const auto first = std::find_if(sources.cbegin(), sources.cend(), [](const RoiSource &source) {
        return !source.frames.isEmpty();
    });
    const int row = first == sources.cend() ? 0 : static_cast<int>(first - sources.cbegin());
    {
        const QSignalBlocker quiet(m_ui->sourceCombo);
        m_ui->sourceCombo->setCurrentIndex(row);
    }
    showSource(row);
    m_ui->frameSlider->setFocus();
    setStatus(tr("Session loaded: %1 datasource(s), %2 with original PNG frames.")
                  .arg(sources.size())
                  .arg(m_session.sourcesWithFrames()));
}

void RoiVideoDialog::showRoiList(int currentRow)
{
    {
        const QSignalBlocker quiet(m_ui->roiList);
        m_ui->roiList->clear();
        for (const Roi &roi : qAsConst(m_rois))
            m_ui->roiList->addItem(makeRoiItem(roi));
        m_ui->roiList->setCurrentRow(currentRow);
    }
    onCurrentRoiChanged();
}

void RoiVideoDialog::showRoiFields()
{
    const Roi *roi = currentRoi();
    const QSize frame = m_canvas->frameSize();
    m_ui->deleteRoiButton->setEnabled(roi);
    for (QWidget *field :
         {static_cast<QWidget *>(m_ui->nameEdit), static_cast<QWidget *>(m_ui->rotationCombo)})
        field->setEnabled(roi);
    const QSignalBlocker quiet(m_ui->rotationCombo);
    m_ui->nameEdit->setText(roi ? roi->name : QString());
    m_ui->rotationCombo->setCurrentIndex(roi ? RoiGeometry::rotationIndex(roi->rotation) : 0);
    if (roi && !frame.isEmpty())
        showGeometry(RoiGeometry::pixelRect(roi->rect, frame));
    else
        clearGeometry();
}

/// Without a frame no pixels can be told, and those of the frame before would be wrong.
void RoiVideoDialog::clearGeometry()
{
    for (QSpinBox *field : {m_ui->xSpin, m_ui->ySpin, m_ui->widthSpin, m_ui->heightSpin}) {
        const QSignalBlocker quiet(field);
        field->setEnabled(false);
        field->clear();
    }
}

void RoiVideoDialog::showGeometry(const QRect &pixels)
{
    const QSize frame = m_canvas->frameSize();
    setField(m_ui->xSpin, 0, frame.width() - 2, pixels.x());
    setField(m_ui->ySpin, 0, frame.height() - 2, pixels.y());
    setField(m_ui->widthSpin, 2, frame.width(), pixels.width());
    setField(m_ui->heightSpin, 2, frame.height(), pixels.height());
}

void RoiVideoDialog::drawRegions()
{
    QVector<QRect> regions;
    regions.reserve(m_rois.size());
    for (const Roi &roi : qAsConst(m_rois))
        regions.append(RoiGeometry::pixelRect(roi.rect, m_canvas->frameSize()));
    m_canvas->showRegions(regions, m_ui->roiList->currentRow());
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

/// Writes rois.json; false, after a warning, when that failed.
bool RoiVideoDialog::storeRois()
{
    QString errorText;
    if (!RoiSet::save(m_rois, m_session.directory, &errorText)) {
        warn(errorText);
        return false;
    }
    m_storedRois = m_rois;
    return true;
}

/// Asks what shall become of regions that rois.json does not have; false when the user stays.
bool RoiVideoDialog::mayLeaveRois()
{
    if (m_rois == m_storedRois)
        return true;
    const QString question =
        tr("The ROI definitions of this session have unsaved changes.\nSave them to rois.json?");
    const QMessageBox::StandardButton answer = PlainMessageBox::ask(
        this, boxTitle(), question, QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel,
        QMessageBox::Save);
    return answer == QMessageBox::Discard || (answer == QMessageBox::Save && storeRois());
}

/// Null while no session is loaded.
const RoiSource *RoiVideoDialog::currentSource() const
{
    const int row = m_ui->sourceCombo->currentIndex();
    return row >= 0 ? &m_session.sources.at(row) : nullptr;
}

/// Null when no row of the list is current.
Roi *RoiVideoDialog::currentRoi()
{
    const int row = m_ui->roiList->currentRow();
    return row >= 0 ? &m_rois[row] : nullptr;
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
    for (int row = 0; row < m_rois.size(); ++row) {
        if (m_rois.at(row).enabled)
            plan.rois.append({row + 1, m_rois.at(row)});
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

/// False when the user gave up waiting. Everything but closing is locked meanwhile.
bool RoiVideoDialog::findScales(RoiVideoPlan &plan)
{
    m_lookingUp = true;
    setLocked(true);
    for (RoiFilmSource &filmed : plan.sources) {
        if (m_lookingUp)
            filmed.scaleMetadata = m_lookup.ensure(filmed.source, m_session.startUtc);
    }
    setLocked(false);
    m_ui->generateButton->setFocus();
    showScaleLine();
    return std::exchange(m_lookingUp, false);
}

void RoiVideoDialog::film(const RoiVideoPlan &plan)
{
    QProgressDialog progress(QString(), tr("Cancel"), 0, plan.totalFrames(), this);
    progress.setWindowTitle(tr("Orvik - ROI video"));
    progress.setLabel(makePlainLabel(tr("Preparing ROI video frames..."), &progress));
    progress.setMinimumWidth(420);
    progress.setWindowModality(Qt::WindowModal);
    progress.setMinimumDuration(0);
    progress.setAutoReset(false); // the encoder still works after the last picture
    progress.setAutoClose(false);

    RoiVideoGenerator generator;
    connect(&generator, &RoiVideoGenerator::logMessage, this, &RoiVideoDialog::logMessage);
    connect(&generator, &RoiVideoGenerator::labelChanged, &progress,
            &QProgressDialog::setLabelText);
    connect(&generator, &RoiVideoGenerator::progressChanged, &progress, &QProgressDialog::setValue);
    connect(&progress, &QProgressDialog::canceled, &generator, &RoiVideoGenerator::cancel);
    progress.show();
    const RoiVideoGenerator::Outcome outcome = generator.run(plan);
    progress.hide();
    report(outcome, generator);
}

void RoiVideoDialog::report(RoiVideoGenerator::Outcome outcome, const RoiVideoGenerator &generator)
{
    switch (outcome) {
    case RoiVideoGenerator::Outcome::Completed:
        setStatus(tr("Completed: %1 ROI video(s) created.").arg(generator.createdVideos()));
        inform(tr("Created %1 ROI video(s).\n\nOriginal PNG frames were not modified.")
                   .arg(generator.createdVideos()));
        break;
    case RoiVideoGenerator::Outcome::Canceled:
        reportCanceled();
        break;
    case RoiVideoGenerator::Outcome::Failed:
        setStatus(summary(generator.errorText()));
        warn(generator.errorText());
        break;
    }
}

void RoiVideoDialog::reportCanceled()
{
    const QString text = tr("ROI video generation canceled. Original frames were not modified.");
    setStatus(text);
    inform(text);
}

void RoiVideoDialog::setLocked(bool locked)
{
    for (QWidget *part :
         {static_cast<QWidget *>(m_ui->splitter), static_cast<QWidget *>(m_ui->browseButton),
          static_cast<QWidget *>(m_ui->generateButton)})
        part->setDisabled(locked);
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
