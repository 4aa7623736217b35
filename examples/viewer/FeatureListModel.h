#pragma once

#include <QAbstractTableModel>

namespace viewer {
class FeatureDocument;

/// The features of a document as rows; the label can be edited.
class FeatureListModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column
    {
        Name,
        Kind,
        Label,
        Measure,
        Coordinates,
        ColumnCount
    };

    explicit FeatureListModel(FeatureDocument& document, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;

    /// Call it after the language changed.
    void labelsChanged();

private:
    FeatureDocument& m_document;
};

} // namespace viewer
