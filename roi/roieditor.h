#pragma once

#include "roi/regionhistory.h"
#include "roi/regionmarks.h"

#include <QGroupBox>
#include <QSize>
#include <QVector>

#include <functional>
#include <memory>
#include <optional>

class QAction;
class QListWidgetItem;
class QSpinBox;

namespace Ui {
class RoiEditor;
}

/**
 * The regions of a session, in a list and in fields that change the current one.
 *
 * Owns the regions and knows which of them rois.json has. The pixels in its fields are those of the
 * frame that is looked at, of which it knows no more than the size.
 */
class RoiEditor final : public QGroupBox
{
    Q_OBJECT

public:
    explicit RoiEditor(QWidget *parent = nullptr);
    ~RoiEditor() override;

    const QVector<Roi> &rois() const { return m_rois; }
    int currentRow() const; ///< -1 when no region is selected
    /// What the regions cover of the frame, in the order of the list; empty without a frame.
    QVector<RegionMark> marks() const;

    /// Takes over the regions that are stored in a session.
    /// @return a line for the log when they are damaged; else empty
    QString load(const QString &sessionDirectory);
    /// Stores the regions in that session; false, after a warning, when that fails.
    bool store();
    /// Asks what shall become of regions that are not stored; false when the user would rather
    /// stay.
    bool mayBeLeft();
    /// Tells the size of the frame that is looked at; empty when none is.
    void setFrameSize(const QSize &pixels);
    /// Appends a region over @p pixels of the frame, which becomes the current one.
    /// @return its name
    QString add(const QRectF &pixels);
    /// Makes a region the current one.
    void pick(int row);
    /// Lets the current region cover @p pixels of the frame, until endDrag() says for good or not.
    void dragTo(const QRect &pixels);
    void endDrag(bool kept);
    /// Takes over what is still being typed.
    void commitTyped();

signals:
    /// A region has changed, or another one is the current one.
    void regionsChanged();
    /// The user wants to draw a region.
    void drawingRequested();
    /// New regions, and those that are resized, shall have this proportion; 0 for any.
    void proportionChanged(double proportion);
    /// A line for the log.
    void logMessage(const QString &text);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void onCurrentRowChanged();
    void onItemChanged(QListWidgetItem *item);
    void onNameEdited(const QString &name);
    void onRotationChosen(int index);
    void shapeChosen(int index);
    void renameCurrent();
    void copyCurrent();
    void deleteCurrent();
    void undo();
    void redo();
    void storeAndSaySo();

    void connectWidgets();
    void addActions();
    void connectGeometry(QSpinBox *field, void (QRectF::*change)(qreal),
                         int (QSize::*frameSide)() const);
    void append(const QString &step, const Roi &roi);
    void changeCurrent(const QString &step, const std::function<void(Roi &)> &change,
                       const QWidget *field = nullptr);
    RegionState state() const;
    void showState(const RegionState &state);
    void showFields();
    void showGeometry(const QRect &pixels);
    void clearGeometry();
    QVector<QSpinBox *> geometryFields() const;
    QVector<const QWidget *> typedFields() const;
    const Roi *currentRoi() const;

    std::unique_ptr<Ui::RoiEditor> m_ui;
    QString m_sessionDirectory;              // empty until one is loaded
    QVector<Roi> m_rois;                     // row for row what the list shows, ticks included
    QVector<Roi> m_storedRois;               // as rois.json has them
    std::optional<RegionState> m_beforeDrag; // while the current region is dragged
    RegionHistory m_history;
    QVector<QAction *> m_needRegion; // owned as children
    QSize m_frameSize;
};
