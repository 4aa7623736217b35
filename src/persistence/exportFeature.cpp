#include <KelvOsgTools/exportFeature.h>

#include <KelvOsgTools/FeatureFunctions.h>

#include "foundation/UserValues.h"
#include "persistence/FeatureXml.h"
#include "scene/FeatureRoots.h"

#include <QDebug>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QXmlStreamWriter>

#include <algorithm>
#include <memory>

namespace KelvOsgTools {
namespace {

constexpr int kFloatDigits = 9; // enough to tell any two single-precision values apart

/// Whether XML 1.0 allows the character at i, a pair of surrogates being one character.
bool isStorable(const QString& text, int i)
{
    const QChar c = text.at(i);
    if (c.isHighSurrogate()) return i + 1 < text.size() && text.at(i + 1).isLowSurrogate();
    if (c.isLowSurrogate()) return i > 0 && text.at(i - 1).isHighSurrogate();
    if (c < QLatin1Char(' ')) return c == QLatin1Char('\t') || c == QLatin1Char('\n') || c == QLatin1Char('\r');
    return c.unicode() < 0xFFFE;
}

/// The text without the characters that no XML file can hold: after one of them the stream writer
/// would write no more names.
QString storable(const QString& text)
{
    QString kept;
    kept.reserve(text.size());
    for (int i = 0; i < text.size(); ++i)
        if (isStorable(text, i)) kept.append(text.at(i));
    return kept;
}

/// Writes text so that it reads back unchanged: the reader takes a bare carriage return for a part
/// of a line end, and drops it.
void writeText(QXmlStreamWriter& writer, const QString& text)
{
    const QVector<QStringRef> parts = text.splitRef(QLatin1Char('\r'));
    writer.writeCharacters(parts.first().toString());
    for (int i = 1; i < parts.size(); ++i) {
        writer.writeEntityReference(QStringLiteral("#13"));
        writer.writeCharacters(parts.at(i).toString());
    }
}

/// Writes leaf elements: takes the names and values of a record, one after the other.
class LeafWriter
{
public:
    explicit LeafWriter(QXmlStreamWriter& writer) : m_writer(writer) {}

    void operator()(QStringView name, float value) const
    {
        write(name, QString::number(static_cast<double>(value), 'g', kFloatDigits));
    }
    void operator()(QStringView name, int value) const { write(name, QString::number(value)); }
    void operator()(QStringView name, bool value) const { write(name, QString::number(value ? 1 : 0)); }
    void operator()(QStringView name, const QString& value) const
    {
        m_writer.writeStartElement(detail::asQString(name));
        writeText(m_writer, storable(value));
        m_writer.writeEndElement();
    }

private:
    void write(QStringView name, const QString& text) const
    {
        m_writer.writeTextElement(detail::asQString(name), text);
    }

    QXmlStreamWriter& m_writer;
};

/// Ends the start tag of an element that stays empty: the writer would shorten it otherwise. In an
/// element with children this would spoil the indentation.
void writeNoContent(QXmlStreamWriter& writer)
{
    writer.writeCharacters(QString());
}

void writeDot(QXmlStreamWriter& writer, const CAutoScaleSphereMeta::structSphereMeta& dot)
{
    writer.writeStartElement(detail::asQString(detail::kDotRecord));
    detail::visitDotLeaves(dot, LeafWriter(writer));
    writer.writeEndElement();
}

void writeLine(QXmlStreamWriter& writer, const CArrowMeta::structArrowMeta& line)
{
    writer.writeStartElement(detail::asQString(detail::kLineRecord));
    detail::visitLineLeaves(line, LeafWriter(writer));
    writer.writeEndElement();
}

void writeCorners(QXmlStreamWriter& writer, const std::vector<osg::Vec3f>& corners)
{
    const LeafWriter writeLeaf(writer);
    for (std::size_t i = 0; i < corners.size(); ++i)
        for (int axis = 0; axis < 3; ++axis) {
            QString name = detail::kCornerPrefix.toString();
            name += QString::number(i);
            name += detail::kCornerAxes[axis];
            writeLeaf(name, corners[i][axis]);
        }
}

void writePlane(QXmlStreamWriter& writer, const CPlaneMeta::structPlaneMeta& plane)
{
    writer.writeStartElement(detail::asQString(detail::kPlaneRecord));
    detail::visitPlaneLeaves(plane, LeafWriter(writer));
    writeCorners(writer, plane.pointVec);
    writer.writeEndElement();
}

void writeTable(QXmlStreamWriter& writer, const CTableMeta::structTableMeta& table)
{
    writer.writeStartElement(detail::asQString(detail::kTableRecord));
    detail::visitTableLeaves(table, LeafWriter(writer));
    writer.writeEndElement();
}

/// Appends the record of every primitive of one class that hangs under the root of a kind, each
/// followed by appendTable for its label.
template <typename Primitive, typename Record, typename AppendTable>
void appendRecords(const osg::ref_ptr<osg::Group>& scene, featureType kind, QVector<Record>& records,
                   AppendTable appendTable)
{
    const osg::ref_ptr<osg::Group> content = detail::existingContent(scene, kind);
    if (!content) return;

    for (unsigned int i = 0; i < content->getNumChildren(); ++i)
        if (auto* const primitive = dynamic_cast<Primitive*>(content->getChild(i))) {
            records.append(primitive->getMetaStruct());
            appendTable(primitive);
        }
}

/// A device or a pipe: it can be written to, but a file must not take its place.
bool isIrreplaceable(const QString& fileName)
{
    const QFileInfo info(fileName);
    return info.exists() && !info.isFile() && !info.isDir();
}

/// Opens a new file that shall replace the one of that name. Where the folder takes no new file,
/// and for devices, opens the file itself.
/// @return null if it cannot be opened
std::unique_ptr<QFileDevice> openForSaving(const QString& fileName)
{
    std::unique_ptr<QFileDevice> file;
    if (isIrreplaceable(fileName))
        file = std::make_unique<QFile>(fileName);
    else {
        auto replacement = std::make_unique<QSaveFile>(fileName);
        replacement->setDirectWriteFallback(true);
        file = std::move(replacement);
    }
    if (!file->open(QIODevice::WriteOnly | QIODevice::Text)) return nullptr;
    return file;
}

/// Puts a complete file in the place of the former one, and drops an incomplete one.
/// @return whether the file with the new content stands
bool finishSaving(QFileDevice& file, bool isComplete)
{
    // Flushed here because commit() takes no notice of a last piece that could not be written.
    isComplete = file.flush() && isComplete;
    auto* const replacement = qobject_cast<QSaveFile*>(&file);
    if (!replacement) return isComplete;
    if (!isComplete) replacement->cancelWriting();
    return replacement->commit() && isComplete;
}

} // namespace

exportFeature::exportFeature() = default;
exportFeature::exportFeature(const exportFeature& other) = default;
exportFeature& exportFeature::operator=(const exportFeature& other) = default;
exportFeature::~exportFeature() = default;

void exportFeature::getMetaStructInfo(osg::ref_ptr<osg::Group> root)
{
    initInfo();
    getFeatureRT(root);
    getDotMetaStructInfo(root);
    getArrowMetaStructInfo(root);
    getPlaneMetaStructInfo(root);
}

void exportFeature::setFeatureTagCount(int dotTagCount, int arrowTagCount, int planeTagCount)
{
    m_dotTagCount = dotTagCount;
    m_arrowTagCount = arrowTagCount;
    m_planeTagCount = planeTagCount;
}

void exportFeature::createXML(osg::ref_ptr<osg::Group> root, QString path, QString name)
{
    if (!root) {
        qDebug("exportFeature Error: root is nullptr.");
        return;
    }
    createFeatureInfoXML(path, name);
    // Said here for a second time, and after a failure too: hosts' logs show it so.
    qDebug("exportFeature : write finished.");
}

void exportFeature::initInfo()
{
    m_DotMeta.clear();
    m_DotTableMeta.clear();
    m_ArrowMeta.clear();
    m_ArrowTableMeta.clear();
    m_PlaneMeta.clear();
    m_PlaneTableMeta.clear();
}

void exportFeature::getFeatureRT(osg::ref_ptr<osg::Group> root)
{
    // Only makes the common root. Its matrix is not taken: the scene's transform is the host's to
    // keep, and whatever else the host put in its place has none to take.
    findOrCreateFeatureRootNode(root, featureAll, true);
}

void exportFeature::getDotMetaStructInfo(osg::ref_ptr<osg::Group> root)
{
    appendRecords<CAutoScaleSphereMeta>(root, featureDot, m_DotMeta, [this](osg::Group* dot) {
        if (!getTableMetaStructInfo(dot, m_DotTableMeta)) m_DotTableMeta.append(CTableMeta::structTableMeta());
    });
}

void exportFeature::getArrowMetaStructInfo(osg::ref_ptr<osg::Group> root)
{
    appendRecords<CArrowMeta>(root, featureLine, m_ArrowMeta, [this](osg::Group* line) {
        if (!getTableMetaStructInfo(line, m_ArrowTableMeta)) m_ArrowTableMeta.append(CTableMeta::structTableMeta());
    });
}

void exportFeature::getPlaneMetaStructInfo(osg::ref_ptr<osg::Group> root)
{
    appendRecords<CPlaneMeta>(root, featurePlane, m_PlaneMeta, [this](osg::Group* plane) {
        if (!getTableMetaStructInfo(plane, m_PlaneTableMeta)) m_PlaneTableMeta.append(CTableMeta::structTableMeta());
    });
}

bool exportFeature::getTableMetaStructInfo(osg::ref_ptr<osg::Group> featureGroup,
                                           QVector<CTableMeta::structTableMeta>& tables)
{
    if (!featureGroup) return false;
    for (unsigned int i = 0; i < featureGroup->getNumChildren(); ++i) {
        const auto* const table = dynamic_cast<const CTableMeta*>(featureGroup->getChild(i));
        if (!table || detail::featureTypeOf(*table) != featureTable) continue;
        tables.append(table->getMetaStruct());
        return true;
    }
    return false;
}

void exportFeature::createFeatureInfoXML(QString path, QString name)
{
    if (name.isEmpty()) name = QStringLiteral("featureMark");
    const QString fileName = detail::featureFileName(path, name);
    // A warning only: the file is replaced all the same.
    if (QFile::exists(fileName)) qDebug("exportFeature Error: file exists.");

    const std::unique_ptr<QFileDevice> file = openForSaving(fileName);
    if (!file) {
        qDebug("exportFeature Error: cannot open file.");
        return;
    }

    QXmlStreamWriter writer(file.get());
    writer.setAutoFormatting(true);
    writer.writeStartDocument();
    writer.writeStartElement(detail::asQString(detail::kRootElement));
    writer.writeAttribute(detail::asQString(detail::kVersionAttribute), detail::asQString(detail::kVersion));
    writer.writeStartElement(detail::asQString(detail::kContactsElement));
    writer.writeAttribute(detail::asQString(detail::kEmailAttribute), detail::asQString(detail::kEmail));
    writer.writeStartElement(detail::asQString(detail::kFeatureInfoElement));

    writer.writeStartElement(detail::asQString(detail::kDotSection));
    createDotFeatureInfoXML(writer);
    writer.writeEndElement();
    writer.writeStartElement(detail::asQString(detail::kLineSection));
    createLineFeatureInfoXML(writer);
    writer.writeEndElement();
    writer.writeStartElement(detail::asQString(detail::kPlaneSection));
    createPlaneFeatureInfoXML(writer);
    writer.writeEndElement();
    writer.writeStartElement(detail::asQString(detail::kCountersSection));
    createFeatureTagCountInfoXML(writer);

    writer.writeEndDocument();
    // Ended twice: the format has an empty line behind the root's end tag.
    writer.writeEndElement();
    writer.writeEndDocument();

    if (!finishSaving(*file, !writer.hasError())) qDebug("exportFeature Error: cannot write file.");
    qDebug("exportFeature : write finished.");
}

void exportFeature::createDotFeatureInfoXML(QXmlStreamWriter& writer)
{
    if (m_DotMeta.isEmpty() || m_DotMeta.size() != m_DotTableMeta.size()) return writeNoContent(writer);
    for (int i = 0; i < m_DotMeta.size(); ++i) {
        writeDot(writer, m_DotMeta.at(i));
        writeTable(writer, m_DotTableMeta.at(i));
    }
}

void exportFeature::createLineFeatureInfoXML(QXmlStreamWriter& writer)
{
    if (m_ArrowMeta.isEmpty()) return writeNoContent(writer);
    for (int i = 0; i < m_ArrowMeta.size(); ++i) {
        writeLine(writer, m_ArrowMeta.at(i));
        writeTable(writer, m_ArrowTableMeta.at(i)); // gathering gave every line one
    }
}

void exportFeature::createPlaneFeatureInfoXML(QXmlStreamWriter& writer)
{
    if (m_PlaneMeta.isEmpty() || m_PlaneMeta.size() != m_PlaneTableMeta.size()) {
        qDebug() << "KelvOsgTools::exportFeature::createPlaneFeatureInfoXML"
                 << "can not createPlaneFeatureInfoXML"
                 << ", m_PlaneMeta.size() = " << m_PlaneMeta.size()
                 << ", m_PlaneTableMeta.size() = " << m_PlaneTableMeta.size();
        return writeNoContent(writer);
    }
    for (int i = 0; i < m_PlaneMeta.size(); ++i) {
        writePlane(writer, m_PlaneMeta.at(i));
        writeTable(writer, m_PlaneTableMeta.at(i));
    }
}

void exportFeature::createFeatureTagCountInfoXML(QXmlStreamWriter& writer)
{
    if (std::min({m_dotTagCount, m_arrowTagCount, m_planeTagCount}) < 0) {
        qDebug() << "KelvOsgTools::exportFeature::createFeatureTagCountInfoXML"
                 << "can not createFeatureTagCountInfoXML"
                 << ", m_dotTagCount = " << m_dotTagCount << ", m_arrowTagCount = " << m_arrowTagCount
                 << ", m_planeTagCount = " << m_planeTagCount;
        return writeNoContent(writer);
    }
    const LeafWriter writeLeaf(writer);
    writeLeaf(detail::kDotCounter, m_dotTagCount);
    writeLeaf(detail::kLineCounter, m_arrowTagCount);
    writeLeaf(detail::kPlaneCounter, m_planeTagCount);
}

} // namespace KelvOsgTools
