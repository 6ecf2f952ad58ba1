#pragma once

#include "ui/catalogtree.h"

#include <QMainWindow>

#include <memory>

class AcquisitionController;
class HelioviewerClient;
class LogView;
class PreviewPane;
class QJsonObject;
class StatusLine;

namespace Ui {
class MainWindow;
}

/**
 * The main window: catalog, settings, start and stop, progress, preview and log.
 *
 * Connects its parts, enables them according to its state, and delegates the rest. It is
 * running from a successful start until the controller has finished.
 */
class MainWindow final : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(QWidget *parent = nullptr);
    ~MainWindow() override;

public slots:
    /// Stops a run as the user would, and closes the window without asking.
    void shutDown();

signals:
    /// Windows that are open above this one must close without asking.
    void shuttingDown();

protected:
    void closeEvent(QCloseEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private slots:
    void refreshSources();
    void onCatalogReceived(const QJsonObject &catalog);
    void onCatalogError(const QString &operation, const QString &message);
    void startAcquisition();
    void stopAcquisition();
    void selectAiaBands();
    void clearSelection();
    void openOutputFolder();
    void playLatestVideo();
    void selectAndPlayVideo();
    void createRoiVideo();
    void showHelp();
    void showLicense();
    void onSourceCurrentChanged(QTreeWidgetItem *current, QTreeWidgetItem *previous);
    void onSourceTimingAnalyzed(int sourceId, int uniqueFrames, int medianSeconds, int minSeconds,
                                int maxSeconds);
    void onPreviewReady(const QString &sourceName, const QString &imageFile,
                        const QDateTime &requestedUtc, const QDateTime &actualUtc,
                        qint64 deltaSeconds);

private:
    void buildWidgets();
    void reserveRoom();
    void showRuntimePaths();
    void connectWidgets();
    void connectActions();
    void loadSettings();
    void connectEngine();
    void loadCatalog();

    void fillTree(const QJsonObject &catalog);
    bool showCachedCatalog();
    void showRunBeginning();
    void setRunning(bool running);
    void updateRefreshButton();
    void onProgressChanged(int value, int maximum);
    void onFinished(bool canceled, const QString &sessionDirectory);
    void onSamplingChanged();
    void refreshEstimate();
    void renderDetails(const QTreeWidgetItem *item);
    void play(const QString &videoFile);

    HelioviewerClient *m_catalogClient;  // a child, like the controller
    AcquisitionController *m_controller; // a child, deleted before the widgets that it reports to
    std::unique_ptr<Ui::MainWindow> m_form;
    LogView *m_log = nullptr;           // a child
    PreviewPane *m_preview = nullptr;   // a child
    StatusLine *m_status = nullptr;     // a child
    CatalogTree::Leaves m_leaves;       // of the current tree
    CatalogTree::Selection m_selection; // to be restored by the next rebuild of the tree
};
