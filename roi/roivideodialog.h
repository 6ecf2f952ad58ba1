#pragma once

#include "roi/roirun.h"
#include "roi/roisession.h"

#include <QDialog>
#include <QMessageBox>

#include <memory>

namespace Ui {
class RoiVideoDialog;
}

/**
 * The ROI video tool: shows the frames of a stored session and makes films of regions of interest.
 *
 * Collects input and shows results; reading, editing, drawing and filming are done elsewhere.
 */
class RoiVideoDialog final : public QDialog
{
    Q_OBJECT

public:
    /// Opens on @p initialSessionDirectory; on a folder without a session.json it opens empty.
    explicit RoiVideoDialog(const QString &initialSessionDirectory, QWidget *parent = nullptr);
    ~RoiVideoDialog() override;

    /// Loads a session; on failure @p errorText, which may be null, says why, and nothing changes.
    bool loadSession(const QString &directory, QString *errorText = nullptr);

public slots:
    /// Cancels a running generation, if there is one. Otherwise closes the dialog, after asking
    /// about unsaved regions.
    void reject() override;
    /// Closes without asking, because the program must end: a run is canceled, and unfinished films
    /// and unsaved regions are lost.
    void abandon();

signals:
    /// A line for the log. Lines about a session are sent once the dialog is visible.
    void logMessage(const QString &text);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void showEvent(QShowEvent *event) override;

private slots:
    void browse();
    void showSource(int row);
    void showFrame();
    void startDrawing();
    void createRoi(const QRectF &pixels);
    void drawRegions();
    void showResult();
    void showScaleWarning();
    void generate();

private:
    void connectWidgets();
    void connectFrames();
    void connectRun();
    void showSession(const StoredSession &session);
    void fillWidgets();
    void sendRemarks();
    void showScaleLine();
    QJsonObject frameMetadata() const;
    QJsonObject sourceMetadata() const;
    void learnScales();
    RoiVideoPlan planFromWidgets() const;
    bool leaveOutEmpty(RoiVideoPlan &plan);
    void report(RoiVideoGenerator::Outcome outcome);
    void lock(bool locked);
    void setStatus(const QString &text);
    void warn(const QString &text);
    void inform(const QString &text);
    void showBox(QMessageBox::Icon icon, const QString &text);

    std::unique_ptr<Ui::RoiVideoDialog> m_ui;
    RoiRun m_run;
    StoredSession m_session;
    QVector<QJsonObject> m_scales; // what is known of its datasources
    QString m_initialError;
    bool m_isAbandoned = false;
};
