#include "FeatureListModel.h"

#include "FeatureDocument.h"
#include "Icons.h"

namespace viewer {

FeatureListModel::FeatureListModel(FeatureDocument& document, QObject* parent)
    : QAbstractTableModel(parent), m_document(document)
{
    connect(&document, &FeatureDocument::aboutToInsert, this, [this](int row) { beginInsertRows({}, row, row); });
    connect(&document, &FeatureDocument::inserted, this, [this] { endInsertRows(); });
    connect(&document, &FeatureDocument::aboutToRemove, this, [this](int row) { beginRemoveRows({}, row, row); });
    connect(&document, &FeatureDocument::removed, this, [this] { endRemoveRows(); });
    connect(&document, &FeatureDocument::aboutToReset, this, [this] { beginResetModel(); });
    connect(&document, &FeatureDocument::reset, this, [this] { endResetModel(); });
    connect(&document, &FeatureDocument::featureChanged, this,
            [this](int row) { emit dataChanged(index(row, 0), index(row, ColumnCount - 1)); });
}

int FeatureListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_document.features().size());
}

int FeatureListModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant FeatureListModel::data(const QModelIndex& index, int role) const
{
    const Feature& feature = m_document.features().at(std::size_t(index.row()));
    if (role == Qt::DecorationRole && index.column() == Kind) return iconOf(feature.kind);
    if (role != Qt::DisplayRole && role != Qt::EditRole && role != Qt::ToolTipRole) return {};
    switch (index.column()) {
    case Name:
        return feature.name;
    case Kind:
        return kindName(feature.kind);
    case Label:
        return labelText(feature);
    case Measure:
        return measureText(feature);
    default:
        return coordinatesText(feature);
    }
}

QVariant FeatureListModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole || orientation != Qt::Horizontal)
        return QAbstractTableModel::headerData(section, orientation, role);
    switch (section) {
    case Name:
        return tr("Name");
    case Kind:
        return tr("Kind");
    case Label:
        return tr("Label");
    case Measure:
        return tr("Length / Normal");
    default:
        return tr("Coordinates");
    }
}

Qt::ItemFlags FeatureListModel::flags(const QModelIndex& index) const
{
    const Qt::ItemFlags flags = QAbstractTableModel::flags(index);
    return index.column() == Label ? flags | Qt::ItemIsEditable : flags;
}

bool FeatureListModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    return role == Qt::EditRole && index.column() == Label && m_document.rename(index.row(), value.toString());
}

void FeatureListModel::labelsChanged()
{
    if (rowCount() > 0) emit dataChanged(index(0, Label), index(rowCount() - 1, Label));
}

} // namespace viewer
