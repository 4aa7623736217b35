#include "FeatureDocument.h"

#include "FeatureFile.h"
#include "MeasureScene.h"

#include <KelvOsgTools/CFeatureConfig.h>

#include <QRegularExpression>
#include <QUndoCommand>

#include <algorithm>

namespace viewer {

using namespace KelvOsgTools;

/// Brings a feature in or, the other way round, takes it away.
class InsertionCommand : public QUndoCommand
{
public:
    enum Direction
    {
        Insert,
        Remove
    };

    InsertionCommand(FeatureDocument& document, Direction direction, int row, Feature feature, const QString& text,
                     QUndoCommand* parent = nullptr)
        : QUndoCommand(text, parent),
          m_document(document),
          m_direction(direction),
          m_row(row),
          m_feature(std::move(feature))
    {}

    void redo() override { apply(m_direction); }
    void undo() override { apply(m_direction == Insert ? Remove : Insert); }

private:
    void apply(Direction direction)
    {
        if (direction == Insert)
            m_document.insert(m_row, m_feature);
        else
            m_document.remove(m_row);
    }

    FeatureDocument& m_document;
    Direction m_direction;
    int m_row;
    Feature m_feature;
};

/// Puts a changed feature in the place of what it was.
class ChangeCommand : public QUndoCommand
{
public:
    ChangeCommand(FeatureDocument& document, int row, Feature changed, const QString& text)
        : QUndoCommand(text),
          m_document(document),
          m_row(row),
          m_before(document.features().at(std::size_t(row))),
          m_after(std::move(changed))
    {}

    void redo() override { m_document.replace(m_row, m_after); }
    void undo() override { m_document.replace(m_row, m_before); }

private:
    FeatureDocument& m_document;
    int m_row;
    Feature m_before;
    Feature m_after;
};

namespace {

// Bins up to the one of translucent patches, 10, would let patches cover labels.
constexpr int kFirstRenderIndex = 100;

bool isUsable(featureType kind, const std::vector<osg::Vec3f>& clicks)
{
    if (kind == featureLine) return clicks.at(0) != clicks.at(1);
    if (kind == featurePlane)
        return heightOf(clicks) > 0.0f &&
               heightOf(clicks) >= CFeatureConfig::sigleFeatureConfig()->getPlaneMinThresholdValue();
    return true;
}

} // namespace

FeatureDocument::FeatureDocument(MeasureScene& scene, QObject* parent) : QObject(parent), m_scene(scene) {}

int FeatureDocument::rowOf(const QString& name) const
{
    const auto found = std::find_if(m_features.begin(), m_features.end(),
                                    [&name](const Feature& feature) { return feature.name == name; });
    return found == m_features.end() ? -1 : int(found - m_features.begin());
}

bool FeatureDocument::create(featureType kind, const std::vector<osg::Vec3f>& clicks, bool isLineArrow)
{
    if (!isUsable(kind, clicks)) return false;
    std::vector<Feature> made(1);
    Feature& feature = made.front();
    feature.kind = kind;
    feature.word = defaultWord(kind);
    feature.number = ++count(kind);
    feature.points = pointsFromClicks(kind, clicks);
    feature.isLineArrow = isLineArrow;
    if (kind == featureLine && !isLineArrow) feature.radius = m_scene.solidArrowRadius();
    assignNames(made);
    m_undoStack.push(new InsertionCommand(*this, InsertionCommand::Insert, int(m_features.size()), feature,
                                          tr("Create %1").arg(labelText(feature))));
    return true;
}

void FeatureDocument::removeRows(std::vector<int> rows)
{
    if (rows.empty()) return;
    std::sort(rows.rbegin(), rows.rend()); // from the last, so that the rows before keep their numbers
    auto* const all =
        new QUndoCommand(rows.size() == 1 ? tr("Delete %1").arg(labelText(m_features[std::size_t(rows[0])]))
                                          : tr("Delete %1 Features").arg(rows.size()));
    for (const int row : rows)
        new InsertionCommand(*this, InsertionCommand::Remove, row, m_features[std::size_t(row)], {}, all);
    m_undoStack.push(all);
}

bool FeatureDocument::rename(int row, const QString& text)
{
    Feature changed = m_features.at(std::size_t(row));
    static const QRegularExpression unprintable(
        QStringLiteral("[[:cntrl:]]")); // XML knows no way to write most of them
    const QString word = QString(text).remove(unprintable).trimmed();
    if (word.isEmpty() || word == labelText(changed)) return false;
    changed.word = word;
    changed.number = Feature::kNoNumber;
    m_undoStack.push(new ChangeCommand(*this, row, changed, tr("Rename to %1").arg(word)));
    return true;
}

void FeatureDocument::setState(int row, featureState state)
{
    featureState& present = m_states.at(std::size_t(row));
    if (present == state) return;
    present = state;
    m_scene.show(m_features.at(std::size_t(row)), state);
}

void FeatureDocument::clear()
{
    std::fill(std::begin(m_counts), std::end(m_counts), 0);
    replaceAll({}, {});
}

bool FeatureDocument::save(const QString& path, QString& error)
{
    m_scene.showTemporary(featureAll, {}, true); // previews are features to the exporter
    // The file holds the features in the order of the scene, which renamed ones have left.
    for (std::size_t row = 0; row < m_features.size(); ++row) m_scene.rebuild(m_features[row], m_states[row]);

    FeatureFileContent content{m_features, count(featureDot), count(featureLine), count(featurePlane)};
    std::stable_sort(content.features.begin(), content.features.end(),
                     [](const Feature& a, const Feature& b) { return a.kind < b.kind; });
    if (!writeFeatureFile(path, m_scene.root(), content, error)) return false;
    m_path = path;
    m_undoStack.setClean();
    emit pathChanged();
    return true;
}

bool FeatureDocument::open(const QString& path, QString& error)
{
    FeatureFileContent content;
    if (!readFeatureFile(path, content, error)) return false;
    count(featureDot) = content.dotCount;
    count(featureLine) = content.lineCount;
    count(featurePlane) = content.planeCount;
    for (const Feature& feature : content.features) // a file without counters must not give numbers twice
        count(feature.kind) = std::max(count(feature.kind), feature.number);
    assignNames(content.features);
    replaceAll(content.features, path);
    return true;
}

void FeatureDocument::insert(int row, const Feature& feature)
{
    emit aboutToInsert(row);
    m_features.insert(m_features.begin() + row, feature);
    m_states.insert(m_states.begin() + row, featureStateNormal);
    m_scene.show(feature, featureStateNormal);
    emit inserted(row);
}

void FeatureDocument::remove(int row)
{
    emit aboutToRemove(row);
    m_scene.remove(m_features[std::size_t(row)]);
    m_features.erase(m_features.begin() + row);
    m_states.erase(m_states.begin() + row);
    emit removed(row);
}

void FeatureDocument::replace(int row, const Feature& feature)
{
    m_features[std::size_t(row)] = feature;
    m_scene.rebuild(feature, m_states[std::size_t(row)]);
    emit featureChanged(row);
}

void FeatureDocument::replaceAll(const std::vector<Feature>& features, const QString& path)
{
    emit aboutToReset();
    for (const Feature& feature : m_features) m_scene.remove(feature);
    m_features = features;
    m_states.assign(features.size(), featureStateNormal);
    for (const Feature& feature : m_features) m_scene.show(feature, featureStateNormal);
    m_undoStack.clear();
    m_path = path;
    emit reset();
    emit pathChanged();
}

void FeatureDocument::assignNames(std::vector<Feature>& features)
{
    for (Feature& feature : features) {
        ++m_lastName;
        feature.name = QStringLiteral("%1-%2").arg(kindName(feature.kind).toLower()).arg(m_lastName);
        feature.renderIndex = kFirstRenderIndex + m_lastName;
    }
}

} // namespace viewer
