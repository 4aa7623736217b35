#include <benchmark/benchmark.h>

#include <KelvOsgTools/CFeatureConfig.h>
#include <KelvOsgTools/FeatureFunctions.h>

#include <QGuiApplication>

int main(int argc, char** argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    KelvOsgTools::CFeatureConfig::sigleFeatureConfig()->setFontPath(KELVOSGTOOLS_BENCHMARK_FONT);
    // Fonts are loaded once per process, not once per label: keep that out of the first benchmark.
    const osg::ref_ptr<osg::Group> firstLabel = KelvOsgTools::createTable({});

    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
