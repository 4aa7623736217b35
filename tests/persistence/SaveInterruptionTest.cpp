#include "PersistenceSupport.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <functional>
#include <random>
#include <thread>

// Saves that do not come to their end: afterwards the file is either the old or the new one, whole.

namespace {
using namespace KelvOsgTools;
using namespace kelvtest;

const QByteArray kOldFile(5000, 'o');
const QString kWriteFinished = "exportFeature : write finished.";
const QStringList kMessagesOfAFailure = {"exportFeature Error: file exists.", "exportFeature Error: cannot write file.",
                                         kWriteFinished, kWriteFinished};
constexpr int kUnprivilegedUser = 65534;
constexpr int kCannotTestHere = 77;

/// An exporter with a file of many times the size of what is written at once.
const exportFeature& bigExporter()
{
    static const exportFeature exporter = [] {
        exportFeature made;
        made.getMetaStructInfo(sceneOf(60, 30, 30));
        return made;
    }();
    return exporter;
}

QStringList save(exportFeature exporter, const TestFolder& folder)
{
    const LoggedMessages messages;
    exporter.createXML(new osg::Group, folder.path(), "a.xml");
    return messages.all();
}

const QByteArray& newFile()
{
    static const QByteArray bytes = [] {
        const TestFolder folder;
        save(bigExporter(), folder);
        return folder.read("a.xml");
    }();
    return bytes;
}

/// Does the work in a child process, so that it may be killed or change what a process cannot
/// change back.
/// @return as waitpid() tells it
int statusOfChild(const std::function<int()>& work)
{
    const pid_t child = fork();
    if (child == 0) _exit(work());
    int status = -1;
    waitpid(child, &status, 0);
    return status;
}

int exitCodeOfChild(const std::function<int()>& work)
{
    const int status = statusOfChild(work);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void limitFileSize(rlim_t bytes)
{
    const rlimit limit = {bytes, bytes};
    setrlimit(RLIMIT_FSIZE, &limit);
}

/// How much of the new file can be written, in hundredths of it.
class InterruptedSave : public testing::TestWithParam<int>
{
protected:
    void SetUp() override { m_folder.write("a.xml", kOldFile); }

    static rlim_t limit()
    {
        // One byte short at the end: that last byte is written when all else is done.
        const int size = newFile().size();
        return static_cast<rlim_t>(GetParam() == 100 ? size - 1 : size / 100 * GetParam());
    }

    const TestFolder m_folder;
};

TEST_P(InterruptedSave, KeepsTheOldFileWhenTheProcessIsKilledAtThatByte)
{
    const int status = statusOfChild([this] {
        std::signal(SIGXFSZ, SIG_DFL);
        limitFileSize(limit());
        save(bigExporter(), m_folder);
        return 0;
    });
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(m_folder.read("a.xml"), kOldFile);
}

TEST_P(InterruptedSave, KeepsTheOldFileAndSaysSoWhenNoMoreCanBeWritten)
{
    const int code = exitCodeOfChild([this] {
        std::signal(SIGXFSZ, SIG_IGN);
        limitFileSize(limit());
        return save(bigExporter(), m_folder) == kMessagesOfAFailure ? 0 : 1;
    });
    EXPECT_EQ(code, 0) << "other messages than expected";
    EXPECT_EQ(m_folder.read("a.xml"), kOldFile);
    EXPECT_EQ(m_folder.fileNames(), QStringList("a.xml")) << "nothing is left beside it";
}

INSTANTIATE_TEST_SUITE_P(AtHundredths, InterruptedSave, testing::Values(0, 1, 10, 25, 50, 75, 90, 99, 100));

TEST(SaveInterruption, LeavesTheNewFileWhenTheLimitJustSuffices)
{
    const TestFolder folder;
    folder.write("a.xml", kOldFile);
    exitCodeOfChild([&] {
        limitFileSize(static_cast<rlim_t>(newFile().size()));
        save(bigExporter(), folder);
        return 0;
    });
    EXPECT_EQ(folder.read("a.xml"), newFile());
}

TEST(SaveInterruption, LeavesTheOldOrTheNewFileWheneverTheProcessIsKilled)
{
    const TestFolder folder;
    folder.write("a.xml", kOldFile);
    std::mt19937 random(1);
    newFile();
    for (int round = 0; round < 30; ++round) {
        const pid_t child = fork();
        if (child == 0)
            for (;;) save(bigExporter(), folder);
        usleep(static_cast<useconds_t>(std::uniform_int_distribution<>(0, 30000)(random)));
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        const QByteArray found = folder.read("a.xml");
        ASSERT_TRUE(found == kOldFile || found == newFile()) << "round " << round;
    }
}

TEST(SaveInterruption, KeepsTheOldFileWhenTheDiskIsFull)
{
    const TestFolder folder;
    const int code = exitCodeOfChild([&] {
        const bool isMounted = unshare(CLONE_NEWNS) == 0 &&
                               mount("", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                               mount("tmpfs", folder.path().toLocal8Bit().constData(), "tmpfs", 0, "size=64k") == 0;
        if (!isMounted) return kCannotTestHere;
        folder.write("a.xml", kOldFile);
        if (save(bigExporter(), folder) != kMessagesOfAFailure) return 1;
        return folder.read("a.xml") == kOldFile ? 0 : 2;
    });
    if (code == kCannotTestHere) GTEST_SKIP() << "this user may not mount a small disk";
    EXPECT_EQ(code, 0) << "1: other messages than expected, 2: another file than the old one";
}

QString movedFolder;
QString movingFolder;
QStringList messagesWhileMoving;

/// Moves the folder away on the first message, which comes in the midst of writing.
void moveFolder(QtMsgType, const QMessageLogContext&, const QString& text)
{
    if (text.contains("can not createPlaneFeatureInfoXML")) QDir().rename(movingFolder, movedFolder);
    messagesWhileMoving.append(text);
}

TEST(SaveInterruption, KeepsTheOldFileWhenTheFolderVanishes)
{
    const TestFolder folder;
    folder.write("a.xml", kOldFile);
    movingFolder = folder.path();
    movedFolder = folder.path() + "-moved";
    exportFeature withoutPlanes;
    withoutPlanes.getMetaStructInfo(sceneOf(3, 0, 0));

    const QtMessageHandler former = qInstallMessageHandler(moveFolder);
    withoutPlanes.createXML(new osg::Group, folder.path(), "a.xml");
    qInstallMessageHandler(former);
    const bool isBack = QDir().rename(movedFolder, movingFolder);

    ASSERT_TRUE(isBack);
    EXPECT_EQ(messagesWhileMoving.mid(2),
              (QStringList{"exportFeature Error: cannot write file.", kWriteFinished, kWriteFinished}));
    EXPECT_EQ(folder.read("a.xml"), kOldFile);
}

/// The messages of a save by a user who has no rights but those for everyone.
int exitCodeOfSavingUnprivileged(const TestFolder& folder, const QStringList& expectedMessages)
{
    newFile();
    return exitCodeOfChild([&] {
        if (geteuid() == 0 && setuid(kUnprivilegedUser) != 0) return kCannotTestHere;
        return save(bigExporter(), folder) == expectedMessages ? 0 : 1;
    });
}

void setMode(const QString& path, mode_t mode)
{
    ASSERT_EQ(chmod(path.toLocal8Bit().constData(), mode), 0);
}

TEST(SaveInterruption, WritesInPlaceWhereTheFolderTakesNoNewFile)
{
    const TestFolder folder;
    folder.write("a.xml", kOldFile);
    setMode(folder.pathOf("a.xml"), 0666);
    setMode(folder.path(), 0555);
    const int code =
        exitCodeOfSavingUnprivileged(folder, {"exportFeature Error: file exists.", kWriteFinished, kWriteFinished});
    setMode(folder.path(), 0755);
    EXPECT_EQ(code, 0);
    EXPECT_EQ(folder.read("a.xml"), newFile());
}

TEST(SaveInterruption, CannotOpenANewFileWhereTheFolderTakesNone)
{
    const TestFolder folder;
    setMode(folder.path(), 0555);
    const int code = exitCodeOfSavingUnprivileged(folder, {"exportFeature Error: cannot open file.", kWriteFinished});
    setMode(folder.path(), 0755);
    EXPECT_EQ(code, 0);
    EXPECT_TRUE(folder.fileNames().isEmpty());
}

TEST(SaveInterruption, CannotOpenAFileThatMayNotBeWritten)
{
    const TestFolder folder;
    folder.write("a.xml", kOldFile);
    setMode(folder.pathOf("a.xml"), 0444);
    setMode(folder.path(), 0777);
    const int code = exitCodeOfSavingUnprivileged(
        folder, {"exportFeature Error: file exists.", "exportFeature Error: cannot open file.", kWriteFinished});
    EXPECT_EQ(code, 0);
    EXPECT_EQ(folder.read("a.xml"), kOldFile);
}

TEST(SaveInterruption, ReplacesTheFileThatALinkLeadsTo)
{
    const TestFolder folder;
    folder.write("target.xml", kOldFile);
    QFile::link("target.xml", folder.pathOf("a.xml"));
    save(bigExporter(), folder);
    EXPECT_TRUE(QFileInfo(folder.pathOf("a.xml")).isSymLink());
    EXPECT_EQ(folder.read("target.xml"), newFile());
}

TEST(SaveInterruption, KeepsThePermissionsOfTheFile)
{
    const TestFolder folder;
    folder.write("a.xml", kOldFile);
    setMode(folder.pathOf("a.xml"), 0640);
    const QFile::Permissions before = QFile::permissions(folder.pathOf("a.xml"));
    save(bigExporter(), folder);
    EXPECT_EQ(QFile::permissions(folder.pathOf("a.xml")), before);
}

TEST(SaveInterruption, WritesIntoAPipeRatherThanInItsPlace)
{
    const TestFolder folder;
    mkfifo(folder.pathOf("a.xml").toLocal8Bit().constData(), 0600);
    newFile();
    QByteArray received;
    std::thread reader([&] { received = folder.read("a.xml"); });
    save(bigExporter(), folder);
    struct stat status = {};
    stat(folder.pathOf("a.xml").toLocal8Bit().constData(), &status);
    ASSERT_TRUE(S_ISFIFO(status.st_mode));
    reader.join();
    EXPECT_EQ(received, newFile());
}

} // namespace
