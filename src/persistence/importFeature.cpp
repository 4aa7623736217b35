#include <KelvOsgTools/importFeature.h>

#include <KelvOsgTools/FeatureFunctions.h>
#include <KelvOsgTools/exportFeature.h>

#include "persistence/BoundedXmlReader.h"
#include "persistence/FeatureXml.h"

#include <QDebug>
#include <QFile>

#include <algorithm>
#include <iterator>

namespace KelvOsgTools {
namespace {

constexpr std::size_t kCornersOfAPlane = 4; // planes are quadrilaterals, whatever a file says
constexpr std::size_t kMinCornersToRebuild = 3;

void advance(QXmlStreamReader& reader)
{
    static_cast<detail::BoundedXmlReader&>(reader).advance(); // every reader in this source is one
}

bool isReading(const QXmlStreamReader& reader)
{
    return !reader.hasError() && !reader.atEnd();
}

/// Calls visit at every start tag from the present token to the end tag of element. Nesting does
/// not count: what stands deeper is visited too, and the first end tag of that name ends it. An
/// error ends it as well.
template <typename Visit>
void visitStartTags(QXmlStreamReader& reader, QStringView element, Visit visit)
{
    for (; isReading(reader); advance(reader)) {
        if (reader.isEndElement() && reader.name() == element) return;
        if (reader.isStartElement()) visit();
    }
}

/// Reads the leaf whose start tag the reader is at: takes the fields that a record has, and sets
/// the one that the leaf names.
class LeafReader
{
public:
    explicit LeafReader(QXmlStreamReader& reader) : m_reader(reader), m_name(reader.name()) {}

    void operator()(QStringView name, float& field)
    {
        if (take(name)) field = m_reader.text().toFloat();
    }
    void operator()(QStringView name, int& field)
    {
        if (take(name)) field = m_reader.text().toInt(nullptr, 10);
    }
    void operator()(QStringView name, bool& field)
    {
        if (take(name)) field = m_reader.text().toInt(nullptr, 10) != 0;
    }
    void operator()(QStringView name, QString& field)
    {
        if (take(name)) field = m_reader.text().toString();
    }

private:
    /// Moves on to the value if name is the leaf's. Its text is that of the next token alone, so
    /// that an empty leaf has an empty text.
    bool take(QStringView name)
    {
        if (m_name != name) return false;
        m_name = QStringView(); // moving on takes its characters away
        advance(m_reader);
        return true;
    }

    QXmlStreamReader& m_reader;
    QStringView m_name; // of the leaf, until it is taken
};

/// Reads the leaf if it is a coordinate of one of the corners; those of further corners are not known.
/// @return false, with the reader still at the leaf, if it is not
bool readCorner(QXmlStreamReader& reader, std::vector<osg::Vec3f>& corners)
{
    const QStringView name = reader.name();
    if (!name.startsWith(detail::kCornerPrefix) || name.size() != detail::kCornerPrefix.size() + 2) return false;

    const int corner = name[detail::kCornerPrefix.size()].unicode() - u'0';
    const int axis = name.back().unicode() - u'X';
    if (corner < 0 || corner >= static_cast<int>(corners.size()) || axis < 0 || axis > 2) return false;
    advance(reader);
    corners[static_cast<std::size_t>(corner)][axis] = reader.text().toFloat();
    return true;
}

/// Reads a counter, unless it is an empty element or holds something else than text.
void readCounter(QXmlStreamReader& reader, int& counter)
{
    advance(reader);
    if (reader.isCharacters()) counter = reader.text().toInt(nullptr, 10);
}

/// Keeps a record that has been read to its end tag. One that the file's end or an error cut off is
/// no record: its fields would be partly those of the file and partly defaults.
template <typename Record>
void appendUnlessCutOff(QVector<Record>& records, const Record& record, const QXmlStreamReader& reader)
{
    if (!reader.hasError()) records.append(record);
}

} // namespace

importFeature::importFeature() = default;
importFeature::importFeature(const importFeature& other) = default;
importFeature& importFeature::operator=(const importFeature& other) = default;
importFeature::~importFeature() = default;

importFeature::importFeature(osg::ref_ptr<osg::Group> root, QString path, QString name)
{
    if (!root) {
        qDebug("exportFeature Error: root is nullptr.");
        return;
    }
    if (name.isEmpty()) name = QStringLiteral("featureMark");
    QFile file(detail::featureFileName(path, name));
    // The exporter's warning, which here tells of the good case: hosts' logs show it so.
    if (file.exists()) qDebug("exportFeature Error: file exists.");
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        qDebug("exportFeature Error: cannot open file.");
        return;
    }

    detail::BoundedXmlReader reader(file);
    while (isReading(reader)) reader.advance(); // nothing of it is kept
    if (reader.hasError()) qDebug().nospace().noquote() << " Error:  " << reader.errorString();
}

void importFeature::getFeatureInfoIntoXML(QString path, QString name)
{
    if (path.isEmpty() || name.isEmpty()) {
        qDebug("importFeature : file is not exists.");
        return;
    }
    QFile file(detail::featureFileName(path, name));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        qDebug("importFeature : cann't open file.");
        return;
    }

    struct Section
    {
        QStringView name;
        void (importFeature::*read)(QXmlStreamReader&);
    };
    const Section sections[] = {{detail::kFeatureInfoElement, nullptr},
                                {detail::kDotSection, &importFeature::getDotFeatureInfoIntoXML},
                                {detail::kLineSection, &importFeature::getLineFeatureInfoIntoXML},
                                {detail::kPlaneSection, &importFeature::getPlaneFeatureInfoIntoXML},
                                {detail::kCountersSection, &importFeature::getFeatureTagCountInfoXML}};

    *this = importFeature();
    detail::BoundedXmlReader reader(file);
    while (isReading(reader)) {
        reader.advance();
        if (!reader.isStartElement()) continue;
        // Sections are known by their names alone, wherever they stand.
        const auto* const section = std::find_if(std::begin(sections), std::end(sections),
                                                 [&](const Section& each) { return reader.name() == each.name; });
        if (section == std::end(sections)) {
            qDebug().noquote() << reader.name();
            continue;
        }
        // It names the exporter, and has two blanks: hosts' logs show it so.
        qDebug().nospace().noquote() << "exportFeature : find  text " << section->name << '.';
        if (!section->read) continue;
        reader.advance();
        (this->*section->read)(reader);
    }
    if (reader.hasError()) qDebug() << reader.hasError();
    reader.clear();
    qDebug("exportFeature : read finished.");
}

void importFeature::createFeature(osg::ref_ptr<osg::Group> root)
{
    setFeatureRT(root);
    setDotMeta(root);
    setArrowMeta(root);
    setPlaneMeta(root);
}

void importFeature::getFeatureTagCount(int& dot, int& arrow, int& plane)
{
    dot = m_dotTagCount;
    arrow = m_arrowTagCount;
    plane = m_planeTagCount;
}

const QVector<CAutoScaleSphereMeta::structSphereMeta>& importFeature::getAutoScaleShpereMetaInfo() const
{
    return m_DotMeta;
}

const QVector<CTableMeta::structTableMeta>& importFeature::getAutoScaleShpereTableInfo() const
{
    return m_DotTableMeta;
}

const QVector<CArrowMeta::structArrowMeta>& importFeature::getArrowMetaInfo() const
{
    return m_ArrowMeta;
}

const QVector<CTableMeta::structTableMeta>& importFeature::getArrowTableInfo() const
{
    return m_ArrowTableMeta;
}

const QVector<CPlaneMeta::structPlaneMeta>& importFeature::getPlaneMetaInfo() const
{
    return m_PlaneMeta;
}

const QVector<CTableMeta::structTableMeta>& importFeature::getPlaneTableInfo() const
{
    return m_PlaneTableMeta;
}

void importFeature::getDotFeatureInfoIntoXML(QXmlStreamReader& reader)
{
    visitStartTags(reader, detail::kDotSection, [&] {
        if (reader.name() == detail::kTableRecord)
            appendUnlessCutOff(m_DotTableMeta, getTableInfoIntoXML(reader), reader);
        else if (reader.name() == detail::kDotRecord)
            getOneDotFeatureInfoIntoXML(reader);
    });
}

void importFeature::getLineFeatureInfoIntoXML(QXmlStreamReader& reader)
{
    visitStartTags(reader, detail::kLineSection, [&] {
        if (reader.name() == detail::kTableRecord)
            appendUnlessCutOff(m_ArrowTableMeta, getTableInfoIntoXML(reader), reader);
        else if (reader.name() == detail::kLineRecord)
            getOneLineFeatureInfoIntoXML(reader);
    });
}

void importFeature::getPlaneFeatureInfoIntoXML(QXmlStreamReader& reader)
{
    visitStartTags(reader, detail::kPlaneSection, [&] {
        if (reader.name() == detail::kTableRecord)
            appendUnlessCutOff(m_PlaneTableMeta, getTableInfoIntoXML(reader), reader);
        else if (reader.name() == detail::kPlaneRecord)
            getOnePlaneFeatureInfoIntoXML(reader);
    });
}

void importFeature::getOneDotFeatureInfoIntoXML(QXmlStreamReader& reader)
{
    CAutoScaleSphereMeta::structSphereMeta dot;
    visitStartTags(reader, detail::kDotRecord, [&] { detail::visitDotLeaves(dot, LeafReader(reader)); });
    appendUnlessCutOff(m_DotMeta, dot, reader);
}

void importFeature::getOneLineFeatureInfoIntoXML(QXmlStreamReader& reader)
{
    CArrowMeta::structArrowMeta line;
    visitStartTags(reader, detail::kLineRecord, [&] { detail::visitLineLeaves(line, LeafReader(reader)); });
    appendUnlessCutOff(m_ArrowMeta, line, reader);
}

void importFeature::getOnePlaneFeatureInfoIntoXML(QXmlStreamReader& reader)
{
    CPlaneMeta::structPlaneMeta plane;
    plane.pointVec.resize(kCornersOfAPlane);
    visitStartTags(reader, detail::kPlaneRecord, [&] {
        if (!readCorner(reader, plane.pointVec)) detail::visitPlaneLeaves(plane, LeafReader(reader));
    });
    appendUnlessCutOff(m_PlaneMeta, plane, reader);
}

CTableMeta::structTableMeta importFeature::getTableInfoIntoXML(QXmlStreamReader& reader)
{
    CTableMeta::structTableMeta table;
    visitStartTags(reader, detail::kTableRecord, [&] { detail::visitTableLeaves(table, LeafReader(reader)); });
    return table;
}

void importFeature::getFeatureTagCountInfoXML(QXmlStreamReader& reader)
{
    visitStartTags(reader, detail::kCountersSection, [&] {
        if (reader.name() == detail::kDotCounter)
            readCounter(reader, m_dotTagCount);
        else if (reader.name() == detail::kLineCounter)
            readCounter(reader, m_arrowTagCount);
        else if (reader.name() == detail::kPlaneCounter)
            readCounter(reader, m_planeTagCount);
    });
}

void importFeature::setFeatureRT(osg::ref_ptr<osg::Group> root)
{
    // Only makes the common root: the transform of the scene stays as the host has it.
    findOrCreateFeatureRootNode(root, featureAll, true);
}

void importFeature::setDotMeta(osg::ref_ptr<osg::Group> root)
{
    if (m_DotMeta.size() != m_DotTableMeta.size()) return;
    for (int i = 0; i < m_DotMeta.size(); ++i) {
        const CAutoScaleSphereMeta::structSphereMeta& dot = m_DotMeta.at(i);
        const CTableMeta::structTableMeta& table = m_DotTableMeta.at(i);
        createAutoScaleShpereAndTable(QString::fromStdString(dot.nodeName), root, dot.cneterPos, table.renderIndex,
                                      table.tableNamePrefix, table.tableNameIndexSuffix, featureStateHighlighted,
                                      false);
    }
}

void importFeature::setArrowMeta(osg::ref_ptr<osg::Group> root)
{
    if (m_ArrowMeta.size() != m_ArrowTableMeta.size()) return;
    for (int i = 0; i < m_ArrowMeta.size(); ++i) {
        const CTableMeta::structTableMeta& table = m_ArrowTableMeta.at(i);
        createArrowAndTable(featureStateHighlighted, m_ArrowMeta.at(i), root, table.renderIndex, table.tableNamePrefix,
                            table.tableNameIndexSuffix);
    }
}

void importFeature::setPlaneMeta(osg::ref_ptr<osg::Group> root)
{
    if (m_PlaneMeta.size() != m_PlaneTableMeta.size()) return;
    for (int i = 0; i < m_PlaneMeta.size(); ++i) {
        const CPlaneMeta::structPlaneMeta& plane = m_PlaneMeta.at(i);
        const CTableMeta::structTableMeta& table = m_PlaneTableMeta.at(i);
        if (plane.pointVec.size() < kMinCornersToRebuild) continue; // the assembly throws on it
        createPlaneAndTable(featureStateHighlighted, plane.name, root, plane.pointVec, plane.planeNormal,
                            table.renderIndex, table.tableNamePrefix, table.tableNameIndexSuffix);
    }
}

void importFeature::setFeatureStructInfo(exportFeature* source)
{
    if (!source) return;
    m_DotMeta = source->m_DotMeta;
    m_DotTableMeta = source->m_DotTableMeta;
    m_ArrowMeta = source->m_ArrowMeta;
    m_ArrowTableMeta = source->m_ArrowTableMeta;
    m_PlaneMeta = source->m_PlaneMeta;
    m_PlaneTableMeta = source->m_PlaneTableMeta;
    m_featureRT = source->m_featureRT;
}

} // namespace KelvOsgTools
