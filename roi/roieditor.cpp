#include "roi/roieditor.h"

#include "base/plainmessagebox.h"
#include "roi/nameeditor.h"
#include "roi/roigeometry.h"
#include "ui_roieditor.h"

#include <QAction>
#include <QKeyEvent>
#include <QSignalBlocker>

#include <algorithm>
#include <utility>

namespace {

QString boxTitle()
{
    return RoiEditor::tr("ROI video");
}

QListWidgetItem *makeItem()
{
    auto *item = new QListWidgetItem;
    item->setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemIsUserCheckable |
                   Qt::ItemIsEditable);
    return item;
}

void showIn(QListWidgetItem *item, const Roi &roi)
{
    item->setText(roi.name);
    item->setCheckState(roi.enabled ? Qt::Checked : Qt::Unchecked);
}

void setField(QSpinBox *field, int lowest, int highest, int value)
{
    const QSignalBlocker quiet(field);
    field->setEnabled(true);
    field->setRange(lowest, std::max(lowest, highest));
    field->setValue(value);
}

bool isUndoOrRedo(const QKeyEvent &key)
{
    return key.matches(QKeySequence::Undo) || key.matches(QKeySequence::Redo);
}

} // namespace

RoiEditor::RoiEditor(QWidget *parent)
    : QGroupBox(parent)
    , m_ui(std::make_unique<Ui::RoiEditor>())
    , m_history([this](const RegionState &state) { showState(state); })
{
    m_ui->setupUi(this);
    m_ui->nameEdit->setMaxLength(RoiSet::maxNameLength);
    m_ui->roiList->setItemDelegate(new NameEditor(this));
    connectWidgets();
    addActions();
    showFields();
}

RoiEditor::~RoiEditor() = default;

void RoiEditor::connectWidgets()
{
    connect(m_ui->newRoiButton, &QPushButton::clicked, this, &RoiEditor::drawingRequested);
    connect(m_ui->deleteRoiButton, &QPushButton::clicked, this, &RoiEditor::deleteCurrent);
    connect(m_ui->saveRoisButton, &QPushButton::clicked, this, &RoiEditor::storeAndSaySo);
    connect(m_ui->roiList, &QListWidget::currentRowChanged, this, &RoiEditor::onCurrentRowChanged);
    connect(m_ui->roiList, &QListWidget::itemChanged, this, &RoiEditor::onItemChanged);
    connect(m_ui->nameEdit, &QLineEdit::textEdited, this, &RoiEditor::onNameEdited);
    connect(m_ui->rotationCombo, qOverload<int>(&QComboBox::currentIndexChanged), this,
            &RoiEditor::onRotationChosen);
    connect(m_ui->shapeCombo, qOverload<int>(&QComboBox::currentIndexChanged), this,
            &RoiEditor::shapeChosen);
    connectGeometry(m_ui->xSpin, &QRectF::moveLeft, &QSize::width);
    connectGeometry(m_ui->ySpin, &QRectF::moveTop, &QSize::height);
    connectGeometry(m_ui->widthSpin, &QRectF::setWidth, &QSize::width);
    connectGeometry(m_ui->heightSpin, &QRectF::setHeight, &QSize::height);
    connect(m_ui->nameEdit, &QLineEdit::editingFinished, this, [this] { m_history.endTyping(); });
    m_ui->nameEdit->installEventFilter(this);
}

void RoiEditor::addActions()
{
    const auto add = [this](const QString &text, const QList<QKeySequence> &keys,
                            void (RoiEditor::*slot)()) {
        auto *action = new QAction(text, this);
        action->setShortcuts(keys);
        connect(action, &QAction::triggered, this, slot);
        m_ui->roiList->addAction(action);
        return action;
    };
    QList<QKeySequence> redoKeys = QKeySequence::keyBindings(QKeySequence::Redo);
    const QKeySequence usual(QStringLiteral("Ctrl+Y")); // also where the desktop's is another one
    redoKeys.removeAll(usual);
    redoKeys.prepend(usual);
    QAction *rename = add(tr("Rename"), {Qt::Key_F2}, &RoiEditor::renameCurrent);
    QAction *copy = add(tr("Copy"), {QStringLiteral("Ctrl+D")}, &RoiEditor::copyCurrent);
    QAction *remove = add(tr("Delete"), {QKeySequence::Delete}, &RoiEditor::deleteCurrent);
    QAction *undo =
        add(tr("Undo"), QKeySequence::keyBindings(QKeySequence::Undo), &RoiEditor::undo);
    QAction *redo = add(tr("Redo"), redoKeys, &RoiEditor::redo);
    remove->setShortcutContext(Qt::WidgetShortcut); // elsewhere the key deletes a character
    m_needRegion = {rename, copy, remove};
    for (QAction *action : {undo, redo})
        action->setEnabled(false);
    connect(&m_history.stack(), &QUndoStack::canUndoChanged, undo, &QAction::setEnabled);
    connect(&m_history.stack(), &QUndoStack::canRedoChanged, redo, &QAction::setEnabled);
}

int RoiEditor::currentRow() const
{
    return m_ui->roiList->currentRow();
}

QVector<RegionMark> RoiEditor::marks() const
{
    QVector<RegionMark> marks;
    for (const Roi &roi : m_rois)
        marks.append({RoiGeometry::pixelRect(roi.rect, m_frameSize),
                      RegionMarks::nameOf(marks.size() + 1, roi.name, roi.enabled)});
    return marks;
}

QString RoiEditor::load(const QString &sessionDirectory)
{
    QString remark;
    m_sessionDirectory = sessionDirectory;
    m_storedRois = RoiSet::load(sessionDirectory, &remark);
    m_beforeDrag.reset();
    m_history.clear();
    showState({m_storedRois, 0}); // no row of an empty list
    return remark;
}

bool RoiEditor::store()
{
    commitTyped();
    QString errorText;
    if (RoiSet::save(m_rois, m_sessionDirectory, &errorText)) {
        m_storedRois = m_rois;
        return true;
    }
    PlainMessageBox::show(this, QMessageBox::Warning, boxTitle(), errorText);
    return false;
}

bool RoiEditor::mayBeLeft()
{
    commitTyped();
    if (m_rois == m_storedRois)
        return true;
    const QString question =
        tr("The ROI definitions of this session have unsaved changes.\nSave them to rois.json?");
    const QMessageBox::StandardButton answer = PlainMessageBox::ask(
        this, boxTitle(), question, QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel,
        QMessageBox::Save);
    return answer == QMessageBox::Discard || (answer == QMessageBox::Save && store());
}

void RoiEditor::setFrameSize(const QSize &pixels)
{
    commitTyped(); // it was typed in pixels of the previous frame
    m_frameSize = pixels;
    showFields();
}

QString RoiEditor::add(const QRectF &pixels)
{
    Roi roi;
    roi.name = RoiSet::defaultName(m_rois.size());
    roi.rect = RoiGeometry::normalizedRect(pixels, m_frameSize);
    append(roi);
    return roi.name;
}

void RoiEditor::pick(int row)
{
    m_ui->roiList->setCurrentRow(row);
}

void RoiEditor::dragTo(const QRect &pixels)
{
    if (currentRow() < 0)
        return;
    if (!m_beforeDrag) {
        commitTyped();
        m_beforeDrag = state();
    }
    const QRectF &before = m_beforeDrag->rois.at(m_beforeDrag->row).rect;
    m_rois[currentRow()].rect = RoiGeometry::coveringPixels(before, pixels, m_frameSize);
    onCurrentRowChanged();
}

void RoiEditor::endDrag(bool kept)
{
    const std::optional<RegionState> before = std::exchange(m_beforeDrag, std::nullopt);
    if (!before)
        return;
    if (kept && m_rois != before->rois)
        m_history.take(*before, state());
    else
        showState(*before);
}

void RoiEditor::commitTyped()
{
    if (m_ui->roiList->isAncestorOf(m_ui->roiList->window()->focusWidget()))
        m_ui->roiList->setFocus(); // a name is edited there
    const QVector<QSpinBox *> fields = geometryFields();
    for (QSpinBox *field : fields) {
        if (field->isEnabled())
            field->interpretText();
    }
}

bool RoiEditor::eventFilter(QObject *watched, QEvent *event)
{
    // Otherwise the field would undo no more than its own text.
    if (event->type() == QEvent::ShortcutOverride &&
        isUndoOrRedo(*static_cast<QKeyEvent *>(event))) {
        event->ignore();
        return true;
    }
    return QGroupBox::eventFilter(watched, event);
}

void RoiEditor::onCurrentRowChanged()
{
    m_history.endTyping();
    showFields();
    emit regionsChanged();
}

void RoiEditor::onItemChanged(QListWidgetItem *item)
{
    RegionState after = state();
    Roi &roi = after.rois[m_ui->roiList->row(item)];
    roi.name = item->text();
    roi.enabled = item->checkState() == Qt::Checked;
    if (after.rois != m_rois)
        m_history.take(state(), after);
}

void RoiEditor::onNameEdited(const QString &name)
{
    changeCurrent([&name](Roi &roi) { roi.name = name; }, m_ui->nameEdit);
}

void RoiEditor::onRotationChosen(int index)
{
    const int rotation = RoiGeometry::rotationAt(index);
    changeCurrent([rotation](Roi &roi) { roi.rotation = rotation; });
}

void RoiEditor::shapeChosen(int index)
{
    emit proportionChanged(RegionShape::proportionAt(index));
}

void RoiEditor::renameCurrent()
{
    m_ui->roiList->setFocus();
    m_ui->roiList->editItem(m_ui->roiList->currentItem());
}

void RoiEditor::copyCurrent()
{
    commitTyped();
    Roi roi = *currentRoi();
    const QString suffix = tr(" copy");
    roi.name = roi.name.left(RoiSet::maxNameLength - suffix.size()) + suffix;
    append(roi);
}

void RoiEditor::deleteCurrent()
{
    commitTyped();
    RegionState after = state();
    if (after.row < 0)
        return;
    after.rois.remove(after.row);
    after.row = std::min(after.row, after.rois.size() - 1);
    m_history.take(state(), after);
}

void RoiEditor::undo()
{
    if (m_beforeDrag)
        return; // Esc takes that back
    commitTyped();
    m_history.stack().undo();
}

void RoiEditor::redo()
{
    if (m_beforeDrag)
        return;
    commitTyped();
    m_history.stack().redo();
}

void RoiEditor::storeAndSaySo()
{
    if (!store())
        return;
    emit logMessage(
        QStringLiteral("ROI definitions saved: %1").arg(RoiSet::filePath(m_sessionDirectory)));
    PlainMessageBox::show(this, QMessageBox::Information, boxTitle(),
                          tr("ROI definitions saved to rois.json."));
}

/// Makes @p field change one side of the region only. The others keep fractions of pixels, and
/// parts beyond the edge of this frame, which may matter for other datasources.
void RoiEditor::connectGeometry(QSpinBox *field, void (QRectF::*change)(qreal),
                                int (QSize::*frameSide)() const)
{
    connect(field, qOverload<int>(&QSpinBox::valueChanged), this,
            [this, field, change, frameSide](int pixels) {
                const double side = static_cast<double>(pixels) / (m_frameSize.*frameSide)();
                changeCurrent([&](Roi &roi) { (roi.rect.*change)(side); }, field);
            });
    connect(field, &QSpinBox::editingFinished, this, [this] { m_history.endTyping(); });
    field->installEventFilter(this);
}

/// Appends a region in one step; it becomes the current one.
void RoiEditor::append(const Roi &roi)
{
    RegionState after = state();
    after.rois.append(roi);
    after.row = after.rois.size() - 1;
    m_history.take(state(), after);
}

/// Changes the current region, if any, in a step; what is typed in one @p field becomes one step.
void RoiEditor::changeCurrent(const std::function<void(Roi &)> &change, const QWidget *field)
{
    RegionState after = state();
    if (after.row < 0)
        return;
    change(after.rois[after.row]);
    if (field)
        m_history.takeTyped(state(), after, typedFields().indexOf(field));
    else
        m_history.take(state(), after);
}

RegionState RoiEditor::state() const
{
    return {m_rois, currentRow()};
}

/// Replaces the regions and the selection, from the history or from a file.
void RoiEditor::showState(const RegionState &state)
{
    {
        const QSignalBlocker quiet(m_ui->roiList);
        m_rois = state.rois;
        while (m_ui->roiList->count() > m_rois.size())
            delete m_ui->roiList->takeItem(m_ui->roiList->count() - 1);
        while (m_ui->roiList->count() < m_rois.size())
            m_ui->roiList->addItem(makeItem());
        for (int row = 0; row < m_rois.size(); ++row)
            showIn(m_ui->roiList->item(row), m_rois.at(row));
        m_ui->roiList->setCurrentRow(state.row);
    }
    showFields();
    emit regionsChanged();
}

void RoiEditor::showFields()
{
    const Roi *roi = currentRoi();
    m_ui->deleteRoiButton->setEnabled(roi);
    for (QAction *action : std::as_const(m_needRegion))
        action->setEnabled(roi);
    m_ui->nameEdit->setEnabled(roi);
    m_ui->rotationCombo->setEnabled(roi);
    const QSignalBlocker quiet(m_ui->rotationCombo);
    const QString name = roi ? roi->name : QString();
    if (m_ui->nameEdit->text() != name) { // while it is typed the cursor stays
        m_ui->nameEdit->setText(name);
        m_ui->nameEdit->setCursorPosition(0); // a long name is read from its beginning
    }
    m_ui->rotationCombo->setCurrentIndex(roi ? RoiGeometry::rotationIndex(roi->rotation) : 0);
    if (roi && !m_frameSize.isEmpty())
        showGeometry(RoiGeometry::pixelRect(roi->rect, m_frameSize));
    else
        clearGeometry();
}

void RoiEditor::showGeometry(const QRect &pixels)
{
    setField(m_ui->xSpin, 0, m_frameSize.width() - 2, pixels.x());
    setField(m_ui->ySpin, 0, m_frameSize.height() - 2, pixels.y());
    setField(m_ui->widthSpin, 2, m_frameSize.width(), pixels.width());
    setField(m_ui->heightSpin, 2, m_frameSize.height(), pixels.height());
}

/// Without a frame there are no pixel values; those of the previous frame would be wrong.
void RoiEditor::clearGeometry()
{
    const QVector<QSpinBox *> fields = geometryFields();
    for (QSpinBox *field : fields) {
        const QSignalBlocker quiet(field);
        field->setEnabled(false);
        field->clear();
    }
}

QVector<QSpinBox *> RoiEditor::geometryFields() const
{
    return {m_ui->xSpin, m_ui->ySpin, m_ui->widthSpin, m_ui->heightSpin};
}

/// Fields whose consecutive changes become one step.
QVector<const QWidget *> RoiEditor::typedFields() const
{
    return {m_ui->nameEdit, m_ui->xSpin, m_ui->ySpin, m_ui->widthSpin, m_ui->heightSpin};
}

/// Null when no region is selected.
const Roi *RoiEditor::currentRoi() const
{
    const int row = currentRow();
    return row >= 0 ? &m_rois.at(row) : nullptr;
}
