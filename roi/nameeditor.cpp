#include "roi/nameeditor.h"

#include "roi/roiset.h"

#include <QLineEdit>

QWidget *NameEditor::createEditor(QWidget *parent, const QStyleOptionViewItem & /*option*/,
                                  const QModelIndex & /*index*/) const
{
    auto *editor = new QLineEdit(parent);
    editor->setMaxLength(RoiSet::maxNameLength);
    editor->setAccessibleName(tr("Name of the region"));
    return editor;
}

void NameEditor::setModelData(QWidget *editor, QAbstractItemModel *model,
                              const QModelIndex &index) const
{
    if (static_cast<QLineEdit *>(editor)->isModified())
        QStyledItemDelegate::setModelData(editor, model, index);
}
