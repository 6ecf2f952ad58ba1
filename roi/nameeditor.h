#pragma once

#include <QStyledItemDelegate>

/// The field that edits a name in the list.
class NameEditor final : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override;
    /// Stores a name that was edited; an unchanged one is kept, even if it exceeds the limit.
    void setModelData(QWidget *editor, QAbstractItemModel *model,
                      const QModelIndex &index) const override;
};
