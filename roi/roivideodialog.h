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

signals:
    /// A line for the log. Lines about a session are sent once the dialog is visible.
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
    /// What a generation is doing. Meanwhile all controls but Close are locked.
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
