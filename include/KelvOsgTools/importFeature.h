#pragma once

#include <KelvOsgTools/CArrowMeta.h>
#include <KelvOsgTools/CPlaneMeta.h>
#include <KelvOsgTools/CSphereMeta.h>
#include <KelvOsgTools/CTableMeta.h>
#include <KelvOsgTools/Export.h>

#include <osg/Group>
#include <osg/Matrixd>
#include <osg/ref_ptr>

#include <QString>
#include <QVector>

class QXmlStreamReader;

namespace KelvOsgTools {
class exportFeature;
namespace detail {
class ImportFeatureAccess; // of the tests, for the path from an exporter without a file
}

/// Loads saved features: first getFeatureInfoIntoXML(), then createFeature().
///
/// Every operation reports to Qt's debug channel only.
///
/// A file carries no names. createFeature() gives each feature the default name of its record, so
/// features of one kind replace each other: after it one dot, one line and one plane stand. A host
/// that wants every feature back walks the getters and calls the assembly functions itself, with
/// names of its own, and gives a plane the normal of its points, since a saved normal is zero:
///
/// @snippet save_and_rebuild/main.cpp rebuild
class KELVOSGTOOLS_EXPORT importFeature
{
public:
    /// Empty lists, identity transform, counters 0.
    importFeature();

    /// Imports nothing: reads the file through and discards it. Kept for old hosts; use the default
    /// constructor and getFeatureInfoIntoXML().
    importFeature(osg::ref_ptr<osg::Group> root, QString path, QString name);
    importFeature(const importFeature& other);            ///< copies all that other read
    importFeature& operator=(const importFeature& other); ///< takes over all that other read
    ~importFeature();

    /// Reads path + "/" + name. What an earlier call read is replaced once the file is open. A
    /// malformed file is read up to its error. An empty path or name reads nothing.
    void getFeatureInfoIntoXML(QString path, QString name);

    /// Rebuilds what was read, in featureStateHighlighted. A kind with unequal numbers of records
    /// and label records is left out.
    /// @param root the host's scene group; null rebuilds nothing
    void createFeature(osg::ref_ptr<osg::Group> root);

    /// The counters of the file; 0 where it carries none.
    void getFeatureTagCount(int& dot, int& arrow, int& plane);

    /// @name What was read, in file order. Record i and label record i belong to the same feature.
    /// The lists live until the next file is read, or as long as this object.
    /// @{
    const QVector<CAutoScaleSphereMeta::structSphereMeta>& getAutoScaleShpereMetaInfo() const; ///< dots
    const QVector<CTableMeta::structTableMeta>& getAutoScaleShpereTableInfo() const;           ///< labels of dots
    const QVector<CArrowMeta::structArrowMeta>& getArrowMetaInfo() const;                      ///< lines
    const QVector<CTableMeta::structTableMeta>& getArrowTableInfo() const;                     ///< labels of lines
    const QVector<CPlaneMeta::structPlaneMeta>& getPlaneMetaInfo() const;  ///< planes; always four points
    const QVector<CTableMeta::structTableMeta>& getPlaneTableInfo() const; ///< labels of planes
    /// @}

private:
    friend class detail::ImportFeatureAccess;

    void getDotFeatureInfoIntoXML(QXmlStreamReader& reader);
    void getLineFeatureInfoIntoXML(QXmlStreamReader& reader);
    void getPlaneFeatureInfoIntoXML(QXmlStreamReader& reader);
    void getOneDotFeatureInfoIntoXML(QXmlStreamReader& reader);
    void getOneLineFeatureInfoIntoXML(QXmlStreamReader& reader);
    void getOnePlaneFeatureInfoIntoXML(QXmlStreamReader& reader);
    CTableMeta::structTableMeta getTableInfoIntoXML(QXmlStreamReader& reader);
    void getFeatureTagCountInfoXML(QXmlStreamReader& reader);
    void setFeatureRT(osg::ref_ptr<osg::Group> root);
    void setDotMeta(osg::ref_ptr<osg::Group> root);
    void setArrowMeta(osg::ref_ptr<osg::Group> root);
    void setPlaneMeta(osg::ref_ptr<osg::Group> root);
    void setFeatureStructInfo(exportFeature* source);

    QVector<CAutoScaleSphereMeta::structSphereMeta> m_DotMeta;
    QVector<CTableMeta::structTableMeta> m_DotTableMeta;
    QVector<CArrowMeta::structArrowMeta> m_ArrowMeta;
    QVector<CTableMeta::structTableMeta> m_ArrowTableMeta;
    QVector<CPlaneMeta::structPlaneMeta> m_PlaneMeta;
    QVector<CTableMeta::structTableMeta> m_PlaneTableMeta;
    osg::Matrixd m_featureRT; // carried from an exporter, never applied to a scene
    int m_dotTagCount = 0;
    int m_arrowTagCount = 0;
    int m_planeTagCount = 0;
};

} // namespace KelvOsgTools
