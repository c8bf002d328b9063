#pragma once

#include <QtCore/QAbstractItemModel>
#include <QtCore/QMap>
#include <QtCore/QVariant>

/// A model without the two functions that pass maps. The map that a cross-built program knows is not the one of Qt's
/// libraries for Windows, and nothing asks a model of this window for it.
template <typename Model>
class OwnModel : public Model
{
public:
    using Model::Model;
    QMap<int, QVariant> itemData(const QModelIndex & /*index*/) const override { return {}; }
    bool setItemData(const QModelIndex & /*index*/, const QMap<int, QVariant> & /*roles*/) override
    {
        return false;
    }
};
