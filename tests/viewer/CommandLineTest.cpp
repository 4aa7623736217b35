#include "viewer/SamplePart.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>

namespace viewer {
namespace {

class CommandLine : public ::testing::Test
{
protected:
    /// Runs the program to its end; gives its status.
    int run(const QStringList& arguments)
    {
        constexpr int kMilliseconds = 60000;
        m_program.start(QStringLiteral(KELV_VIEWER_PROGRAM), arguments);
        return m_program.waitForFinished(kMilliseconds) && m_program.exitStatus() == QProcess::NormalExit
                   ? m_program.exitCode()
                   : -1;
    }

    QString file(const char* name) const { return QDir(m_folder.path()).filePath(name); }
    QString mesh() { return viewertest::writeMesh(*viewertest::samplePart(), m_folder.path(), "part.stl"); }

    QTemporaryDir m_folder;
    QProcess m_program;
};

TEST_F(CommandLine, SavesAPictureOfTheMeshInTheSizeAskedFor)
{
    EXPECT_EQ(run({mesh(), "--screenshot", file("picture.png"), "--size", "320x200"}), 0);
    const QImage picture(file("picture.png"));
    EXPECT_EQ(picture.size(), QSize(320, 200));
    EXPECT_NE(picture.pixel(160, 120), picture.pixel(5, 120)); // the part and the background
}

TEST_F(CommandLine, FailsForAMeshThatIsNotThere)
{
    EXPECT_EQ(run({file("none.stl"), "--screenshot", file("picture.png")}), 1);
    EXPECT_TRUE(m_program.readAllStandardError().contains("none.stl"));
    EXPECT_FALSE(QFileInfo::exists(file("picture.png")));
}

TEST_F(CommandLine, FailsForFeaturesThatAreNotThere)
{
    EXPECT_EQ(run({mesh(), "--features", file("none.xml"), "--screenshot", file("picture.png")}), 1);
}

TEST_F(CommandLine, FailsWhenThePictureCannotBeWritten)
{
    EXPECT_EQ(run({mesh(), "--screenshot", file("no-such-folder/picture.png")}), 1);
}

TEST_F(CommandLine, FailsForASizeThatIsNone)
{
    EXPECT_EQ(run({mesh(), "--screenshot", file("picture.png"), "--size", "wide"}), 1);
}

TEST_F(CommandLine, TellsHowToUseItAndItsVersion)
{
    EXPECT_EQ(run({"--help"}), 0);
    EXPECT_TRUE(m_program.readAllStandardOutput().contains("--screenshot"));
    EXPECT_EQ(run({"--version"}), 0);
    EXPECT_TRUE(m_program.readAllStandardOutput().contains("kelv-viewer 1."));
}

} // namespace
} // namespace viewer
