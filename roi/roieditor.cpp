#include "roi/roieditor.h"

#include "base/plainmessagebox.h"
#include "roi/roigeometry.h"
#include "ui_roieditor.h"

#include <QShortcut>
#include <QSignalBlocker>

#include <algorithm>
#include <utility>

namespace {

QString boxTitle()
{
    return RoiEditor::tr("ROI video");
}

QListWidgetItem *makeItem(const Roi &roi)
{
    auto *item = new QListWidgetItem(roi.name);
    item->setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemIsUserCheckable);
    item->setCheckState(roi.enabled ? Qt::Checked : Qt::Unchecked);
    return item;
}

void setField(QSpinBox *field, int lowest, int highest, int value)
{
    const QSignalBlocker quiet(field);
    field->setEnabled(true);
    field->setRange(lowest, std::max(lowest, highest));
    field->setValue(value);
}

} // namespace

RoiEditor::RoiEditor(QWidget *parent) : QGroupBox(parent), m_ui(std::make_unique<Ui::RoiEditor>())
{
    m_ui->setupUi(this);
    connect(m_ui->newRoiButton, &QPushButton::clicked, this, &RoiEditor::drawingRequested);
    connect(m_ui->deleteRoiButton, &QPushButton::clicked, this, &RoiEditor::deleteCurrent);
    connect(m_ui->saveRoisButton, &QPushButton::clicked, this, &RoiEditor::storeAndSaySo);
    connect(m_ui->roiList, &QListWidget::currentRowChanged, this, &RoiEditor::onCurrentRowChanged);
    connect(m_ui->roiList, &QListWidget::itemChanged, this, &RoiEditor::onItemChanged);
    connect(m_ui->nameEdit, &QLineEdit::textEdited, this, &RoiEditor::onNameEdited);
    connect(m_ui->rotationCombo, qOverload<int>(&QComboBox::currentIndexChanged), this,
            &RoiEditor::onRotationChosen);
    connectGeometry(m_ui->xSpin, &QRectF::moveLeft, &QSize::width);
    connectGeometry(m_ui->ySpin, &QRectF::moveTop, &QSize::height);
    connectGeometry(m_ui->widthSpin, &QRectF::setWidth, &QSize::width);
    connectGeometry(m_ui->heightSpin, &QRectF::setHeight, &QSize::height);
    auto *deleteKey = new QShortcut(QKeySequence::Delete, m_ui->roiList);
    deleteKey->setContext(Qt::WidgetShortcut);
    connect(deleteKey, &QShortcut::activated, this, &RoiEditor::deleteCurrent);
    showFields();
}

RoiEditor::~RoiEditor() = default;

int RoiEditor::currentRow() const
{
    return m_ui->roiList->currentRow();
}

QVector<RegionMark> RoiEditor::marks() const
{
    QVector<RegionMark> marks;
    marks.reserve(m_rois.size());
    for (const Roi &roi : m_rois)
        marks.append({RoiGeometry::pixelRect(roi.rect, m_frameSize),
                      RegionMarks::nameOf(marks.size() + 1, roi.name, roi.enabled)});
    return marks;
}

void RoiEditor::load(const QString &sessionDirectory)
{
    m_sessionDirectory = sessionDirectory;
    m_storedRois = m_rois = RoiSet::load(sessionDirectory);
    {
        const QSignalBlocker quiet(m_ui->roiList);
        m_ui->roiList->clear();
        for (const Roi &roi : std::as_const(m_rois))
            m_ui->roiList->addItem(makeItem(roi));
        m_ui->roiList->setCurrentRow(0);
    }
    onCurrentRowChanged();
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
    commitTyped(); // pixels of the frame so far
    m_frameSize = pixels;
    showFields();
}

QString RoiEditor::add(const QRectF &pixels)
{
    Roi roi;
    roi.name = RoiSet::defaultName(m_rois.size());
    roi.rect = RoiGeometry::normalizedRect(pixels, m_frameSize);
    m_rois.append(roi);
    m_ui->roiList->addItem(makeItem(roi));
    m_ui->roiList->setCurrentRow(m_rois.size() - 1);
    return roi.name;
}

void RoiEditor::pick(int row)
{
    m_ui->roiList->setCurrentRow(row);
}

void RoiEditor::dragTo(const QRect &pixels)
{
    Roi *roi = currentRoi();
    if (!roi)
        return;
    if (!m_beforeDrag)
        m_beforeDrag = roi->rect;
    roi->rect = RoiGeometry::coveringPixels(*m_beforeDrag, pixels, m_frameSize);
    onCurrentRowChanged();
}

void RoiEditor::endDrag(bool kept)
{
    const std::optional<QRectF> before = std::exchange(m_beforeDrag, std::nullopt);
    Roi *roi = currentRoi();
    if (kept || !before || !roi)
        return;
    roi->rect = *before;
    onCurrentRowChanged();
}

void RoiEditor::commitTyped()
{
    const QVector<QSpinBox *> fields = geometryFields();
    for (QSpinBox *field : fields) {
        if (field->isEnabled())
            field->interpretText();
    }
}

void RoiEditor::onCurrentRowChanged()
{
    showFields();
    emit regionsChanged();
}

void RoiEditor::onItemChanged(QListWidgetItem *item)
{
    m_rois[m_ui->roiList->row(item)].enabled = item->checkState() == Qt::Checked;
    emit regionsChanged();
}

void RoiEditor::onNameEdited(const QString &name)
{
    if (Roi *roi = currentRoi()) {
        roi->name = name;
        m_ui->roiList->currentItem()->setText(name); // which is a change of the item
    }
}

void RoiEditor::onRotationChosen(int index)
{
    if (Roi *roi = currentRoi()) {
        roi->rotation = RoiGeometry::rotationAt(index);
        emit regionsChanged();
    }
}

void RoiEditor::deleteCurrent()
{
    const int row = currentRow();
    if (row < 0)
        return;
    {
        const QSignalBlocker quiet(m_ui->roiList);
        m_rois.remove(row);
        delete m_ui->roiList->takeItem(row);
        m_ui->roiList->setCurrentRow(std::min(row, m_rois.size() - 1));
    }
    onCurrentRowChanged();
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

/// Lets @p field change its own side of the region only: what the others hold beyond whole pixels,
/// or beyond this frame's edge, stays for the other datasources.
void RoiEditor::connectGeometry(QSpinBox *field, void (QRectF::*change)(qreal),
                                int (QSize::*frameSide)() const)
{
    connect(field, qOverload<int>(&QSpinBox::valueChanged), this,
            [this, change, frameSide](int pixels) {
                if (Roi *roi = currentRoi()) {
                    (roi->rect.*change)(static_cast<double>(pixels) / (m_frameSize.*frameSide)());
                    onCurrentRowChanged();
                }
            });
}

void RoiEditor::showFields()
{
    const Roi *roi = currentRoi();
    m_ui->deleteRoiButton->setEnabled(roi);
    m_ui->nameEdit->setEnabled(roi);
    m_ui->rotationCombo->setEnabled(roi);
    const QSignalBlocker quiet(m_ui->rotationCombo);
    m_ui->nameEdit->setText(roi ? roi->name : QString());
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

/// Without a frame no pixels can be told, and those of the frame before would be wrong.
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

/// Null when no region is selected.
Roi *RoiEditor::currentRoi()
{
    const int row = currentRow();
    return row >= 0 ? &m_rois[row] : nullptr;
}
