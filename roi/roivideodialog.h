#pragma once

#include "roi/roisession.h"
#include "roi/roiset.h"
#include "roi/roivideogenerator.h"
#include "roi/scalelookup.h"

#include <QDialog>

#include <memory>

class QListWidgetItem;
class QSpinBox;
class RoiCanvas;

namespace Ui {
class RoiVideoDialog;
}

/**
 * The ROI video tool: looks through a stored session, collects regions of interest and films them.
 *
 * It collects input and shows results; reading, geometry, drawing and filming are done elsewhere.
 */
class RoiVideoDialog : public QDialog
{
    Q_OBJECT

public:
    /// Opens on @p initialSessionDirectory; on a folder without a session.json it opens empty.
    explicit RoiVideoDialog(const QString &initialSessionDirectory, QWidget *parent = nullptr);
    ~RoiVideoDialog() override;

    /// Replaces the session, unless it cannot be loaded; @p errorText, which may be null, says why.
    bool loadSession(const QString &directory, QString *errorText = nullptr);

public slots:
    /// Ends a wait for the service; without one closes the dialog, unless the user would rather
    /// keep regions that are not saved.
    void reject() override;

signals:
    /// A line for the log.
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
    void deleteRoi();
    void saveRois();
    void onCurrentRoiChanged();
    void onRoiItemChanged(QListWidgetItem *item);
    void onNameEdited(const QString &name);
    void onRotationChosen(int index);
    void generate();

private:
    void connectWidgets();
    void connectCanvas();
    void connectGeometry(QSpinBox *field, void (QRectF::*change)(qreal),
                         int (QSize::*frameSide)() const);
    void showSession();
    void showRoiList(int currentRow);
    void showRoiFields();
    void showGeometry(const QRect &pixels);
    void clearGeometry();
    void drawRegions();
    void showScaleLine();
    bool storeRois();
    bool mayLeaveRois();
    const RoiSource *currentSource() const;
    Roi *currentRoi();
    RoiVideoPlan planFromWidgets() const;
    bool findScales(RoiVideoPlan &plan);
    void film(const RoiVideoPlan &plan);
    void report(RoiVideoGenerator::Outcome outcome, const RoiVideoGenerator &generator);
    void reportCanceled();
    void setLocked(bool locked);
    void setStatus(const QString &text);
    void warn(const QString &text);
    void inform(const QString &text);

    std::unique_ptr<Ui::RoiVideoDialog> m_ui;
    RoiCanvas *m_canvas; // owned as a child
    ScaleLookup m_lookup;
    StoredSession m_session;
    QVector<Roi> m_rois;       // row for row what the list shows, ticks included
    QVector<Roi> m_storedRois; // as rois.json has them
    QString m_initialError;
    bool m_lookingUp = false;
};
