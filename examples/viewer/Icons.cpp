#include "Icons.h"

#include <QPainter>
#include <QPainterPath>

#include <functional>

namespace viewer {

using namespace KelvOsgTools;

namespace {

const QColor kInk(62, 74, 88);
const QColor kAccent(236, 120, 20);
const QColor kBlue(30, 110, 225);
const QColor kFill(205, 216, 228);

/// Draws on a canvas of 24 by 24 units, in the sizes that tool bars and lists use.
QIcon drawn(const std::function<void(QPainter&)>& draw)
{
    constexpr double kCanvas = 24.0;
    QIcon icon;
    for (const int size : {16, 24, 32, 48, 64, 128}) {
        QPixmap pixmap(size, size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.scale(size / kCanvas, size / kCanvas);
        painter.setPen(QPen(kInk, 1.8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        draw(painter);
        painter.end();
        icon.addPixmap(pixmap);
        icon.addPixmap(pixmap, QIcon::Selected); // platforms would tint it
    }
    return icon;
}

QPolygonF polygon(std::initializer_list<QPointF> points)
{
    return QVector<QPointF>(points);
}

void drawArrow(QPainter& painter, const QColor& colour, double width)
{
    painter.setPen(QPen(colour, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawLine(QPointF(4, 20), QPointF(18, 6));
    painter.setBrush(colour);
    painter.drawPolygon(polygon({{20, 4}, {18.5, 10.5}, {13.5, 5.5}}));
}

void drawPlane(QPainter& painter)
{
    painter.setBrush(kFill);
    painter.drawPolygon(polygon({{2, 17}, {9, 10}, {22, 13}, {15, 20.5}}));
    painter.setPen(QPen(kAccent, 2.0, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(12, 15), QPointF(12, 4));
    painter.drawPolyline(polygon({{9.5, 6.5}, {12, 3.5}, {14.5, 6.5}}));
}

void drawDot(QPainter& painter)
{
    painter.setPen(QPen(kInk, 1.4));
    for (const QLineF& line :
         {QLineF(12, 2, 12, 6), QLineF(12, 18, 12, 22), QLineF(2, 12, 6, 12), QLineF(18, 12, 22, 12)})
        painter.drawLine(line);
    painter.setPen(Qt::NoPen);
    painter.setBrush(kAccent);
    painter.drawEllipse(QPointF(12, 12), 4.6, 4.6);
}

void drawCursor(QPainter& painter)
{
    painter.setBrush(Qt::white);
    painter.drawPolygon(polygon({{6, 3}, {6, 18.5}, {10, 15}, {12.8, 21}, {15.4, 19.8}, {12.6, 14}, {17.8, 13.6}}));
}

void drawCube(QPainter& painter)
{
    painter.setBrush(kFill);
    painter.drawPolygon(polygon({{12, 2.5}, {20.5, 7}, {20.5, 16.5}, {12, 21.5}, {3.5, 16.5}, {3.5, 7}}));
    painter.drawPolyline(polygon({{3.5, 7}, {12, 11.5}, {20.5, 7}}));
    painter.drawLine(QPointF(12, 11.5), QPointF(12, 21.5));
}

void drawFolder(QPainter& painter)
{
    painter.setBrush(QColor(250, 214, 130));
    painter.drawPolygon(polygon({{2.5, 5}, {9, 5}, {11, 7.5}, {21.5, 7.5}, {21.5, 19.5}, {2.5, 19.5}}));
}

void drawDisk(QPainter& painter)
{
    painter.setBrush(kFill);
    painter.drawPolygon(polygon({{3, 3}, {18, 3}, {21, 6}, {21, 21}, {3, 21}}));
    painter.setBrush(Qt::white);
    painter.drawRect(QRectF(7, 13, 10, 8));
    painter.drawRect(QRectF(8, 3, 8, 5));
}

void drawTurn(QPainter& painter, bool back)
{
    if (!back) {
        painter.translate(24, 0);
        painter.scale(-1, 1);
    }
    QPainterPath path(QPointF(5, 9));
    path.cubicTo(11, 6, 21, 8, 20, 18);
    painter.setPen(QPen(kInk, 2.2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPath(path);
    painter.drawPolyline(polygon({{9, 4}, {4, 9}, {9.5, 13}}));
}

void drawFit(QPainter& painter)
{
    for (int quarter = 0; quarter < 4; ++quarter) {
        painter.drawPolyline(polygon({{3, 8}, {3, 3}, {8, 3}}));
        painter.translate(24, 0);
        painter.rotate(90);
    }
    painter.setBrush(kFill);
    painter.drawEllipse(QPointF(12, 12), 5, 5);
}

void drawFrustum(QPainter& painter)
{
    painter.setBrush(kFill);
    painter.drawPolygon(polygon({{8, 6}, {16, 6}, {22, 20}, {2, 20}}));
    painter.drawLine(QPointF(12, 6), QPointF(12, 20));
    painter.drawLine(QPointF(5.4, 12), QPointF(18.6, 12));
}

} // namespace

QIcon iconOf(ToolKind tool)
{
    switch (tool) {
    case ToolKind::Select:
        return drawn(drawCursor);
    case ToolKind::Dot:
        return drawn(drawDot);
    case ToolKind::Line:
        return drawn([](QPainter& painter) { drawArrow(painter, kBlue, 1.8); });
    case ToolKind::SolidLine:
        return drawn([](QPainter& painter) { drawArrow(painter, kBlue, 4.2); });
    default:
        return drawn(drawPlane);
    }
}

QIcon iconOf(featureType kind)
{
    // Made once: lists ask for them with every repaint.
    static const QIcon dot = iconOf(ToolKind::Dot);
    static const QIcon line = iconOf(ToolKind::Line);
    static const QIcon plane = iconOf(ToolKind::Plane);
    return kind == featureDot ? dot : kind == featureLine ? line : plane;
}

QIcon iconOf(Symbol symbol)
{
    switch (symbol) {
    case Symbol::OpenMesh:
        return drawn(drawCube);
    case Symbol::OpenFeatures:
        return drawn(drawFolder);
    case Symbol::Save:
        return drawn(drawDisk);
    case Symbol::Undo:
        return drawn([](QPainter& painter) { drawTurn(painter, true); });
    case Symbol::Redo:
        return drawn([](QPainter& painter) { drawTurn(painter, false); });
    case Symbol::Fit:
        return drawn(drawFit);
    case Symbol::Perspective:
        return drawn(drawFrustum);
    default:
        return drawn([](QPainter& painter) {
            drawCube(painter);
            drawDot(painter);
        });
    }
}

} // namespace viewer
