#include <KelvOsgTools/FeatureFunctions.h>
#include <KelvOsgTools/exportFeature.h>
#include <KelvOsgTools/importFeature.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QString>
#include <QTemporaryDir>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>

// Feeds any bytes to the importer. Whatever they are: reading ends; what was read can be rebuilt as
// the library does it, and feature by feature; the features can be saved; and the saved file brings
// the same records back. The sanitizers and libFuzzer watch over leaks, memory and time.

namespace {
using namespace KelvOsgTools;

void require(bool condition, const char* what)
{
    if (condition) return;
    std::fprintf(stderr, "broken: %s\n", what);
    std::abort();
}

/// The folder of the input and of what is saved of it; in memory where the system has such a place.
const QTemporaryDir& folder()
{
    static const QTemporaryDir made((QFileInfo("/dev/shm").isWritable() ? "/dev/shm" : QDir::tempPath()) +
                                    "/importer-fuzzer");
    return made;
}

void writeInput(const std::uint8_t* data, std::size_t size)
{
    QFile file(folder().filePath("input"));
    require(file.open(QIODevice::WriteOnly), "the input file can be opened");
    const auto length = static_cast<qint64>(size);
    require(file.write(reinterpret_cast<const char*>(data), length) == length, "the input file can be written");
}

importFeature imported(const QString& name)
{
    importFeature importer;
    importer.getFeatureInfoIntoXML(folder().path(), name);
    return importer;
}

/// Whether a float comes back as it went. Three values are not carried: the sign of zero, the bits of
/// what is no number, and the largest float, whose nine digits are rounded out of range.
bool isSame(float before, float after)
{
    const bool isLargest = std::fabs(before) == std::numeric_limits<float>::max();
    return before == after || (std::isnan(before) && std::isnan(after)) ||
           (isLargest && std::isinf(after) && std::signbit(before) == std::signbit(after));
}

template <typename Vector>
bool isSameVector(const Vector& a, const Vector& b)
{
    return std::equal(a.ptr(), a.ptr() + Vector::num_components, b.ptr(), isSame);
}

bool isSame(const CAutoScaleSphereMeta::structSphereMeta& a, const CAutoScaleSphereMeta::structSphereMeta& b)
{
    return isSameVector(a.cneterPos, b.cneterPos) && isSame(a.radius, b.radius) && isSame(a.ratio, b.ratio) &&
           isSameVector(a.color, b.color);
}

bool isSame(const CArrowMeta::structArrowMeta& a, const CArrowMeta::structArrowMeta& b)
{
    return isSameVector(a.startPos, b.startPos) && isSameVector(a.endPos, b.endPos) && isSame(a.radius, b.radius) &&
           isSame(a.ratio, b.ratio) && isSameVector(a.color, b.color);
}

bool isSame(const CPlaneMeta::structPlaneMeta& a, const CPlaneMeta::structPlaneMeta& b)
{
    return isSameVector(a.planeColor, b.planeColor) && isSameVector(a.lineColor, b.lineColor) &&
           isSameVector(a.planeNormal, b.planeNormal) && isSame(a.lineWidth, b.lineWidth) && isSame(a.alpha, b.alpha) &&
           a.pointVec.size() == 4 && b.pointVec.size() == 4 &&
           std::equal(a.pointVec.begin(), a.pointVec.end(), b.pointVec.begin(), isSameVector<osg::Vec3f>);
}

bool isSame(const CTableMeta::structTableMeta& a, const CTableMeta::structTableMeta& b)
{
    return isSameVector(a.textColor, b.textColor) && isSameVector(a.pos, b.pos) &&
           isSameVector(a.backgroundColor, b.backgroundColor) && a.tableNamePrefix == b.tableNamePrefix &&
           a.tableNameIndexSuffix == b.tableNameIndexSuffix && a.renderIndex == b.renderIndex &&
           a.isAutoScale == b.isAutoScale && a.isBottom == b.isBottom;
}

/// Whether what was read back is what of the first reading could be saved: all records that have a
/// label's record as their pair.
template <typename Record>
bool isSamePairs(const QVector<Record>& records, const QVector<CTableMeta::structTableMeta>& tables,
                 const QVector<Record>& readBack, const QVector<CTableMeta::structTableMeta>& tablesReadBack)
{
    const int pairs = std::min(records.size(), tables.size());
    if (readBack.size() != pairs || tablesReadBack.size() != pairs) return false;
    for (int i = 0; i < pairs; ++i)
        if (!isSame(records[i], readBack[i]) || !isSame(tables[i], tablesReadBack[i])) return false;
    return true;
}

template <typename Primitive, typename Record>
void hangAll(const osg::ref_ptr<osg::Group>& scene, featureType kind, const QVector<Record>& records,
             const QVector<CTableMeta::structTableMeta>& tables)
{
    const osg::ref_ptr<osg::Group> root = findOrCreateFeatureRootNode(scene, kind, true);
    for (int i = 0; i < std::min(records.size(), tables.size()); ++i) {
        Record record = records[i];
        const osg::ref_ptr<Primitive> feature = new Primitive(record);
        feature->addTable(createTable(tables[i]));
        root->getChild(0)->asGroup()->addChild(feature);
    }
}

osg::ref_ptr<osg::Group> sceneOfAll(const importFeature& importer)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    hangAll<CAutoScaleSphereMeta>(scene, featureDot, importer.getAutoScaleShpereMetaInfo(),
                                  importer.getAutoScaleShpereTableInfo());
    hangAll<CArrowMeta>(scene, featureLine, importer.getArrowMetaInfo(), importer.getArrowTableInfo());
    hangAll<CPlaneMeta>(scene, featurePlane, importer.getPlaneMetaInfo(), importer.getPlaneTableInfo());
    return scene;
}

void checkSavingAndReadingBack(importFeature& importer)
{
    int dot = 0, line = 0, plane = 0;
    importer.getFeatureTagCount(dot, line, plane);
    const osg::ref_ptr<osg::Group> scene = sceneOfAll(importer);
    exportFeature exporter;
    exporter.getMetaStructInfo(scene);
    exporter.setFeatureTagCount(dot, line, plane);
    exporter.createXML(scene, folder().path(), "saved");

    importFeature again = imported("saved");
    require(isSamePairs(importer.getAutoScaleShpereMetaInfo(), importer.getAutoScaleShpereTableInfo(),
                        again.getAutoScaleShpereMetaInfo(), again.getAutoScaleShpereTableInfo()),
            "dots come back");
    require(isSamePairs(importer.getArrowMetaInfo(), importer.getArrowTableInfo(), again.getArrowMetaInfo(),
                        again.getArrowTableInfo()),
            "lines come back");
    require(isSamePairs(importer.getPlaneMetaInfo(), importer.getPlaneTableInfo(), again.getPlaneMetaInfo(),
                        again.getPlaneTableInfo()),
            "planes come back");

    int dotAgain = 0, lineAgain = 0, planeAgain = 0;
    again.getFeatureTagCount(dotAgain, lineAgain, planeAgain);
    if (std::min({dot, line, plane}) < 0) dot = line = plane = 0; // the file then carries none
    require(dotAgain == dot && lineAgain == line && planeAgain == plane, "counters come back");
}

void ignoreMessages(QtMsgType, const QMessageLogContext&, const QString&) {}

} // namespace

// Most of the time goes into allocations: short stacks and a small quarantine make them cheaper.
extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options()
{
    return "malloc_context_size=4:quarantine_size_mb=16";
}

// Fonts are looked up in a cache of the process, which its library never frees.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions()
{
    return "leak:libfontconfig\n";
}

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    // Never deleted: the windowing plugin leaks its screen when the application goes.
    static const auto* const application = new QGuiApplication(*argc, *argv);
    require(application, "an application stands");
    qInstallMessageHandler(ignoreMessages);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    writeInput(data, size);
    importFeature importer = imported("input");
    importer.createFeature(new osg::Group);
    checkSavingAndReadingBack(importer);
    return 0;
}
