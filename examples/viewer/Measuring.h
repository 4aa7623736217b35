#pragma once

#include "Picker.h"
#include "Tool.h"

#include <QItemSelectionModel>
#include <QObject>
#include <QPointF>

namespace viewer {
class FeatureDocument;
class ViewportWidget;

/// Turns clicks and moves of the cursor in the view into features, highlights and selections.
class Measuring : public QObject
{
    Q_OBJECT

public:
    /// @param selection rows of the document; shared with the list, so that both stay in step
    Measuring(ViewportWidget& viewport, FeatureDocument& document, QItemSelectionModel& selection,
              QObject* parent = nullptr);

    const Tool& tool() const { return m_tool; }
    void chooseTool(ToolKind kind);

    /// Steps back: forgets the clicks of the tool, then the tool, then the selection.
    void cancel();

signals:
    void toolChanged();
    void pointed(const QString& text); ///< the coordinates under the cursor; empty beside the mesh
    void reported(const QString& message);

private:
    void hover(const QPointF& position);
    void click(const QPointF& position, Qt::KeyboardModifiers modifiers);
    void select(const QString& name, Qt::KeyboardModifiers modifiers);
    void placePoint(const osg::Vec3f& point);
    void showPreview(const std::vector<osg::Vec3f>& points);
    void updateStates();
    std::optional<osg::Vec3f> pointAt(const QPointF& position);

    ViewportWidget& m_viewport;
    FeatureDocument& m_document;
    QItemSelectionModel& m_selection;
    Picker m_picker;
    Tool m_tool;
    QString m_hovered; // name of the feature under the cursor
};

} // namespace viewer
