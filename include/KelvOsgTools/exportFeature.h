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

class QXmlStreamWriter;

namespace KelvOsgTools {

/// Saves the features of a scene as an XML file: first getMetaStructInfo(), then createXML().
///
/// Every operation reports to Qt's debug channel only. A file carries no names, states or
/// transforms, and of a line not whether it is drawn as lines; flag dots are not saved. See
/// importFeature for how to get every feature back.
///
/// @dontinclude save_and_rebuild/main.cpp
/// @skip exporter.getMetaStructInfo(scene)
/// @until createXML
class KELVOSGTOOLS_EXPORT exportFeature
{
public:
    /// Empty lists, identity transform, counters 0.
    exportFeature();
    exportFeature(const exportFeature& other);            ///< copies all that other gathered
    exportFeature& operator=(const exportFeature& other); ///< takes over all that other gathered
    ~exportFeature();

    /// Copies the records of all dots, lines and planes under root, in scene order, and replaces
    /// what an earlier call gathered. Makes the common root if it is missing.
    /// @param root the host's scene group; null gathers nothing
    void getMetaStructInfo(osg::ref_ptr<osg::Group> root);

    /// Sets the counters by which the host numbers its next features. If one of them is negative
    /// the file carries none.
    void setFeatureTagCount(int dotTagCount, int arrowTagCount, int planeTagCount);

    /// Writes what was gathered to path + "/" + name. A file of that name keeps its content until the
    /// new one is complete, and for good when writing fails; only where the folder takes no new file
    /// is it written in place.
    /// @param root only tested: null writes nothing
    /// @param path directory
    /// @param name file name, used as passed; empty means "featureMark"
    void createXML(osg::ref_ptr<osg::Group> root, QString path, QString name);

private:
    friend class importFeature; // takes the lists over without a file

    void initInfo();
    void getFeatureRT(osg::ref_ptr<osg::Group> root);
    void getDotMetaStructInfo(osg::ref_ptr<osg::Group> root);
    void getArrowMetaStructInfo(osg::ref_ptr<osg::Group> root);
    void getPlaneMetaStructInfo(osg::ref_ptr<osg::Group> root);
    bool getTableMetaStructInfo(osg::ref_ptr<osg::Group> featureGroup, QVector<CTableMeta::structTableMeta>& tables);
    void createFeatureInfoXML(QString path, QString name);
    void createDotFeatureInfoXML(QXmlStreamWriter& writer);
    void createLineFeatureInfoXML(QXmlStreamWriter& writer);
    void createPlaneFeatureInfoXML(QXmlStreamWriter& writer);
    void createFeatureTagCountInfoXML(QXmlStreamWriter& writer);

    // Record i and label record i of a kind belong to the same feature.
    QVector<CAutoScaleSphereMeta::structSphereMeta> m_DotMeta;
    QVector<CTableMeta::structTableMeta> m_DotTableMeta;
    QVector<CArrowMeta::structArrowMeta> m_ArrowMeta;
    QVector<CTableMeta::structTableMeta> m_ArrowTableMeta;
    QVector<CPlaneMeta::structPlaneMeta> m_PlaneMeta;
    QVector<CTableMeta::structTableMeta> m_PlaneTableMeta;
    osg::Matrixd m_featureRT; // stays identity: the scene's transform is the host's to keep
    int m_dotTagCount = 0;
    int m_arrowTagCount = 0;
    int m_planeTagCount = 0;
};

} // namespace KelvOsgTools
