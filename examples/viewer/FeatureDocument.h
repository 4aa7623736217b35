#pragma once

#include "Feature.h"

#include <QObject>
#include <QUndoStack>

#include <optional>
#include <vector>

namespace viewer {
class MeasureScene;

/// The features of a session, in the order of the list: undo, save and open.
///
/// The document keeps the nodes of the scene in step. It needs no window.
class FeatureDocument : public QObject
{
    Q_OBJECT

public:
    explicit FeatureDocument(MeasureScene& scene, QObject* parent = nullptr);

    const std::vector<Feature>& features() const { return m_features; }
    MeasureScene& scene() { return m_scene; }
    QUndoStack& undoStack() { return m_undoStack; }

    /// Row of the feature with that name; -1 if there is none.
    int rowOf(const QString& name) const;

    /// @name Changes, each one step of undo
    /// @{

    /// Makes a feature with the next number of its kind from the clicks that define it.
    /// @return false, with nothing changed, if the points of a plane lie (nearly) on one line or
    ///         the ends of a line are one point
    bool create(KelvOsgTools::featureType kind, const std::vector<osg::Vec3f>& clicks, bool isLineArrow);
    void removeRows(std::vector<int> rows);

    /// @return false, with nothing changed, if text is blank or the label as it is
    bool rename(int row, const QString& text);
    /// @}

    void setState(int row, KelvOsgTools::featureState state);
    KelvOsgTools::featureState state(int row) const { return m_states.at(std::size_t(row)); }

    /// Empties the document; it has no file then.
    void clear();

    /// @name Files
    /// Both give a reason in error and change neither document nor file when they fail.
    /// @{
    bool save(const QString& path, QString& error);
    bool open(const QString& path, QString& error);
    /// @}

    QString path() const { return m_path; }
    bool isModified() const { return !m_undoStack.isClean(); }

signals:
    void aboutToInsert(int row);
    void inserted(int row);
    void aboutToRemove(int row);
    void removed(int row);
    void featureChanged(int row);
    void aboutToReset();
    void reset();
    void pathChanged();

private:
    friend class ChangeCommand;
    friend class InsertionCommand;

    void insert(int row, const Feature& feature);
    void remove(int row);
    void replace(int row, const Feature& feature);
    void replaceAll(const std::vector<Feature>& features, const QString& path);
    void assignNames(std::vector<Feature>& features);
    int& count(KelvOsgTools::featureType kind) { return m_counts[kind]; }

    MeasureScene& m_scene;
    QUndoStack m_undoStack;
    std::vector<Feature> m_features;
    std::vector<KelvOsgTools::featureState> m_states;  // row by row
    int m_counts[KelvOsgTools::featurePlane + 1] = {}; // last number given out, by kind; saved in the file
    int m_lastName = 0;                                // never given out again, undone features keep theirs
    QString m_path;
};

} // namespace viewer
