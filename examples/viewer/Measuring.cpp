#include "Measuring.h"

#include "FeatureDocument.h"
#include "MeasureScene.h"
#include "ViewportWidget.h"

namespace viewer {

using namespace KelvOsgTools;

Measuring::Measuring(ViewportWidget& viewport, FeatureDocument& document, QItemSelectionModel& selection,
                     QObject* parent)
    : QObject(parent),
      m_viewport(viewport),
      m_document(document),
      m_selection(selection),
      m_picker(viewport.viewer(), document)
{
    connect(&viewport, &ViewportWidget::hovered, this, &Measuring::hover);
    connect(&viewport, &ViewportWidget::clicked, this, &Measuring::click);
    connect(&viewport, &ViewportWidget::cursorLeft, this, [this] {
        m_hovered.clear();
        updateStates();
        showPreview(m_tool.clicks());
        emit pointed({});
    });
    connect(&selection, &QItemSelectionModel::selectionChanged, this, &Measuring::updateStates);
    connect(&document, &FeatureDocument::inserted, this, &Measuring::updateStates);
}

void Measuring::chooseTool(ToolKind kind)
{
    m_tool.choose(kind);
    m_hovered.clear();
    updateStates();
    showPreview({});
    emit toolChanged();
}

void Measuring::cancel()
{
    if (!m_tool.makesFeatures()) {
        m_selection.clearSelection();
        return;
    }
    m_tool.cancel();
    showPreview(m_tool.clicks());
    emit toolChanged();
}

void Measuring::hover(const QPointF& position)
{
    const std::optional<osg::Vec3f> point = pointAt(position);
    emit pointed(point ? coordinatesText(*point) : QString());
    if (m_tool.makesFeatures()) {
        showPreview(point ? m_tool.clicksWith(*point) : m_tool.clicks());
        return;
    }
    const QString under = m_picker.featureAt(m_viewport.pickPosition(position));
    m_viewport.setCursor(under.isEmpty() ? Qt::ArrowCursor : Qt::PointingHandCursor);
    if (under == m_hovered) return;
    m_hovered = under;
    updateStates();
}

void Measuring::click(const QPointF& position, Qt::KeyboardModifiers modifiers)
{
    if (!m_tool.makesFeatures())
        select(m_picker.featureAt(m_viewport.pickPosition(position)), modifiers);
    else if (const std::optional<osg::Vec3f> point = pointAt(position))
        placePoint(*point);
    else
        emit reported(tr("There is no surface: click on the mesh"));
}

void Measuring::select(const QString& name, Qt::KeyboardModifiers modifiers)
{
    const int row = m_document.rowOf(name);
    const bool toggles = modifiers & Qt::ControlModifier;
    if (row < 0) {
        if (!toggles) m_selection.clearSelection();
        return;
    }
    const QModelIndex index = m_selection.model()->index(row, 0);
    m_selection.setCurrentIndex(index, QItemSelectionModel::Rows | (toggles ? QItemSelectionModel::Toggle
                                                                            : QItemSelectionModel::ClearAndSelect));
}

void Measuring::placePoint(const osg::Vec3f& point)
{
    const featureType kind = m_tool.featureKind();
    const std::optional<std::vector<osg::Vec3f>> clicks = m_tool.click(point);
    showPreview(m_tool.clicks());
    if (clicks && !m_document.create(kind, *clicks, m_tool.isLineArrow()))
        emit reported(kind == featureLine ? tr("Both ends of the line are the same point")
                                          : tr("The three points lie on one line and make no plane"));
    emit toolChanged();
}

void Measuring::showPreview(const std::vector<osg::Vec3f>& points)
{
    m_document.scene().showTemporary(m_tool.featureKind(), points, m_tool.isLineArrow());
}

void Measuring::updateStates()
{
    for (int row = 0; row < int(m_document.features().size()); ++row) {
        const bool isSelected = m_selection.isRowSelected(row, {});
        const bool isHovered = m_document.features()[std::size_t(row)].name == m_hovered;
        m_document.setState(row, isSelected  ? featureStateSelected
                                 : isHovered ? featureStateHighlighted
                                             : featureStateNormal);
    }
}

std::optional<osg::Vec3f> Measuring::pointAt(const QPointF& position)
{
    const osg::Vec2d pick = m_viewport.pickPosition(position);
    // Ends of lines and corners of planes snap to dots; a dot on a dot would be of no use.
    const bool snaps = m_tool.featureKind() == featureLine || m_tool.featureKind() == featurePlane;
    return snaps ? m_picker.meshOrDotPointAt(pick) : m_picker.meshPointAt(pick);
}

} // namespace viewer
