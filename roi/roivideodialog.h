#pragma once

#include "roi/roisession.h"
#include "roi/roivideogenerator.h"
#include "roi/scalelookup.h"

#include <QDialog>

#include <memory>
#include <optional>

class RoiCanvas;

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

signals:
    /// A line for the log; those about a session wait until the dialog is shown.
    void logMessage(const QString &text);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void showEvent(QShowEvent *event) override;

private slots:
    void browse();
    void showSource(int row);
    void showFrame(int index);
    void startDrawing();
    void endDrawing();
    void createRoi(const QRectF &pixels);
    void drawRegions();
    void generate();

private:
    /// What a run is at. Until it is back everything but canceling is locked.
    enum class Activity { None, LookingUp, Filming, Canceling };

    void connectWidgets();
    void connectCanvas();
    void connectRun();
    void showSession(const StoredSession &session);
    void fillWidgets();
    void sendRemarks();
    void showScaleLine();
    const RoiSource *currentSource() const;
    RoiVideoPlan planFromWidgets() const;
    bool findScales(RoiVideoPlan &plan);
    RoiVideoGenerator::Outcome film(const RoiVideoPlan &plan);
    void report(RoiVideoGenerator::Outcome outcome);
    void enterActivity(Activity activity);
    void setStatus(const QString &text);
    void warn(const QString &text);
    void inform(const QString &text);

    std::unique_ptr<Ui::RoiVideoDialog> m_ui;
    RoiCanvas *m_canvas; // owned as a child
    ScaleLookup m_lookup;
    RoiVideoGenerator m_generator;
    StoredSession m_session;
    QString m_initialError;
    Activity m_activity = Activity::None;
};
