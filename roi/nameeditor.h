#pragma once

#include <QStyledItemDelegate>

/// The field in which a name is edited in its place in the list.
class NameEditor final : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override;
    /// Takes over what was typed; a name that nobody touched stays as long as it is.
    void setModelData(QWidget *editor, QAbstractItemModel *model,
                      const QModelIndex &index) const override;
};
