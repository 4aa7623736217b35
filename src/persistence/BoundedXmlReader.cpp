#include "persistence/BoundedXmlReader.h"

#include <algorithm>

namespace KelvOsgTools::detail {
namespace {

constexpr qint64 kMaxTokenBytes = qint64{4} * 1024 * 1024; // the stream reader builds one string of every token
constexpr qint64 kMaxTokenEqualsSigns = 4096;              // it compares the attributes of a tag pairwise
constexpr int kMaxDepth = 100000;                          // it keeps more than a hundred bytes for every open element
constexpr int kMaxDocumentTypeCharacters = 4096;           // it walks all declared attributes at every tag
constexpr int kMaxEntityGrowth = 32;                       // characters that a reference may stand for beyond its own

} // namespace

TokenSource::TokenSource(QIODevice& file) : m_file(file)
{
    open(QIODevice::ReadOnly | QIODevice::Unbuffered);
}

void TokenSource::beginToken()
{
    m_tokenBytes = 0;
    m_tokenEqualsSigns = 0;
}

bool TokenSource::atEnd() const
{
    return isRefusing() || m_file.atEnd();
}

qint64 TokenSource::readData(char* data, qint64 maxSize)
{
    if (isRefusing()) return 0;
    const qint64 size = m_file.read(data, maxSize);
    if (size > 0) {
        m_tokenBytes += size;
        m_tokenEqualsSigns += std::count(data, data + size, '=');
    }
    return size;
}

qint64 TokenSource::writeData(const char*, qint64)
{
    return -1;
}

bool TokenSource::isRefusing() const
{
    return m_tokenBytes > kMaxTokenBytes || m_tokenEqualsSigns > kMaxTokenEqualsSigns;
}

BoundedXmlReader::BoundedXmlReader(QIODevice& file) : m_source(file)
{
    setDevice(&m_source);
    // Looking up a prefix takes a walk through all declarations in force.
    setNamespaceProcessing(false);
    setEntityExpansionLimit(kMaxEntityGrowth);
}

void BoundedXmlReader::advance()
{
    m_source.beginToken();
    readNext();
    checkNesting();
    checkDocumentType();
}

void BoundedXmlReader::checkNesting()
{
    if (isStartElement()) ++m_depth;
    if (isEndElement()) --m_depth;
    if (m_depth > kMaxDepth) raiseError(QStringLiteral("Too deeply nested."));
}

void BoundedXmlReader::checkDocumentType()
{
    if (isDTD() && text().size() > kMaxDocumentTypeCharacters)
        raiseError(QStringLiteral("Document type declaration too long."));
}

} // namespace KelvOsgTools::detail
