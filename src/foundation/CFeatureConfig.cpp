#include <KelvOsgTools/CFeatureConfig.h>

#include "foundation/LabelFont.h"

#include <new>

namespace KelvOsgTools {

CFeatureConfig* CFeatureConfig::m_featureConfig = CFeatureConfig::createAtLoad();

CFeatureConfig* CFeatureConfig::createAtLoad()
{
    // Storage of the library itself, never destroyed: the instance outlasts every static object of
    // the host, and unloading the library leaves nothing behind on the heap.
    alignas(CFeatureConfig) static unsigned char storage[sizeof(CFeatureConfig)];
    return new (storage) CFeatureConfig;
}

CFeatureConfig::CFeatureConfig() = default;
CFeatureConfig::CFeatureConfig(const CFeatureConfig&) = default;
CFeatureConfig& CFeatureConfig::operator=(const CFeatureConfig&) = default;
CFeatureConfig::~CFeatureConfig() = default;

CFeatureConfig* CFeatureConfig::sigleFeatureConfig()
{
    return m_featureConfig;
}

const featureDotConfig& CFeatureConfig::getDotConfig() const
{
    return m_dotConfig;
}

void CFeatureConfig::setDotConfig(const featureDotConfig& config)
{
    m_dotConfig = config;
}

const featureFlagDotConfig& CFeatureConfig::getFlagDotConfig() const
{
    return m_flagDotConfig;
}

void CFeatureConfig::setFlagDotConfig(const featureFlagDotConfig& config)
{
    m_flagDotConfig = config;
}

const featureArrowConfig& CFeatureConfig::getArrowConfig() const
{
    return m_arrowConfig;
}

void CFeatureConfig::setArrowConfig(const featureArrowConfig& config)
{
    m_arrowConfig = config;
}

const featurePlaneConfig& CFeatureConfig::getPlaneConfig() const
{
    return m_planeConfig;
}

void CFeatureConfig::setPlaneConfig(const featurePlaneConfig& config)
{
    m_planeConfig = config;
}

const QString& CFeatureConfig::getFontPath() const
{
    return m_fontPath;
}

void CFeatureConfig::setFontPath(const QString& path)
{
    m_fontPath = path;
    detail::registerLabelFont(m_fontPath);
}

float CFeatureConfig::getPlaneMinThresholdValue() const
{
    return m_planeMinThresholdValue;
}

void CFeatureConfig::setPlaneMinThresholdValue(float value)
{
    m_planeMinThresholdValue = value;
}

languageType CFeatureConfig::getLanguage() const
{
    return m_language;
}

void CFeatureConfig::setLanguage(languageType language)
{
    m_language = language;
}

int CFeatureConfig::getNormalTableFontSize() const
{
    return m_normalTableFontSize;
}

void CFeatureConfig::setNormalTableFontSize(int size)
{
    m_normalTableFontSize = size;
}

int CFeatureConfig::getFlagTableFontSize() const
{
    return m_flagTableFontSize;
}

void CFeatureConfig::setFlagTableFontSize(int size)
{
    m_flagTableFontSize = size;
}

} // namespace KelvOsgTools
