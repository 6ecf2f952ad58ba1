#include "roi/roivideodialog.h"

#include "base/plainmessagebox.h"
#include "base/runtimeconfig.h"
#include "output/sessionfiles.h"
#include "roi/roicanvas.h"
#include "roi/roiencoder.h"
#include "roi/samescale.h"
#include "roi/solarposition.h"
#include "ui_roivideodialog.h"

#include <QDir>
#include <QFileDialog>
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

/// A failure in one line, without the encoder's output.
QString summary(const QString &errorText)
{
    return errorText.section(QStringLiteral("\n\n"), 0, 0)
        .replace(QLatin1Char('\n'), QLatin1Char(' '));
}

} // namespace

RoiVideoDialog::RoiVideoDialog(const QString &initialSessionDirectory, QWidget *parent)
    : QDialog(parent), m_ui(std::make_unique<Ui::RoiVideoDialog>()), m_run(this)
{
    m_ui->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    setWindowFlag(Qt::WindowMaximizeButtonHint);
    m_ui->splitter->setStretchFactor(0, 2); // the pictures take what there is
    m_ui->splitter->setStretchFactor(1, 1);
    m_ui->splitter->setSizes({550, 350, 400}); // only their ratio counts
    connectWidgets();
    connectFrames();
    connectRun();
    m_ui->browseButton->setFocus();
    const QDir initial(initialSessionDirectory);
    if (!initialSessionDirectory.isEmpty() && initial.exists(SessionFiles::descriptor()))
        loadSession(initialSessionDirectory, &m_initialError);
}

RoiVideoDialog::~RoiVideoDialog()
{
    // Destroying the list commits a name that is still being edited in it.
    m_ui->roiBox->disconnect(this);
}

bool RoiVideoDialog::loadSession(const QString &directory, QString *errorText)
{
    const std::optional<StoredSession> loaded = RoiSession::load(directory, errorText);
    if (loaded)
        showSession(*loaded);
    return loaded.has_value();
}

void RoiVideoDialog::reject()
{
    if (m_run.isActive())
        m_run.cancel();
    else if (m_ui->roiBox->mayBeLeft())
        QDialog::reject();
}

void RoiVideoDialog::abandon()
{
    m_isAbandoned = true;
    m_ui->framePanel->rest();
    m_run.cancel();
    const QList<QDialog *> open = findChildren<QDialog *>();
    for (QDialog *dialog : open) // each waits in an event loop above this one
        dialog->reject();
    QDialog::reject();
}

/// Esc ends drawing or takes a drag back first, and closes the dialog only after that.
void RoiVideoDialog::keyPressEvent(QKeyEvent *event)
{
    RoiCanvas &canvas = m_ui->framePanel->canvas();
    if (!event->matches(QKeySequence::Cancel) || !(canvas.isDrawing() || canvas.isDragging())) {
        QDialog::keyPressEvent(event);
        return;
    }
    m_ui->framePanel->endDrawing();
    canvas.cancelDrag();
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
    showScaleWarning();
    m_ui->framePanel->showFrames(m_session.sources.at(row).frames, row);
}

void RoiVideoDialog::showFrame()
{
    m_ui->roiBox->setFrameSize(m_ui->framePanel->image().size());
    drawRegions();
    showScaleLine();
}

void RoiVideoDialog::startDrawing()
{
    if (m_ui->framePanel->hasFrames())
        m_ui->framePanel->startDrawing();
    else
        warn(tr("Load a datasource with original PNG frames first."));
}

void RoiVideoDialog::createRoi(const QRectF &pixels)
{
    const QString name = m_ui->roiBox->add(pixels);
    setStatus(tr("Created %1. Adjust X/Y/Width/Height or rotation if needed.").arg(name));
}

void RoiVideoDialog::drawRegions()
{
    FramePanel &panel = *m_ui->framePanel;
    const QVector<RegionMark> marks = m_ui->roiBox->marks();
    const int row = m_ui->roiBox->currentRow();
    panel.canvas().showRegions(marks, row);
    const QSize size = row < 0 ? QSize() : marks.at(row).pixels.size();
    panel.showRegionSize(SolarPosition::sizeText(size, panel.image().size(), frameMetadata()));
    showResult();
}

/// What the current region makes of the frame; the image is decoded once, for the canvas.
void RoiVideoDialog::showResult()
{
    const FramePanel &panel = *m_ui->framePanel;
    const int row = m_ui->roiBox->currentRow();
    if (panel.image().isNull() || row < 0) {
        m_ui->resultBox->showMessage(
            panel.image().isNull() ? QString()
                                   : tr("Draw or select a region to see what its film will show."));
        return;
    }
    RoiVideoPlan plan;
    m_ui->outputBox->fill(plan);
    const int pictures = panel.keptFrames() + plan.introFrames();
    const QString caption =
        tr("%1 frame(s), %2 s")
            .arg(QString::number(pictures),
                 QString::number(static_cast<double>(pictures) / plan.fps, 'f', 2));
    const RoiSource &source = m_session.sources.at(m_ui->sourceCombo->currentIndex());
    const RoiLook look{plan.overlays, source.nickname, sourceMetadata()};
    m_ui->resultBox->showSubject(
        {panel.image(), panel.frame(), m_ui->roiBox->rois().at(row), look, caption});
}

void RoiVideoDialog::generate()
{
    m_ui->framePanel->rest();
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
    if (!leaveOutEmpty(plan))
        return;
    QString errorText;
    if (!RoiEncoder::isPresent(RuntimeConfig::ffmpegPath(),
                               &errorText)) { // before the service is asked
        warn(errorText);
        return;
    }
    const RoiVideoGenerator::Outcome outcome = m_run.make(plan, m_session.startUtc);
    m_ui->filmsBox->showFilms(m_run.generator().films());
    report(outcome);
}

void RoiVideoDialog::connectWidgets()
{
    connect(m_ui->browseButton, &QPushButton::clicked, this, &RoiVideoDialog::browse);
    connect(m_ui->sourceCombo, qOverload<int>(&QComboBox::currentIndexChanged), this,
            &RoiVideoDialog::showSource);
    connect(m_ui->roiBox, &RoiEditor::regionsChanged, this, &RoiVideoDialog::drawRegions);
    connect(m_ui->roiBox, &RoiEditor::drawingRequested, this, &RoiVideoDialog::startDrawing);
    connect(m_ui->roiBox, &RoiEditor::proportionChanged, &m_ui->framePanel->canvas(),
            &RoiCanvas::setProportion);
    connect(m_ui->roiBox, &RoiEditor::logMessage, this, &RoiVideoDialog::logMessage);
    connect(m_ui->outputBox, &FilmOptions::changed, this, &RoiVideoDialog::showResult);
    connect(m_ui->outputBox, &FilmOptions::changed, this,
            [this] { m_ui->framePanel->setRate(m_ui->outputBox->fps()); });
    connect(m_ui->outputBox, &FilmOptions::changed, this, &RoiVideoDialog::showScaleWarning);
    connect(m_ui->generateButton, &QPushButton::clicked, this, &RoiVideoDialog::generate);
}

void RoiVideoDialog::connectRun()
{
    connect(&m_run, &RoiRun::logMessage, this, &RoiVideoDialog::logMessage);
    connect(m_ui->filmsBox, &FilmList::logMessage, this, &RoiVideoDialog::logMessage);
    connect(&m_run, &RoiRun::statusChanged, this, &RoiVideoDialog::setStatus);
    connect(&m_run, &RoiRun::activeChanged, this, &RoiVideoDialog::lock);
}

void RoiVideoDialog::connectFrames()
{
    const FramePanel *panel = m_ui->framePanel;
    connect(panel, &FramePanel::frameChanged, this, &RoiVideoDialog::showFrame);
    connect(panel, &FramePanel::intervalChanged, this, &RoiVideoDialog::showResult);
    connect(panel, &FramePanel::statusChanged, this, &RoiVideoDialog::setStatus);
    const RoiCanvas *canvas = &panel->canvas();
    connect(canvas, &RoiCanvas::rectangleDrawn, this, &RoiVideoDialog::createRoi);
    connect(canvas, &RoiCanvas::regionPicked, m_ui->roiBox, &RoiEditor::pick);
    connect(canvas, &RoiCanvas::regionDragged, m_ui->roiBox, &RoiEditor::dragTo);
    connect(canvas, &RoiCanvas::dragEnded, m_ui->roiBox, &RoiEditor::endDrag);
}

void RoiVideoDialog::showSession(const StoredSession &session)
{
    m_ui->filmsBox->showFilms({});
    m_ui->framePanel->clear(); // what is shown does not belong to this session
    m_session = session;
    fillWidgets();
    const QString damage = m_ui->roiBox->load(m_session.directory);
    if (!damage.isEmpty())
        m_session.remarks.append(damage);
    learnScales();
    showSource(m_ui->sourceCombo->currentIndex());
    m_ui->framePanel->focusSlider();
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
        m_ui->sourceCombo->setCurrentIndex(m_session.firstWithFrames());
    }
    m_ui->sessionEdit->setText(QDir::toNativeSeparators(m_session.directory));
    m_ui->outputBox->preset(m_session);
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
    const int widthPx = m_ui->framePanel->image().width();
    m_ui->outputBox->showScaleLine(ScaleLookup::lineText(widthPx, frameMetadata()));
}

/// Of the frame that is shown, or of its datasource.
QJsonObject RoiVideoDialog::frameMetadata() const
{
    const QJsonObject &own = m_ui->framePanel->frame().metadata;
    return ScaleLookup::isUsable(own) ? own : sourceMetadata();
}

QJsonObject RoiVideoDialog::sourceMetadata() const
{
    return m_scales.value(m_ui->sourceCombo->currentIndex());
}

/// Looked for once per session: it may take a look at every frame.
void RoiVideoDialog::learnScales()
{
    m_scales.clear();
    for (const RoiSource &source : std::as_const(m_session.sources))
        m_scales.append(m_run.scales().known(source));
    showScaleLine();
    showScaleWarning();
    drawRegions();
}

/// What the films of all datasources would not have in common with that of the current one.
void RoiVideoDialog::showScaleWarning()
{
    QVector<SameScale::Source> sources;
    for (int row = 0; row < m_session.sources.size(); ++row) {
        const RoiSource &source = m_session.sources.at(row);
        const bool current = row == m_ui->sourceCombo->currentIndex();
        if (!source.frames.isEmpty())
            sources.insert(current ? 0 : sources.size(), {source.nickname, m_scales.value(row)});
    }
    m_ui->outputBox->showScaleWarning(m_ui->outputBox->allSources() ? SameScale::warning(sources)
                                                                    : QString());
}

RoiVideoPlan RoiVideoDialog::planFromWidgets() const
{
    const FrameInterval &interval = m_ui->framePanel->interval();
    RoiVideoPlan plan;
    plan.sessionDirectory = m_session.directory;
    for (int row = 0; row < m_session.sources.size(); ++row) {
        const RoiSource &source = m_session.sources.at(row);
        const bool chosen =
            m_ui->outputBox->allSources() || row == m_ui->sourceCombo->currentIndex();
        if (chosen && !source.frames.isEmpty())
            plan.sources.append({FrameIntervals::cut(interval, source, row), {}});
    }
    plan.takeTicked(m_ui->roiBox->rois());
    m_ui->outputBox->fill(plan);
    return plan;
}

/// Names the datasources that have no frame in the interval; false when no films shall be made.
bool RoiVideoDialog::leaveOutEmpty(RoiVideoPlan &plan)
{
    const QStringList empty = plan.leaveOutEmpty();
    if (empty.isEmpty())
        return true;
    const QString which = tr("No frame %1 in:\n%2")
                              .arg(FrameIntervals::timesText(m_ui->framePanel->interval()),
                                   empty.join(QLatin1Char('\n')));
    if (plan.sources.isEmpty()) {
        warn(which + tr("\n\nChoose another interval with From and To."));
        return false;
    }
    return PlainMessageBox::ask(this, boxTitle(), which + tr("\n\nThe others are filmed."),
                                QMessageBox::Ok | QMessageBox::Cancel,
                                QMessageBox::Ok) == QMessageBox::Ok;
}

void RoiVideoDialog::report(RoiVideoGenerator::Outcome outcome)
{
    switch (outcome) {
    case RoiVideoGenerator::Outcome::Completed:
        setStatus(tr("Completed: %1 ROI video(s) created.").arg(m_run.generator().createdVideos()));
        inform(tr("Created %1 ROI video(s).\n\nOriginal PNG frames were not modified.")
                   .arg(m_run.generator().createdVideos()));
        break;
    case RoiVideoGenerator::Outcome::Canceled:
        setStatus(tr("ROI video generation canceled. Original frames were not modified."));
        inform(m_ui->statusLabel->text());
        break;
    case RoiVideoGenerator::Outcome::Failed:
        setStatus(summary(m_run.generator().errorText()));
        warn(m_run.generator().errorText());
        break;
    }
}

/// Canceling hides the modal progress dialog while the run is still on the stack. Without the lock
/// the user could start a second run then, or close the dialog.
void RoiVideoDialog::lock(bool locked)
{
    for (QWidget *part :
         {static_cast<QWidget *>(m_ui->splitter), static_cast<QWidget *>(m_ui->browseButton),
          static_cast<QWidget *>(m_ui->generateButton)})
        part->setDisabled(locked);
    if (locked)
        return;
    m_ui->generateButton->setFocus();
    learnScales(); // the service may have told some
}

void RoiVideoDialog::setStatus(const QString &text)
{
    m_ui->statusLabel->setText(text);
}

void RoiVideoDialog::warn(const QString &text)
{
    showBox(QMessageBox::Warning, text);
}

void RoiVideoDialog::inform(const QString &text)
{
    showBox(QMessageBox::Information, text);
}

void RoiVideoDialog::showBox(QMessageBox::Icon icon, const QString &text)
{
    if (!m_isAbandoned)
        PlainMessageBox::show(this, icon, boxTitle(), text);
}
