#pragma once

#include <KelvOsgTools/CArrowMeta.h>
#include <KelvOsgTools/CPlaneMeta.h>
#include <KelvOsgTools/CSphereMeta.h>
#include <KelvOsgTools/CTableMeta.h>
#include <KelvOsgTools/exportFeature.h>
#include <KelvOsgTools/importFeature.h>

#include <osg/Group>
#include <osg/ref_ptr>

#include <QByteArray>
#include <QStringList>
#include <QTemporaryDir>

namespace kelvtest {

using DotRecord = KelvOsgTools::CAutoScaleSphereMeta::structSphereMeta;
using LineRecord = KelvOsgTools::CArrowMeta::structArrowMeta;
using PlaneRecord = KelvOsgTools::CPlaneMeta::structPlaneMeta;
using TableRecord = KelvOsgTools::CTableMeta::structTableMeta;

/// Keeps what is logged while it lives. What does not go to the debug channel is marked so.
class LoggedMessages
{
public:
    LoggedMessages();
    ~LoggedMessages();
    LoggedMessages(const LoggedMessages&) = delete;
    LoggedMessages& operator=(const LoggedMessages&) = delete;

    const QStringList& all() const;
};

/// A folder that vanishes with the test; in memory where the system has such a place, as every save
/// waits for the disk.
class TestFolder
{
public:
    TestFolder();

    QString path() const { return m_folder.path(); }
    QString pathOf(const QString& name) const { return m_folder.path() + '/' + name; }

    void write(const QString& name, const QByteArray& bytes) const;
    QByteArray read(const QString& name) const;
    QStringList fileNames() const;

private:
    QTemporaryDir m_folder;
};

/// @name Features of exactly these records, hung under the root of their kind
/// @{
osg::ref_ptr<osg::Group> addDot(osg::Group* scene, const DotRecord& dot, const TableRecord& table);
osg::ref_ptr<osg::Group> addLine(osg::Group* scene, const LineRecord& line, const TableRecord& table);
osg::ref_ptr<osg::Group> addPlane(osg::Group* scene, PlaneRecord plane, const TableRecord& table);
/// Hangs any node under the root of a kind.
void hang(osg::Group* scene, KelvOsgTools::featureType kind, osg::Node* node);
/// @}

PlaneRecord planeOf(const std::vector<osg::Vec3f>& corners);
TableRecord tableOf(const QString& prefix, int indexSuffix = -1);

/// As many dots, lines and planes as told, every field of every record with a value of its own.
osg::ref_ptr<osg::Group> sceneOf(int dots, int lines, int planes);

/// The bytes of the file that a scene is saved as, with the counters 4, 5, 6.
QByteArray savedBytes(const osg::ref_ptr<osg::Group>& scene);

/// What is read from a file of these bytes.
KelvOsgTools::importFeature imported(const QByteArray& bytes);

/// A scene with all that was read: every pair of records as a feature.
osg::ref_ptr<osg::Group> sceneOfAll(const KelvOsgTools::importFeature& importer);

} // namespace kelvtest
