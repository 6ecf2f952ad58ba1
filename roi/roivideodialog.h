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
 * The ROI video tool: looks through a stored session, collects regions of interest and films them.
 *
 * It collects input and shows results; reading, geometry, drawing and filming are done elsewhere.
 */
class RoiVideoDialog final : public QDialog
{
    Q_OBJECT

public:
    /// Opens on @p initialSessionDirectory; on a folder without a session.json it opens empty.
    explicit RoiVideoDialog(const QString &initialSessionDirectory, QWidget *parent = nullptr);
    ~RoiVideoDialog() override;

    /// Replaces the session, unless it cannot be loaded; @p errorText, which may be null, says why.
    bool loadSession(const QString &directory, QString *errorText = nullptr);

public slots:
    /// Ends a run that is under way; without one closes the dialog, unless the user would rather
    /// keep regions that are not saved.
    void reject() override;
    /// Closes without a question, for a program that has to end: a run is canceled, what it has not
    /// finished is gone, and what is not saved is lost.
    void abandon();

signals:
    /// A line for the log; those about a session wait until the dialog is shown.
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
    const RoiSource *currentSource() const;
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
