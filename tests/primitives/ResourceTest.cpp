#include <gtest/gtest.h>

#include <QFile>
#include <QFileInfo>
#include <QResource>
#include <QString>

#include <dlfcn.h>

namespace {

const QString kShaders[] = {":/shaders/axis.vert", ":/shaders/axis.geom", ":/shaders/axis.frag"};

/// The library, opened as a plug-in host opens it: this program is not linked to it.
class OpenedLibrary
{
public:
    OpenedLibrary() : m_handle(dlopen(KELVOSGTOOLS_LIBRARY, RTLD_NOW | RTLD_LOCAL)) {}
    ~OpenedLibrary()
    {
        if (m_handle) dlclose(m_handle);
    }

    bool isOpen() const { return m_handle != nullptr; }

private:
    void* m_handle;
};

bool isInMemory()
{
    void* const handle = dlopen(KELVOSGTOOLS_LIBRARY, RTLD_NOW | RTLD_NOLOAD);
    if (handle) dlclose(handle);
    return handle != nullptr;
}

TEST(ShaderResources, AreThereWhileTheLibraryIsOpen)
{
    for (const QString& shader : kShaders) EXPECT_FALSE(QFile::exists(shader)) << shader.toStdString();
    {
        const OpenedLibrary library;
        ASSERT_TRUE(library.isOpen()) << dlerror();
        for (const QString& shader : kShaders) EXPECT_TRUE(QFile::exists(shader)) << shader.toStdString();
    }
    EXPECT_FALSE(isInMemory());
    for (const QString& shader : kShaders) EXPECT_FALSE(QFile::exists(shader)) << shader.toStdString();
}

TEST(ShaderResources, ComeBackWhenTheLibraryIsOpenedAgain)
{
    for (int round = 0; round < 2; ++round) {
        const OpenedLibrary library;
        ASSERT_TRUE(library.isOpen()) << dlerror();
        EXPECT_TRUE(QFile::exists(kShaders[0])) << round;
    }
}

TEST(ShaderResources, AreStoredUncompressedAsTheyAreWritten)
{
    const OpenedLibrary library;
    for (const QString& shader : kShaders) {
        const QResource resource(shader);
        EXPECT_EQ(resource.compressionAlgorithm(), QResource::NoCompression);
        QFile source(QStringLiteral(KELVOSGTOOLS_SHADERS_DIR "/") + QFileInfo(shader).fileName());
        ASSERT_TRUE(source.open(QIODevice::ReadOnly));
        EXPECT_EQ(resource.uncompressedData(), source.readAll());
    }
}

} // namespace
