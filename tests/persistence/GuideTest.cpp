#include <gtest/gtest.h>

#include <QFile>
#include <QStringList>

namespace {

QStringList trimmedLines(const char* fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) return {};
    QStringList lines;
    for (const QString& line : QString::fromUtf8(file.readAll()).split('\n')) lines.append(line.trimmed());
    return lines;
}

/// The lines of the C++ blocks of a guide.
QStringList codeIn(const QStringList& guide)
{
    QStringList code;
    bool isInBlock = false;
    for (const QString& line : guide) {
        if (isInBlock && line != "```") code.append(line);
        isInBlock = line == "```cpp" || (isInBlock && line != "```");
    }
    return code;
}

TEST(PersistenceGuide, ShowsOnlyCodeThatIsCompiled)
{
    const QStringList compiled = trimmedLines(KELVOSGTOOLS_EXAMPLE_SOURCE);
    const QStringList shown = codeIn(trimmedLines(KELVOSGTOOLS_GUIDE));
    ASSERT_GT(shown.size(), 20);
    for (const QString& line : shown) EXPECT_TRUE(compiled.contains(line)) << line.toStdString();
}

} // namespace
