#pragma once

#include <QIODevice>
#include <QXmlStreamReader>

namespace KelvOsgTools::detail {

/// Hands a file to a stream reader, and pretends that it ends inside a token that is out of all
/// proportion.
class TokenSource : public QIODevice
{
public:
    /// @param file open for reading, not owned
    explicit TokenSource(QIODevice& file);

    /// What is read from now on belongs to the next token.
    void beginToken();

    bool atEnd() const override;

protected:
    qint64 readData(char* data, qint64 maxSize) override;
    qint64 writeData(const char* data, qint64 size) override;

private:
    bool isRefusing() const;

    QIODevice& m_file;
    qint64 m_tokenBytes = 0;
    qint64 m_tokenEqualsSigns = 0;
};

/// A stream reader for files from anywhere: what no feature file needs, yet would take memory or
/// time out of proportion to its size, is a parse error.
///
/// These are tokens beyond some megabytes, thousands of attributes on one tag, very deep nesting,
/// large document type declarations and entities that multiply text. Elements are told by their
/// local names; namespaces are not looked at.
class BoundedXmlReader : public QXmlStreamReader
{
public:
    /// @param file open for reading, not owned
    explicit BoundedXmlReader(QIODevice& file);

    /// Reads the next token. To be called in place of readNext().
    void advance();

private:
    void checkNesting();
    void checkDocumentType();

    TokenSource m_source;
    int m_depth = 0;
};

} // namespace KelvOsgTools::detail
