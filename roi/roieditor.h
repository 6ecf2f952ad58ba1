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
 * Owns the regions and knows whether they differ from those stored in rois.json. Its fields show
 * pixels of the current frame, of which it knows only the size.
 */
class RoiEditor final : public QGroupBox
{
    Q_OBJECT

public:
    explicit RoiEditor(QWidget *parent = nullptr);
    ~RoiEditor() override;

    const QVector<Roi> &rois() const { return m_rois; }
    int currentRow() const; ///< -1 when no region is selected
    /// The regions in pixels of the current frame, in list order; empty without a frame.
    QVector<RegionMark> marks() const;

    /// Shows the regions stored in a session in place of the current ones.
    /// @return a line for the log when they are damaged; else empty
    QString load(const QString &sessionDirectory);
    /// Writes rois.json of that session; shows a warning and returns false when that fails.
    bool store();
    /// Asks whether to store unsaved changes, if there are any; false when the user cancels.
    bool mayBeLeft();
    /// Sets the size of the current frame; empty when there is none.
    void setFrameSize(const QSize &pixels);
    /// Appends and selects a region of @p pixels of the current frame; returns its name.
    QString add(const QRectF &pixels);
    /// Selects a region.
    void pick(int row);
    /// Moves the current region to @p pixels of the frame; endDrag() then keeps or undoes that.
    void dragTo(const QRect &pixels);
    void endDrag(bool kept);
    /// Applies what is being typed, as leaving its field would do.
    void commitTyped();

signals:
    /// A region has changed, or another one has been selected.
    void regionsChanged();
    /// The user wants to draw a region.
    void drawingRequested();
    /// New and resized regions are to have this proportion; 0 for any.
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
    void append(const Roi &roi);
    void changeCurrent(const std::function<void(Roi &)> &change, const QWidget *field = nullptr);
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
    QVector<Roi> m_rois;                     // in list order, check states included
    QVector<Roi> m_storedRois;               // as in rois.json
    std::optional<RegionState> m_beforeDrag; // while the current region is dragged
    RegionHistory m_history;
    QVector<QAction *> m_needRegion; // owned as children
    QSize m_frameSize;
};
