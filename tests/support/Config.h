#pragma once

#include <KelvOsgTools/CFeatureConfig.h>

namespace kelvtest {

/// Puts the configuration of the process back, at the end of a test, to what it was before it.
class RestoredConfig
{
public:
    RestoredConfig() = default;
    ~RestoredConfig() { *KelvOsgTools::CFeatureConfig::sigleFeatureConfig() = m_before; }
    RestoredConfig(const RestoredConfig&) = delete;
    RestoredConfig& operator=(const RestoredConfig&) = delete;

    KelvOsgTools::CFeatureConfig* operator->() const { return KelvOsgTools::CFeatureConfig::sigleFeatureConfig(); }

private:
    KelvOsgTools::CFeatureConfig m_before{*KelvOsgTools::CFeatureConfig::sigleFeatureConfig()};
};

} // namespace kelvtest
