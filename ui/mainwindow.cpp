#include "ui/mainwindow.h"

#include "acquisition/acquisitioncontroller.h"
#include "base/desktopactions.h"
#include "base/runtimeconfig.h"
#include "base/utctext.h"
#include "client/helioviewerclient.h"
#include "client/operationnames.h"
#include "imaging/framedecoder.h"
#include "roi/roivideodialog.h"
#include "ui/acquisitionestimate.h"
#include "ui/acquisitionform.h"
#include "ui/catalogcache.h"
#include "ui/dockheight.h"
#include "ui/licensedialog.h"
#include "ui/logview.h"
#include "ui/outputsearch.h"
#include "ui/previewpane.h"
#include "ui/statusline.h"
#include "ui/uisettings.h"
#include "ui/windowkeys.h"
#include "ui_mainwindow.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QFileInfo>
#include <QJsonObject>
#include <QTimer>

#include <algorithm>

// --- construction

MainWindow::MainWindow(QWidget *parent)
    : QMainWindow(parent)
    , m_catalogClient(new HelioviewerClient(this))
    , m_controller(new AcquisitionController(this))
    , m_form(std::make_unique<Ui::MainWindow>())
{
    RuntimeConfig::ensureRuntimeConfig();
    buildWidgets();
    showRuntimePaths();
    connectWidgets();
    connectActions();
    loadSettings();
    connectEngine();
    loadCatalog();
}

MainWindow::~MainWindow()
{
    // Both end what they are doing while the widgets that hear of it still exist.
    delete m_controller;
    delete m_catalogClient;
}

void MainWindow::buildWidgets()
{
    m_form->setupUi(this);
    m_form->catalogSplitter->setStretchFactor(0, 2);
    m_form->catalogSplitter->setStretchFactor(1, 1);
    m_form->catalogSplitter->setSizes({700, 350});
    m_form->catalogInfo->setHtml(SourceDetails::welcomePage());
    CatalogTree::prepare(m_form->sourcesTree);
    m_log = new LogView(m_form->log, m_form->logWidget, this);
    m_preview = new PreviewPane(m_form->previewLabel, this);
    new DockHeight(this, m_form->dockWidget);
    reserveRoom();
    m_status = new StatusLine(m_form->statusBar, this);
    WindowKeys::set(this, *m_form);
}

/// The smallest window shows all of a caption and still fits a laptop's screen.
void MainWindow::reserveRoom()
{
    // A splitter does not ask a label for its height. At this width only a long name of a
    // datasource makes a third line.
    const QFontMetrics metrics = m_form->previewMeta->fontMetrics();
    const QString line = tr("Requested: %1 UTC   |   Delta: %2 s")
                             .arg(QStringLiteral("8888-88-88 88:88:88"), QStringLiteral("+888"));
    m_form->previewMeta->setMinimumSize(metrics.horizontalAdvance(line), 3 * metrics.lineSpacing());
    QMargins margins = m_form->mainToolBar->layout()->contentsMargins();
    margins.setTop(1);
    margins.setBottom(1);
    m_form->mainToolBar->layout()->setContentsMargins(margins);
}

void MainWindow::showRuntimePaths()
{
    m_form->pathsLabel->setText(tr("curl: %1    |    ffmpeg: %2    |    output: %3")
                                    .arg(QDir::toNativeSeparators(RuntimeConfig::curlPath()),
                                         QDir::toNativeSeparators(RuntimeConfig::ffmpegPath()),
                                         QDir::toNativeSeparators(RuntimeConfig::outputRoot())));
}

void MainWindow::connectWidgets()
{
    connect(m_form->refreshButton, &QPushButton::clicked, this, &MainWindow::refreshSources);
    connect(m_form->aiaButton, &QPushButton::clicked, this, &MainWindow::selectAiaBands);
    connect(m_form->clearButton, &QPushButton::clicked, this, &MainWindow::clearSelection);
    connect(m_form->sourcesTree, &QTreeWidget::currentItemChanged, this,
            &MainWindow::onSourceCurrentChanged);
    connect(m_form->startEdit, &QDateTimeEdit::dateTimeChanged, this,
            &MainWindow::onSamplingChanged);
    connect(m_form->endEdit, &QDateTimeEdit::dateTimeChanged, this, &MainWindow::onSamplingChanged);
    for (const UtcEdit *edit : {m_form->startEdit, m_form->endEdit})
        connect(edit, &UtcEdit::refused, m_status, &StatusLine::announce);
    connect(m_form->cadenceSpin, qOverload<int>(&QSpinBox::valueChanged), this,
            &MainWindow::onSamplingChanged);
    connect(m_form->fpsSpin, qOverload<int>(&QSpinBox::valueChanged), this,
            &MainWindow::refreshEstimate);
}

void MainWindow::connectActions()
{
    const auto trigger = [this](QAction *action, auto slot) {
        connect(action, &QAction::triggered, this, slot);
    };
    trigger(m_form->actionOpenOutputFolder, &MainWindow::openOutputFolder);
    trigger(m_form->actionPlayLatestVideo, &MainWindow::playLatestVideo);
    trigger(m_form->actionPlaySelectedVideo, &MainWindow::selectAndPlayVideo);
    trigger(m_form->actionCreateRoiVideo, &MainWindow::createRoiVideo);
    trigger(m_form->actionStartAcquisition, &MainWindow::startAcquisition);
    trigger(m_form->actionStopAcquisition, &MainWindow::stopAcquisition);
    trigger(m_form->actionExit, &MainWindow::close);
    trigger(m_form->actionRefreshCatalog, &MainWindow::refreshSources);
    trigger(m_form->actionHelpOrvik, &MainWindow::showHelp);
    trigger(m_form->actionLicense, &MainWindow::showLicense);
}

void MainWindow::loadSettings()
{
    UiSettings::loadFields(*m_form);
    refreshEstimate();
    UiSettings::restoreLayout(this, *m_form);
    // The details need the height beside the log more than the log needs the width; a stored layout
    // brings its own corners along.
    setCorner(Qt::BottomRightCorner, Qt::RightDockWidgetArea);
    m_selection = UiSettings::loadSelection();
}

void MainWindow::connectEngine()
{
    connect(m_catalogClient, &HelioviewerClient::catalogReceived, this,
            &MainWindow::onCatalogReceived);
    // Queued: a request that fails at once must not put its box before the window is shown.
    connect(m_catalogClient, &HelioviewerClient::requestError, this, &MainWindow::onCatalogError,
            Qt::QueuedConnection);
    connect(m_catalogClient, &HelioviewerClient::logMessage, m_log, &LogView::append);
    connect(m_controller, &AcquisitionController::logMessage, m_log, &LogView::append);
    connect(m_controller, &AcquisitionController::progressChanged, this,
            &MainWindow::onProgressChanged);
    connect(m_controller, &AcquisitionController::stateChanged, m_form->stateLabel,
            &QLabel::setText);
    connect(m_controller, &AcquisitionController::sourceTimingAnalyzed, this,
            &MainWindow::onSourceTimingAnalyzed);
    // Two turns of the event loop later the next request is under way: scaling the preview then
    // neither blocks the window for longer nor delays the session.
    connect(
        m_controller, &AcquisitionController::previewReady, this,
        [this](auto... frame) {
            QTimer::singleShot(0, this, [this, frame...] { onPreviewReady(frame...); });
        },
        Qt::QueuedConnection);
    connect(m_controller, &AcquisitionController::finished, this, &MainWindow::onFinished);
}

void MainWindow::loadCatalog()
{
    if (!showCachedCatalog())
        refreshSources();
    // Once the window is shown and the tree has its size.
    QTreeWidget *tree = m_form->sourcesTree;
    QTimer::singleShot(0, tree, [tree] {
        tree->scrollToItem(tree->currentItem(), QTreeWidget::PositionAtCenter);
    });
}

// --- catalog

bool MainWindow::showCachedCatalog()
{
    const std::optional<QJsonObject> catalog = CatalogCache::load();
    if (!catalog)
        return false;
    fillTree(*catalog);
    m_log->append(QStringLiteral("Loaded cached catalog: %1")
                      .arg(QDir::toNativeSeparators(RuntimeConfig::catalogPath())));
    return true;
}

void MainWindow::fillTree(const QJsonObject &catalog)
{
    m_leaves = CatalogTree::fill(m_form->sourcesTree, catalog, &m_selection);
}

void MainWindow::refreshSources()
{
    if (m_catalogClient->isBusy() || m_controller->isRunning())
        return;
    m_log->append(QStringLiteral("Refreshing Helioviewer datasource catalog..."));
    m_catalogClient->getDataSources();
    updateRefreshButton();
}

void MainWindow::updateRefreshButton()
{
    m_form->refreshButton->setEnabled(!m_catalogClient->isBusy() && !m_controller->isRunning());
}

void MainWindow::onCatalogReceived(const QJsonObject &catalog)
{
    // The service sometimes sends its error object with the status of a success.
    const bool mayBeError =
        m_form->sourcesTree->topLevelItemCount() > 0 || catalog.contains(QStringLiteral("error"));
    if (mayBeError && !CatalogTree::holdsSource(catalog)) {
        onCatalogError(OperationNames::getDataSources(),
                       tr("The answer has no datasource. The catalog stays as it was; try again "
                          "later."));
        return;
    }
    updateRefreshButton();
    fillTree(catalog);
    m_log->append(CatalogCache::save(catalog)
                      ? QStringLiteral("Helioviewer datasource catalog updated.")
                      : QStringLiteral("WARNING: unable to save catalog cache in ./sys."));
}

void MainWindow::onCatalogError(const QString &operation, const QString &message)
{
    updateRefreshButton();
    m_log->append(QStringLiteral("ERROR %1: %2").arg(operation, message));
    DesktopActions::warn(this, tr("Helioviewer"), tr("%1 failed:\n%2").arg(operation, message));
}

void MainWindow::selectAiaBands()
{
    const int ticked = CatalogTree::tickAiaBands(m_form->sourcesTree);
    m_status->announce(ticked > 0 ? tr("%1 SDO/AIA bands ticked.").arg(ticked)
                                  : tr("The catalog has no SDO/AIA band. Refresh it."));
}

void MainWindow::clearSelection()
{
    CatalogTree::untickAll(m_form->sourcesTree);
}

// --- details and estimate

void MainWindow::onSourceCurrentChanged(QTreeWidgetItem *current, QTreeWidgetItem * /*previous*/)
{
    renderDetails(current);
}

void MainWindow::renderDetails(const QTreeWidgetItem *item)
{
    m_form->catalogInfo->setHtml(
        CatalogTree::isLeaf(item)
            ? SourceDetails::page(CatalogTree::source(item), AcquisitionForm::sampling(*m_form))
            : SourceDetails::noSourcePage());
}

void MainWindow::onSamplingChanged()
{
    CatalogTree::clearAnalyses(m_form->sourcesTree); // found for another interval
    renderDetails(m_form->sourcesTree->currentItem());
    refreshEstimate();
}

void MainWindow::refreshEstimate()
{
    const RequestedSampling sampling = AcquisitionForm::sampling(*m_form);
    m_form->estimateLabel->setText(AcquisitionEstimate::text(
        sampling.startUtc, sampling.endUtc, sampling.cadenceSeconds, m_form->fpsSpin->value()));
}

void MainWindow::onSourceTimingAnalyzed(int sourceId, int uniqueFrames, int medianSeconds,
                                        int minSeconds, int maxSeconds)
{
    QTreeWidgetItem *leaf = m_leaves.value(sourceId);
    if (!leaf)
        return;
    CatalogTree::setAnalysis(leaf, {uniqueFrames, medianSeconds, minSeconds, maxSeconds});
    if (leaf == m_form->sourcesTree->currentItem())
        renderDetails(leaf);
}

// --- acquisition

void MainWindow::startAcquisition()
{
    const AcquisitionSettings settings = AcquisitionForm::settings(*m_form);
    if (!settings.keepFrames && !settings.createVideos) {
        DesktopActions::warn(this, tr("Orvik"), tr("Enable PNG frame storage or MP4 creation."));
        return;
    }
    UiSettings::save(*this, *m_form);
    m_status->reset(settings.createVideos ? settings.sources.size() : 0);
    QString errorText;
    if (!m_controller->start(settings, &errorText)) {
        DesktopActions::warn(this, tr("Orvik"), errorText);
        return;
    }
    showRunBeginning();
    setRunning(true);
    m_status->begin();
}

void MainWindow::showRunBeginning()
{
    m_log->clear();
    m_preview->clear(tr("Waiting for the first accepted frame..."));
    m_form->previewMeta->setText(
        tr("Actual UTC timestamp will appear on the downloaded frame preview."));
    m_log->append(QStringLiteral("Acquisition started."));
}

void MainWindow::stopAcquisition()
{
    m_controller->stop();
}

void MainWindow::setRunning(bool running)
{
    AcquisitionForm::setEnabled(*m_form, !running);
    updateRefreshButton();
    m_form->actionCreateRoiVideo->setEnabled(!running);
    m_form->actionStartAcquisition->setEnabled(!running);
    m_form->actionStopAcquisition->setEnabled(running);
    WindowKeys::setExitKey(*m_form, !running);
}

void MainWindow::onProgressChanged(int value, int maximum)
{
    m_form->progress->setRange(0, std::max(maximum, 1));
    m_form->progress->setValue(value);
    m_status->count(value, maximum);
}

void MainWindow::onPreviewReady(const QString &sourceName, const QString &imageFile,
                                const QDateTime &requestedUtc, const QDateTime &actualUtc,
                                qint64 deltaSeconds)
{
    const QImage inHand = m_controller->pictureInHand(imageFile);
    if (!m_preview->showFrame(inHand.isNull() ? FrameDecoder::decode(imageFile) : inHand)) {
        m_log->append(QStringLiteral("WARNING: unable to load preview image %1").arg(imageFile));
        return;
    }
    m_form->previewMeta->setText(
        tr("Source: %1   |   Actual: %2 UTC\nRequested: %3 UTC   |   Delta: %4 s")
            .arg(sourceName, UtcText::toDisplayText(actualUtc),
                 UtcText::toDisplayText(requestedUtc), UtcText::signedDelta(deltaSeconds)));
}

void MainWindow::onFinished(bool /*canceled*/, const QString &sessionDirectory)
{
    setRunning(false);
    m_status->end();
    m_log->append(QStringLiteral("Output: %1").arg(QDir::toNativeSeparators(sessionDirectory)));
    QApplication::alert(this);
}

// --- finished work

void MainWindow::openOutputFolder()
{
    DesktopActions::openFolder(RuntimeConfig::outputRoot());
}

void MainWindow::play(const QString &videoFile)
{
    if (DesktopActions::playVideo(this, videoFile))
        m_log->append(QStringLiteral("Playing video: %1").arg(QDir::toNativeSeparators(videoFile)));
}

void MainWindow::playLatestVideo()
{
    const QString outputRoot = RuntimeConfig::outputRoot();
    const QString newest = OutputSearch::newestVideo(outputRoot);
    if (!newest.isEmpty())
        play(newest);
    else if (DesktopActions::offerToChooseVideo(this, outputRoot))
        selectAndPlayVideo();
}

void MainWindow::selectAndPlayVideo()
{
    const QString file = DesktopActions::chooseVideo(
        this,
        OutputSearch::videoStartFolder(RuntimeConfig::outputRoot(), UiSettings::lastVideoFolder()));
    if (file.isEmpty())
        return;
    UiSettings::saveLastVideoFolder(QFileInfo(file).absolutePath());
    play(file);
}

void MainWindow::createRoiVideo()
{
    const QString outputRoot = RuntimeConfig::outputRoot();
    const QString newest = OutputSearch::newestSession(outputRoot);
    RoiVideoDialog dialog(newest.isEmpty() ? outputRoot : newest, this);
    connect(&dialog, &RoiVideoDialog::logMessage, m_log, &LogView::append);
    connect(this, &MainWindow::shuttingDown, &dialog, &RoiVideoDialog::abandon);
    dialog.exec();
}

void MainWindow::showHelp()
{
    DesktopActions::showHelp(this);
}

void MainWindow::showLicense()
{
    LicenseDialog dialog(this);
    dialog.exec();
}

// --- window

void MainWindow::shutDown()
{
    emit shuttingDown();
    m_controller->stop();
    close();
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    UiSettings::save(*this, *m_form);
    QMainWindow::closeEvent(event);
}

void MainWindow::resizeEvent(QResizeEvent *event)
{
    QMainWindow::resizeEvent(event);
    m_preview->rescale();
}
