#pragma once
#include <QIdentityProxyModel>

namespace selfreport {

/// The rows of the toolkit's file dialog with headings, kinds, sizes and times in Chinese: the toolkit writes
/// these in the system's language.
class FileRows : public QIdentityProxyModel {
public:
    using QIdentityProxyModel::QIdentityProxyModel;

    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
};

} // namespace selfreport
